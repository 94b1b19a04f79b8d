// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarlin::reference {

// The rules of editing once more: texts are taken apart and put together again, and deleting searches the text anew
// after each removal, however long that takes.

std::vector<std::string> CharactersOf(const std::string& text);

// Bytes up to the end of the character at a position; nothing when there is none.
std::optional<std::int64_t> BytesUpTo(const std::string& text, std::int64_t position);

std::string Edited(std::uint32_t mode, const std::string& target, const std::string& content, std::int64_t start,
                   std::int64_t end, const std::string& text);

}  // namespace quarlin::reference
