// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "core/command.h"
#include "uhf/bytes.h"
#include "uhf/tag.h"

namespace quarlin::sim {

// Arguments of the reader's commands; each throws a CommandError that names the argument.

long long WholeNumberArgument(const std::string& word, long long least, long long most);

template <typename Number>
Number NumberArgument(const std::string& word, long long least = std::numeric_limits<Number>::min(),
                      long long most = std::numeric_limits<Number>::max()) {
    return static_cast<Number>(WholeNumberArgument(word, least, most));
}

std::uint8_t HexByteArgument(const std::string& word);
Bytes HexArgument(const std::string& word);
std::uint32_t PasswordArgument(const std::string& word);

// words: "add-tag", the EPC, then KEY=VALUE.
TagSettings TagArguments(const Words& words);
// The keys of TagArguments, for the list of commands.
inline constexpr const char* kTagUsage =
    "add-tag EPC [tid=HEX] [user=HEX] [pc=HEX] [access_password=HEX] [kill_password=HEX] [signal=DBM] [power=N] "
    "[write_power=N] [lock_AREA=STATE]";

}  // namespace quarlin::sim
