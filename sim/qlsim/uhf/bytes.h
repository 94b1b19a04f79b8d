// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "hid/hex.h"

namespace quarlin::sim {

using Bytes = std::vector<std::uint8_t>;

// Of one to eight hexadecimal digits; nothing when it is anything else.
std::optional<std::uint32_t> NumberOfHex(std::string_view text);

}  // namespace quarlin::sim
