// SPDX-License-Identifier: Apache-2.0
#include "text_forms.h"

#include <cstdint>
#include <type_traits>

namespace quarlin::test {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHigh(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLow(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void PutByte(std::string& out, std::uint32_t byte) {
    out.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
}

void PutThree(std::string& out, std::uint32_t value) {
    PutByte(out, 0xE0 | (value >> 12));
    PutByte(out, 0x80 | ((value >> 6) & 0x3F));
    PutByte(out, 0x80 | (value & 0x3F));
}

void PutTwo(std::string& out, std::uint32_t value) {
    PutByte(out, 0xC0 | (value >> 6));
    PutByte(out, 0x80 | (value & 0x3F));
}

void PutUtf8(std::string& out, char32_t point) {
    if (point < 0x80) {
        PutByte(out, point);
    } else if (point < 0x800) {
        PutTwo(out, point);
    } else if (point < 0x10000) {
        PutThree(out, point);
    } else {
        PutByte(out, 0xF0 | (point >> 18));
        PutByte(out, 0x80 | ((point >> 12) & 0x3F));
        PutByte(out, 0x80 | ((point >> 6) & 0x3F));
        PutByte(out, 0x80 | (point & 0x3F));
    }
}

template <typename Text>
void PutUtf16(Text& out, char32_t point) {
    using Unit = typename Text::value_type;
    if (point < 0x10000) {
        out.push_back(static_cast<Unit>(point));
    } else {
        out.push_back(static_cast<Unit>(0xD800 + ((point - 0x10000) >> 10)));
        out.push_back(static_cast<Unit>(0xDC00 + ((point - 0x10000) & 0x3FF)));
    }
}

std::u32string PointsOfUtf16(std::u16string_view text) {
    std::u32string points;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (IsHigh(unit) && i + 1 < text.size() && IsLow(text[i + 1])) {
            points.push_back(0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00));
        } else {
            points.push_back(IsHigh(unit) || IsLow(unit) ? kReplacement : unit);
        }
    }
    return points;
}

// The bytes of one character, or 0 for a byte that begins none; the smallest character of that length.
int LengthOf(unsigned char lead, char32_t& least) {
    if (lead < 0x80) {
        least = 0;
        return 1;
    }
    if (lead >= 0xC2 && lead < 0xE0) {
        least = 0x80;
        return 2;
    }
    if (lead >= 0xE0 && lead < 0xF0) {
        least = 0x800;
        return 3;
    }
    if (lead >= 0xF0 && lead < 0xF5) {
        least = 0x10000;
        return 4;
    }
    return 0;
}

std::u32string PointsOfUtf8(std::string_view text) {
    std::u32string points;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        char32_t least = 0;
        const int length = LengthOf(lead, least);
        char32_t point = length <= 1 ? lead : lead & (0x7F >> length);
        int taken = length == 0 ? 0 : 1;
        while (taken > 0 && taken < length && i + static_cast<std::size_t>(taken) < text.size() &&
               (text[i + static_cast<std::size_t>(taken)] & 0xC0) == 0x80) {
            point = (point << 6) | (static_cast<unsigned char>(text[i + static_cast<std::size_t>(taken)]) & 0x3F);
            ++taken;
        }
        const bool good =
            length > 0 && taken == length && point >= least && point <= 0x10FFFF && !IsHigh(point) && !IsLow(point);
        points.push_back(good ? point : kReplacement);
        i += good ? static_cast<std::size_t>(length) : 1;
    }
    return points;
}

}  // namespace

std::string ToModifiedUtf8(std::u16string_view text) {
    std::string out;
    for (const char16_t unit : text) {
        if (unit != 0 && unit < 0x80) {
            PutByte(out, unit);
        } else if (unit < 0x800) {
            PutTwo(out, unit);
        } else {
            PutThree(out, unit);
        }
    }
    return out;
}

std::optional<std::u16string> FromModifiedUtf8(std::string_view bytes) {
    std::u16string text;
    const auto continuation = [&](std::size_t at) { return at < bytes.size() && (bytes[at] & 0xC0) == 0x80; };
    const auto bits = [&](std::size_t at) {
        return static_cast<unsigned>(static_cast<unsigned char>(bytes[at]) & 0x3F);
    };
    for (std::size_t i = 0; i < bytes.size();) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        if (lead != 0 && lead < 0x80) {
            text.push_back(lead);
            i += 1;
        } else if ((lead & 0xE0) == 0xC0 && continuation(i + 1)) {
            const unsigned unit = ((lead & 0x1FU) << 6) | bits(i + 1);
            if (unit < 0x80 && unit != 0) {
                return std::nullopt;
            }
            text.push_back(static_cast<char16_t>(unit));
            i += 2;
        } else if ((lead & 0xF0) == 0xE0 && continuation(i + 1) && continuation(i + 2)) {
            const unsigned unit = ((lead & 0x0FU) << 12) | (bits(i + 1) << 6) | bits(i + 2);
            if (unit < 0x800) {
                return std::nullopt;
            }
            text.push_back(static_cast<char16_t>(unit));
            i += 3;
        } else {
            return std::nullopt;
        }
    }
    return text;
}

std::string ToUtf8(std::u16string_view text) {
    std::string out;
    for (const char32_t point : PointsOfUtf16(text)) {
        PutUtf8(out, point);
    }
    return out;
}

std::u16string FromUtf8(std::string_view text) {
    std::u16string out;
    for (const char32_t point : PointsOfUtf8(text)) {
        PutUtf16(out, point);
    }
    return out;
}

std::wstring Widen(std::string_view utf8) {
    std::wstring out;
    for (const char32_t point : PointsOfUtf8(utf8)) {
        if constexpr (sizeof(wchar_t) == 2) {
            PutUtf16(out, point);
        } else {
            out.push_back(static_cast<wchar_t>(point));
        }
    }
    return out;
}

std::string Narrow(std::wstring_view wide) {
    if constexpr (sizeof(wchar_t) == 2) {
        return ToUtf8(std::u16string(wide.begin(), wide.end()));
    } else {
        std::string out;
        for (const wchar_t unit : wide) {
            const auto point = static_cast<char32_t>(unit);
            PutUtf8(out, point > 0x10FFFF || IsHigh(point) || IsLow(point) ? kReplacement : point);
        }
        return out;
    }
}

}  // namespace quarlin::test
