// SPDX-License-Identifier: Apache-2.0
#include "bcr/data_editing.h"

#include <quarlin/barcode.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace quarlin::bcr {

namespace {

// By the first byte alone: what follows is not looked at, so that a stray continuation byte takes the next one along.
std::size_t CharacterLength(char firstByte) {
    const auto byte = static_cast<unsigned char>(firstByte);
    if (byte < 0x80) {
        return 1;
    }
    if (byte >= 0xF0) {
        return 4;
    }
    return byte >= 0xE0 ? 3 : 2;
}

std::size_t NextCharacter(std::string_view text, std::size_t at) {
    return std::min(at + CharacterLength(text[at]), text.size());
}

// The end of a character that another one follows; nothing when the position is 0 or leaves the text.
std::optional<std::size_t> OffsetWithin(std::string_view text, std::int32_t position) {
    const std::optional<std::size_t> offset = OffsetBehind(text, position);
    return offset && *offset < text.size() ? offset : std::nullopt;
}

std::string Replace(std::string text, const std::string& target, const std::string& content) {
    std::size_t found = text.find(target);
    if (found == std::string::npos) {
        return text;
    }
    std::string edited;
    std::size_t taken = 0;
    for (; found != std::string::npos; found = text.find(target, taken)) {
        edited.append(text, taken, found - taken).append(content);
        taken = found + target.size();
    }
    return edited.append(text, taken);
}

std::string Insert(std::string text, const std::string& content, std::int32_t start) {
    if (const std::optional<std::size_t> offset = OffsetBehind(text, start)) {
        text.insert(*offset, content);
    }
    return text;
}

// For each beginning of the target, by its length: the longest shorter one that it ends with.
std::vector<std::size_t> BordersOf(std::string_view target) {
    std::vector<std::size_t> borders(target.size() + 1);
    for (std::size_t i = 1; i < target.size(); ++i) {
        std::size_t length = borders[i];
        while (length != 0 && target[i] != target[length]) {
            length = borders[length];
        }
        borders[i + 1] = target[i] == target[length] ? length + 1 : 0;
    }
    return borders;
}

// Removes the target from the text behind `start`, again and again the first one that is there, as long as it begins
// below the limit; what is removed lowers the limit. A removal can bring together another target, part of it from
// before the place. Searching again from the start would find it, but in a time that grows with the text's square, so
// the text is walked through once: what is kept remembers at each byte how much of a target ends there.
std::string Remove(std::string text, std::string_view target, std::size_t start, std::int64_t limit) {
    const std::size_t first = text.find(target, start);
    if (first == std::string::npos || static_cast<std::int64_t>(first) >= limit) {
        return text;
    }
    const auto length = static_cast<std::int64_t>(target.size());
    const std::vector<std::size_t> borders = BordersOf(target);
    std::vector<std::size_t> matched(text.size() - start + 1);  // of the target, by the bytes kept behind the start
    std::size_t kept = start;
    std::size_t next = start;
    while (next < text.size()) {
        const char byte = text[next++];
        std::size_t match = matched[kept - start];
        while (match != 0 && byte != target[match]) {
            match = borders[match];
        }
        if (byte == target[match]) {
            ++match;
        }
        text[kept++] = byte;
        matched[kept - start] = match;
        if (match == target.size()) {
            if (static_cast<std::int64_t>(kept) - length >= limit) {
                break;
            }
            kept -= target.size();
            limit -= length;
        }
    }
    return text.erase(kept, next - kept);
}

std::string Delete(std::string text, const EditSetting& setting) {
    // A start from the end of the text, unlike an end, counts as none.
    const std::size_t start = setting.start < 1 ? 0 : OffsetWithin(text, setting.start).value_or(0);
    const std::size_t end = OffsetWithin(text, setting.end).value_or(text.size());
    // The last place where a target fits before the end, plus 1. Below 1 when none does.
    const std::int64_t limit = static_cast<std::int64_t>(end) + 1 - static_cast<std::int64_t>(setting.target.size());
    return Remove(std::move(text), setting.target, start, limit);
}

}  // namespace

std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at = NextCharacter(text, at)) {
        ++count;
    }
    return count;
}

std::optional<std::size_t> OffsetBehind(std::string_view text, std::int32_t position) {
    // In 64 bits, where even the lowest position can be added to.
    const std::int64_t character =
        position < 0 ? static_cast<std::int64_t>(CountCharacters(text)) + position : position;
    if (character < 1) {
        return std::nullopt;
    }
    std::size_t at = 0;
    for (std::int64_t passed = 0; passed < character; ++passed) {
        if (at == text.size()) {
            return std::nullopt;
        }
        at = NextCharacter(text, at);
    }
    return at;
}

std::string Edit(std::string text, const EditSetting& setting) {
    switch (setting.mode) {
        case QLBCR_EDIT_REPLACE:
            // An empty content switches replacing off; it does not delete.
            if (!setting.target.empty() && !setting.content.empty()) {
                return Replace(std::move(text), setting.target, setting.content);
            }
            break;
        case QLBCR_EDIT_INSERT:
            return Insert(std::move(text), setting.content, setting.start);
        case QLBCR_EDIT_DELETE:
            if (!setting.target.empty()) {
                return Delete(std::move(text), setting);
            }
            break;
        default:
            break;
    }
    return text;
}

}  // namespace quarlin::bcr
