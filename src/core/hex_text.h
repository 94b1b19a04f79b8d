// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

namespace quarlin {

enum class HexCase {
    kLower,
    kUpper
};

// A number in hexadecimal, filled with zeros to at least minDigits. Independent of the process's locale.
inline std::string HexText(std::uint32_t value, HexCase letters, std::size_t minDigits) {
    const char* const digits = letters == HexCase::kUpper ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string text;
    for (; value != 0 || text.size() < minDigits; value >>= 4) {
        text.push_back(digits[value & 0xF]);
    }
    std::ranges::reverse(text);
    return text;
}

}  // namespace quarlin
