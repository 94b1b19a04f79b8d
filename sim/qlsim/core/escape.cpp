// SPDX-License-Identifier: Apache-2.0
#include "core/escape.h"

#include "core/command.h"

namespace quarlin::sim {
namespace {

int HexDigit(char c) {
    constexpr std::string_view kLower = "0123456789abcdef";
    const std::size_t value = kLower.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

}  // namespace

std::string Unescape(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        const char kind = i + 1 < text.size() ? text[++i] : '\0';
        if (kind == 'x' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0) {
            bytes += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
            i += 2;
        } else if (kind == 'r' || kind == 'n' || kind == '\\') {
            bytes += kind == 'r' ? '\r' : kind == 'n' ? '\n' : '\\';
        } else {
            throw CommandError("after a backslash come r, n, a second backslash, or x and two hexadecimal digits");
        }
    }
    return bytes;
}

}  // namespace quarlin::sim
