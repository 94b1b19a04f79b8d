// SPDX-License-Identifier: Apache-2.0
#include "view/text.h"

#include <array>
#include <charconv>

namespace quarlin::qlctl {
namespace {

constexpr size_t kLabelWidth = 14;

}  // namespace

std::string Fixed(double value, int decimals) {
    std::array<char, 400> digits;  // the largest double has 309 digits before its point
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
    return {digits.data(), end.ptr};
}

std::string PadLeft(std::string_view text, size_t width) {
    std::string padded(text.size() < width ? width - text.size() : 0, ' ');
    return padded.append(text);
}

std::string PadRight(std::string_view text, size_t width) {
    std::string padded(text);
    padded.resize(text.size() < width ? width : text.size(), ' ');
    return padded;
}

std::string Printable(std::string_view bytes) {
    std::string text(bytes);
    for (char& c : text) {
        c = c >= ' ' && c <= '~' ? c : '.';
    }
    return text;
}

std::string Row(std::string_view label, std::string_view value) {
    return PadRight(label, kLabelWidth).append(value) + '\n';
}

}  // namespace quarlin::qlctl
