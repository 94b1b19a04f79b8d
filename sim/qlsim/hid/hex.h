// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::sim {

// Two digits for each byte; blanks and line ends may stand between bytes. Nothing when it is anything else.
std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text);
std::string HexText(std::span<const std::uint8_t> bytes);
// Four digits, as vendors and products are written.
std::string HexText(std::uint16_t number);

}  // namespace quarlin::sim
