// SPDX-License-Identifier: Apache-2.0
#include "reference/reference_modified_utf8.h"

namespace quarlin::reference {
namespace {

std::string EncodeUnit(unsigned unit) {
    const auto tail = [](unsigned bits) { return static_cast<char>(0x80 + bits % 64); };
    if (unit >= 0x800) {
        return {static_cast<char>(0xE0 + unit / 4096), tail(unit / 64), tail(unit)};
    }
    if (unit >= 0x80 || unit == 0) {
        return {static_cast<char>(0xC0 + unit / 64), tail(unit)};
    }
    return {static_cast<char>(unit)};
}

std::string EncodeInFour(unsigned character) {
    const auto tail = [](unsigned bits) { return static_cast<char>(0x80 + bits % 64); };
    return {static_cast<char>(0xF0 + character / 262144), tail(character / 4096), tail(character / 64),
            tail(character)};
}

// What the bytes would be, were they well-formed; whoever asks encodes it again and compares.
unsigned Guess(const std::string& bytes, unsigned head) {
    unsigned value = static_cast<unsigned char>(bytes[0]) % head;
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        value = value * 64 + static_cast<unsigned char>(bytes[i]) % 64;
    }
    return value;
}

}  // namespace

std::vector<std::uint16_t> ReferenceUnits(const std::string& bytes) {
    std::vector<std::uint16_t> units;
    std::size_t at = 0;
    while (at < bytes.size()) {
        std::size_t taken = 0;
        for (std::size_t length = 1; length <= 3 && taken == 0; ++length) {
            const std::string part = bytes.substr(at, length);
            const unsigned head = length == 1 ? 128 : length == 2 ? 32 : 16;
            const unsigned unit = Guess(part, head);
            if (part.size() == length && EncodeUnit(unit) == part) {
                units.push_back(static_cast<std::uint16_t>(unit));
                taken = length;
            }
        }
        const std::string four = bytes.substr(at, 4);
        if (taken == 0 && four.size() == 4) {
            const unsigned character = Guess(four, 8);
            if (character > 0xFFFF && character < 0x110000 && EncodeInFour(character) == four) {
                units.push_back(static_cast<std::uint16_t>(0xD800 + (character - 0x10000) / 1024));
                units.push_back(static_cast<std::uint16_t>(0xDC00 + (character - 0x10000) % 1024));
                taken = 4;
            }
        }
        if (taken == 0) {
            units.push_back(0xFFFD);
            taken = 1;
        }
        at += taken;
    }
    return units;
}

std::string ReferenceModifiedUtf8(const std::vector<std::uint16_t>& units) {
    std::string text;
    for (const std::uint16_t unit : units) {
        text += EncodeUnit(unit);
    }
    return text;
}

}  // namespace quarlin::reference
