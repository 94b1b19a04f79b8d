// SPDX-License-Identifier: Apache-2.0
#include "jni/modified_utf8.h"

#include <cstddef>
#include <cstdint>

namespace quarlin::jni {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::uint8_t At(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint8_t>(bytes[index]);
}

// How many of the first `count` bytes behind the first one continue it; all of them or it is no sequence.
bool Continues(std::string_view bytes, std::size_t count) {
    if (bytes.size() <= count) {
        return false;
    }
    for (std::size_t index = 1; index <= count; ++index) {
        if ((At(bytes, index) & 0xC0U) != 0x80U) {
            return false;
        }
    }
    return true;
}

// Bytes of the character that begins here, in modified UTF-8; 0 when none does. A surrogate alone is one.
std::size_t ModifiedLength(std::string_view bytes) {
    const std::uint8_t first = At(bytes, 0);
    if (first != 0 && first < 0x80) {
        return 1;
    }
    if ((first & 0xE0U) == 0xC0U && Continues(bytes, 1)) {
        // Below U+0080 there is U+0000 alone.
        const bool zero = first == 0xC0 && At(bytes, 1) == 0x80;
        return first >= 0xC2 || zero ? 2 : 0;
    }
    if ((first & 0xF0U) == 0xE0U && Continues(bytes, 2)) {
        return first > 0xE0 || At(bytes, 1) >= 0xA0 ? 3 : 0;
    }
    return 0;
}

// The character of UTF-8's form of four bytes, U+10000 to U+10FFFF; 0 when none begins here.
std::uint32_t Supplementary(std::string_view bytes) {
    if ((At(bytes, 0) & 0xF8U) != 0xF0U || !Continues(bytes, 3)) {
        return 0;
    }
    std::uint32_t character = At(bytes, 0) & 0x07U;
    for (std::size_t index = 1; index <= 3; ++index) {
        character = character << 6U | (At(bytes, index) & 0x3FU);
    }
    return character >= 0x10000 && character <= 0x10FFFF ? character : 0;
}

void AppendSurrogate(std::string& text, std::uint32_t surrogate) {
    text += static_cast<char>(0xE0U | surrogate >> 12U);
    text += static_cast<char>(0x80U | (surrogate >> 6U & 0x3FU));
    text += static_cast<char>(0x80U | (surrogate & 0x3FU));
}

}  // namespace

bool IsModifiedUtf8(std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const std::size_t length = ModifiedLength(bytes);
        if (length == 0) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

std::string ToModifiedUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        if (const std::size_t length = ModifiedLength(bytes); length != 0) {
            text += bytes.substr(0, length);
            bytes.remove_prefix(length);
        } else if (const std::uint32_t character = Supplementary(bytes); character != 0) {
            AppendSurrogate(text, 0xD800U + ((character - 0x10000U) >> 10U));
            AppendSurrogate(text, 0xDC00U + ((character - 0x10000U) & 0x3FFU));
            bytes.remove_prefix(4);
        } else {
            text += kReplacement;
            bytes.remove_prefix(1);
        }
    }
    return text;
}

}  // namespace quarlin::jni
