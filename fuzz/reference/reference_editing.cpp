// SPDX-License-Identifier: Apache-2.0
#include "reference/reference_editing.h"

namespace quarlin::reference {
namespace {

std::size_t SizeByFirstByte(unsigned char byte) {
    if (byte <= 0x7F) {
        return 1;
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        return 3;
    }
    if (byte >= 0xF0) {
        return 4;
    }
    return 2;
}

std::int64_t Size(const std::string& text) {
    return static_cast<std::int64_t>(text.size());
}

std::int64_t CharacterCount(const std::string& text) {
    return static_cast<std::int64_t>(CharactersOf(text).size());
}

std::int64_t Absolute(std::int64_t value) {
    return value < 0 ? -value : value;
}

std::string Head(const std::string& text, std::int64_t bytes) {
    return text.substr(0, static_cast<std::size_t>(bytes));
}

std::string Tail(const std::string& text, std::int64_t from) {
    return text.substr(static_cast<std::size_t>(from));
}

// -1 when there is none.
std::int64_t Find(const std::string& text, const std::string& target, std::int64_t from) {
    const std::size_t found = text.find(target, static_cast<std::size_t>(from));
    return found == std::string::npos ? -1 : static_cast<std::int64_t>(found);
}

std::string Replaced(std::string text, const std::string& target, const std::string& content) {
    if (target.empty() || content.empty()) {
        return text;
    }
    std::int64_t from = 0;
    for (;;) {
        const std::int64_t found = Find(text, target, from);
        if (found == -1) {
            return text;
        }
        text = Head(text, found) + content + Tail(text, found + Size(target));
        from = found + Size(content);
    }
}

std::string Inserted(const std::string& text, const std::string& content, std::int64_t start) {
    if (content.empty() || start == 0 || CharacterCount(text) < Absolute(start)) {
        return text;
    }
    const std::optional<std::int64_t> offset = BytesUpTo(text, start);
    if (!offset || *offset < 1) {
        return text;
    }
    return Head(text, *offset) + content + Tail(text, *offset);
}

std::string Deleted(std::string text, const std::string& target, std::int64_t start, std::int64_t end) {
    if (target.empty()) {
        return text;
    }
    const std::int64_t count = CharacterCount(text);
    std::int64_t from = 0;
    if (start >= 1 && count > start) {
        from = *BytesUpTo(text, start);
    }
    std::int64_t limit = Size(text);
    if (end != 0 && count > Absolute(end)) {
        limit = *BytesUpTo(text, end);
    }
    if (Size(target) > 1) {
        limit = limit + 1 - Size(target);
    }
    for (;;) {
        const std::int64_t found = Find(text, target, from);
        if (found == -1 || found >= limit) {
            return text;
        }
        text = Head(text, found) + Tail(text, found + Size(target));
        limit -= Size(target);
    }
}

}  // namespace

std::vector<std::string> CharactersOf(const std::string& text) {
    std::vector<std::string> characters;
    std::string rest = text;
    while (!rest.empty()) {
        const std::size_t size = SizeByFirstByte(static_cast<unsigned char>(rest[0]));
        characters.push_back(rest.substr(0, size));
        rest = rest.size() > size ? rest.substr(size) : "";
    }
    return characters;
}

std::optional<std::int64_t> BytesUpTo(const std::string& text, std::int64_t position) {
    const std::vector<std::string> characters = CharactersOf(text);
    const auto count = static_cast<std::int64_t>(characters.size());
    const std::int64_t wanted = position > 0 ? position : count + position;
    if (position == 0 || wanted < 1 || wanted > count) {
        return std::nullopt;
    }
    std::int64_t bytes = 0;
    for (std::int64_t i = 0; i < wanted; ++i) {
        bytes += Size(characters[static_cast<std::size_t>(i)]);
    }
    return bytes;
}

std::string Edited(std::uint32_t mode, const std::string& target, const std::string& content, std::int64_t start,
                   std::int64_t end, const std::string& text) {
    switch (mode) {
        case 1:
            return Replaced(text, target, content);
        case 2:
            return Inserted(text, content, start);
        case 3:
            return Deleted(text, target, start, end);
        default:
            return text;
    }
}

}  // namespace quarlin::reference
