// SPDX-License-Identifier: Apache-2.0
#include "view/byte_text.h"

#include "view/hex.h"

#include <algorithm>
#include <array>

namespace quarlin::qlctl {
namespace {

constexpr unsigned char kDelete = 0x7F;

struct ShortEscape {
    char letter;
    char byte;
};
constexpr std::array kShortEscapes{
    ShortEscape{'n', '\n'},
    ShortEscape{'r', '\r'},
    ShortEscape{'t', '\t'},
    ShortEscape{'\\', '\\'},
};

// The first bytes of characters of more than one byte, and which second bytes make a character: none that is too long
// for its value, no half of a pair of UTF-16, nothing above U+10FFFF, and no control character (C2 80 to C2 9F), which
// some terminals obey.
struct LeadRange {
    unsigned char first;
    unsigned char last;
    size_t length;
    unsigned char secondFirst;
    unsigned char secondLast;
};
constexpr std::array kLeads{
    LeadRange{0xC2, 0xC2, 2, 0xA0, 0xBF}, LeadRange{0xC3, 0xDF, 2, 0x80, 0xBF}, LeadRange{0xE0, 0xE0, 3, 0xA0, 0xBF},
    LeadRange{0xE1, 0xEC, 3, 0x80, 0xBF}, LeadRange{0xED, 0xED, 3, 0x80, 0x9F}, LeadRange{0xEE, 0xEF, 3, 0x80, 0xBF},
    LeadRange{0xF0, 0xF0, 4, 0x90, 0xBF}, LeadRange{0xF1, 0xF3, 4, 0x80, 0xBF}, LeadRange{0xF4, 0xF4, 4, 0x80, 0x8F},
};

bool IsWithin(char c, unsigned char first, unsigned char last) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= first && byte <= last;
}

// Bytes of the character that the text begins with and that can be shown as it is; 0 when there is none.
size_t ShownCharacter(std::string_view text) {
    if (IsWithin(text[0], ' ', kDelete - 1)) {
        return text[0] == '\\' ? 0 : 1;
    }
    const auto lead = std::ranges::find_if(
        kLeads, [text](const LeadRange& range) { return IsWithin(text[0], range.first, range.last); });
    if (lead == kLeads.end() || text.size() < lead->length || !IsWithin(text[1], lead->secondFirst, lead->secondLast)) {
        return 0;
    }
    const std::string_view rest = text.substr(2, lead->length - 2);
    return std::ranges::all_of(rest, [](char c) { return IsWithin(c, 0x80, 0xBF); }) ? lead->length : 0;
}

std::string EscapeOf(char byte) {
    const auto shortly = std::ranges::find(kShortEscapes, byte, &ShortEscape::byte);
    if (shortly != kShortEscapes.end()) {
        return std::string("\\") + shortly->letter;
    }
    const auto number = static_cast<std::uint8_t>(byte);
    return "\\x" + Hex(std::span(&number, 1));
}

}  // namespace

std::string Escaped(std::string_view bytes) {
    std::string line;
    for (size_t at = 0; at < bytes.size();) {
        const size_t shown = ShownCharacter(bytes.substr(at));
        line += shown > 0 ? std::string(bytes.substr(at, shown)) : EscapeOf(bytes[at]);
        at += std::max<size_t>(shown, 1);
    }
    return line;
}

std::optional<std::string> Unescaped(std::string_view line) {
    std::string bytes;
    while (!line.empty()) {
        if (line[0] != '\\') {
            bytes += line[0];
            line.remove_prefix(1);
            continue;
        }
        const char letter = line.size() > 1 ? line[1] : '\0';
        const auto shortly = std::ranges::find(kShortEscapes, letter, &ShortEscape::letter);
        if (shortly != kShortEscapes.end()) {
            bytes += shortly->byte;
            line.remove_prefix(2);
            continue;
        }
        constexpr size_t kHexEscape = 4;
        const auto number = letter == 'x' && line.size() >= kHexEscape ? ParseHex(line.substr(2, 2)) : std::nullopt;
        if (!number || number->front() == 0) {
            return std::nullopt;
        }
        bytes += static_cast<char>(number->front());
        line.remove_prefix(kHexEscape);
    }
    return bytes;
}

}  // namespace quarlin::qlctl
