// SPDX-License-Identifier: Apache-2.0
// Any text under any edit setting. The input is the setting's numbers, the lengths of its two texts, the two texts and
// the text to be edited.
#include "bcr/data_editing.h"
#include "reference/reference_editing.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <span>
#include <vector>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

constexpr std::size_t kHead = 7;
constexpr std::uint8_t kModes = 5;  // the last stands for those without a meaning

// 16 bits, so that positions within the text are likely, with the limits of 32 bits at both ends.
std::int32_t Position(std::uint8_t low, std::uint8_t high) {
    const auto value = static_cast<std::int16_t>(high << 8 | low);
    switch (value) {
        case std::numeric_limits<std::int16_t>::max():
            return std::numeric_limits<std::int32_t>::max();
        case std::numeric_limits<std::int16_t>::min():
            return std::numeric_limits<std::int32_t>::min();
        default:
            return value;
    }
}

std::string Take(std::span<const std::uint8_t>& rest, std::size_t size) {
    size = std::min(size, rest.size());
    const std::string text(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size));
    rest = rest.subspan(size);
    return text;
}

void Check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "the text was not edited by the rules: %s\n", what);
        std::abort();
    }
}

void CheckPosition(const std::string& text, std::int32_t position) {
    // Exactly as long as the text: a byte read behind it is noticed.
    const std::vector<char> block(text.begin(), text.end());
    const std::string_view view(block.data(), block.size());
    const std::optional<std::size_t> offset = bcr::OffsetBehind(view, position);
    const std::optional<std::int64_t> expected = reference::BytesUpTo(text, position);
    Check(offset.has_value() == expected.has_value(), "whether there is an offset");
    Check(!offset || static_cast<std::int64_t>(*offset) == *expected, "offset");
    Check(bcr::CountCharacters(view) == reference::CharactersOf(text).size(), "number of characters");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kHead) {
        return 0;
    }
    bcr::EditSetting setting;
    setting.mode = data[0] % kModes;
    if (setting.mode == kModes - 1) {
        setting.mode = 0x100U + data[0];
    }
    setting.start = Position(data[1], data[2]);
    setting.end = Position(data[3], data[4]);
    std::span<const std::uint8_t> rest(data + kHead, size - kHead);
    setting.target = Take(rest, data[5]);
    setting.content = Take(rest, data[6]);
    const std::string text = Take(rest, rest.size());

    CheckPosition(text, setting.start);
    CheckPosition(text, setting.end);
    Check(bcr::Edit(text, setting) ==
              reference::Edited(setting.mode, setting.target, setting.content, setting.start, setting.end, text),
          "edited text");
    return 0;
}
