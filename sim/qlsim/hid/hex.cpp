// SPDX-License-Identifier: Apache-2.0
#include "hid/hex.h"

#include <array>

namespace quarlin::sim {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

int Digit(char c) {
    const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    const std::size_t value = kDigits.find(upper);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

}  // namespace

std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == ' ' || text[at] == '\r' || text[at] == '\n' || text[at] == '\t') {
            continue;
        }
        const int high = Digit(text[at]);
        const int low = at + 1 < text.size() ? Digit(text[at + 1]) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
        ++at;
    }
    return bytes;
}

std::string HexText(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

std::string HexText(std::uint16_t number) {
    const std::array<std::uint8_t, 2> bytes = {static_cast<std::uint8_t>(number >> 8),
                                               static_cast<std::uint8_t>(number)};
    return HexText(bytes);
}

}  // namespace quarlin::sim
