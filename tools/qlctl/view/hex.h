// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::qlctl {

// Bytes as capital hex digits, without anything between them.
std::string Hex(std::span<const std::uint8_t> bytes);

// The bytes of "300833B2DDD9"; blanks between bytes are allowed. Nothing when it is not that, or empty.
std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text);

// A password of a tag as people write it, the digit of most weight first ("1234ABCD", zeros in front may be missing),
// in the byte order of the library: the byte of least weight first, always four. Nothing when it is no such number.
std::optional<std::vector<std::uint8_t>> ParsePassword(std::string_view text);

}  // namespace quarlin::qlctl
