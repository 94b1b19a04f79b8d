// SPDX-License-Identifier: Apache-2.0
#include "view/hex.h"

#include <charconv>

namespace quarlin::qlctl {
namespace {

constexpr size_t kPasswordDigits = 8;
constexpr size_t kPasswordBytes = 4;

template <typename Number>
std::optional<Number> HexNumber(std::string_view digits) {
    Number number{};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        return std::nullopt;
    }
    return number;
}

}  // namespace

std::string Hex(std::span<const std::uint8_t> bytes) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    while (!text.empty()) {
        if (text.front() == ' ') {
            text.remove_prefix(1);
            continue;
        }
        const auto byte = HexNumber<std::uint8_t>(text.substr(0, 2));
        if (!byte || text.size() < 2) {
            return std::nullopt;
        }
        bytes.push_back(*byte);
        text.remove_prefix(2);
    }
    return bytes.empty() ? std::nullopt : std::optional(std::move(bytes));
}

std::optional<std::vector<std::uint8_t>> ParsePassword(std::string_view text) {
    const auto number = HexNumber<std::uint32_t>(text);
    if (!number || text.size() > kPasswordDigits) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    for (size_t byte = 0; byte < kPasswordBytes; ++byte) {
        bytes.push_back(static_cast<std::uint8_t>(*number >> (8 * byte)));
    }
    return bytes;
}

}  // namespace quarlin::qlctl
