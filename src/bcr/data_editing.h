// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quarlin::bcr {

// What is done with the text of each scan before prefix and suffix are added. The modes are those of QLBCR_EditMode;
// any other is none.
struct EditSetting {
    std::uint32_t mode = 0;
    std::string target;
    std::string content;
    std::int32_t start = 0;
    std::int32_t end = 0;
};

// Characters of a UTF-8 text, each as long as its first byte says and the last one no longer than the text.
std::size_t CountCharacters(std::string_view text);

// The byte offset just behind a character: the position-th one, or for a negative position the one that has
// that many behind it. Nothing for position 0 and where the text has no such character.
std::optional<std::size_t> OffsetBehind(std::string_view text, std::int32_t position);

// The text after editing.
std::string Edit(std::string text, const EditSetting& setting);

}  // namespace quarlin::bcr
