// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/data_editing.h"
#include "bcr/extended_data.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quarlin::bcr {

// A text that is added to each scan, and on which side of the engine's own field it goes.
struct FixedText {
    std::string text;
    std::uint8_t asTop = 1;
};

// What a scan's text is made with.
struct TextSettings {
    FixedText prefix;
    FixedText suffix;
    EditSetting edit;
};

// The prefix, the edited text and the suffix. A Honeywell engine sends nothing but the text, so that there are no
// places to choose between.
std::string HoneywellText(std::string_view scanned, const TextSettings& settings);

// The same around the fields of an Intermec engine's record: prefix and first field, second field, edited third field,
// fourth field and suffix.
std::string IntermecText(const ExtendedData& scan, const TextSettings& settings);

}  // namespace quarlin::bcr
