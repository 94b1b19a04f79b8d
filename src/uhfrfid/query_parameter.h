// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>

namespace quarlin::uhfrfid {

// One parameter of the Query command, with which the reader starts a round of the inventory.
struct QueryParameter {
    // In the command: the offset of the flag that sets the parameter; its value follows.
    std::uint8_t flagOffset;
    // In the reply: the offset of the reader's current value.
    std::uint8_t replyOffset;
    // What carries a caller's value; nothing for a value that is refused. All of its bits count.
    std::optional<std::uint8_t> (*encode)(std::int64_t value);
    std::int64_t (*decode)(std::uint8_t byte);
};

extern const QueryParameter kLinkFrequency;  // kHz
extern const QueryParameter kMiller;
extern const QueryParameter kSession;
extern const QueryParameter kQBegin;
extern const QueryParameter kSensitivity;  // dBm

// Bytes of the parameters in the command, and the offset of the first.
inline constexpr std::uint8_t kQueryParametersOffset = 2;
inline constexpr std::uint8_t kQueryParametersSize = 12;

}  // namespace quarlin::uhfrfid
