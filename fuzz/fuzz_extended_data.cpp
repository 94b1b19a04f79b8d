// SPDX-License-Identifier: Apache-2.0
// What an Intermec engine's library may hand over as a scan, up to the text that the application gets. The first byte
// of the input chooses the settings, the next eight are an offset and a length for reading on their own; the rest is
// what was received.
#include "bcr/extended_data.h"
#include "bcr/scan_text.h"
#include "core/quarlin_exception.h"
#include "reference/reference_editing.h"
#include "reference/reference_scan_record.h"

#include <quarlin/barcode.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kHead = 9;

void Check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "the record was not taken as it is: %s\n", what);
        std::abort();
    }
}

// What a call is refused with; empty when it is not.
template <typename Call>
std::string RefusalOf(Call&& call) {
    try {
        call();
    } catch (const QuarlinException& failure) {
        Check(failure.code == QLERR_INTERNAL_ERROR, "code");
        Check(*failure.what() != '\0', "refused without a message");
        return failure.what();
    }
    return {};
}

bcr::TextSettings SettingsOf(std::uint8_t choice) {
    bcr::TextSettings settings;
    settings.prefix = {"<pre", static_cast<std::uint8_t>(choice & 1)};
    settings.suffix = {"post>", static_cast<std::uint8_t>(choice & 2)};
    settings.edit.mode = choice >> 2 & 3;
    settings.edit.target = (choice & 0x10) != 0 ? "0" : "ab";
    settings.edit.content = "--";
    settings.edit.start = (choice & 0x20) != 0 ? 1 : -1;
    settings.edit.end = (choice & 0x40) != 0 ? -1 : 0;
    return settings;
}

std::string EditedBy(const bcr::EditSetting& edit, const std::string& text) {
    return reference::Edited(edit.mode, edit.target, edit.content, edit.start, edit.end, text);
}

void CheckTexts(const bcr::ExtendedData& data, const reference::ScanRecord& expected,
                const bcr::TextSettings& settings) {
    const std::string scanned = EditedBy(settings.edit, expected.fields[2]);
    const auto& [prefix, suffix, edit] = settings;
    Check(bcr::IntermecText(data, settings) ==
              reference::TextAround(expected, scanned, prefix.text, prefix.asTop != 0, suffix.text, suffix.asTop != 0),
          "text of an Intermec engine");
    Check(bcr::HoneywellText(data.fields[2], settings) == prefix.text + scanned + suffix.text,
          "text of a Honeywell engine");
}

// One number and one field, anywhere within and around the bytes.
void CheckSingleReads(const Bytes& block, std::int32_t offset, std::int32_t length) {
    const auto size = static_cast<std::int32_t>(block.size());
    std::uint16_t number = 0;
    const std::string numberRefusal = reference::RefusalOfNumber(size, offset);
    Check(RefusalOf([&] { number = bcr::ReadNumber(block.data(), size, offset); }) == numberRefusal,
          "number's refusal");
    if (numberRefusal.empty()) {
        const auto at = static_cast<std::size_t>(offset);
        Check(number == block[at] * 256 + block[at + 1], "number");
    }
    std::string_view field = "untouched";
    const std::string fieldRefusal = reference::RefusalOfField(size, offset, length);
    Check(RefusalOf([&] { bcr::ReadField(block.data(), size, offset, length, &field); }) == fieldRefusal,
          "field's refusal");
    const std::string expected =
        fieldRefusal.empty() ? std::string(block.begin() + offset, block.begin() + offset + length) : "untouched";
    Check(field == expected, "field");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kHead) {
        return 0;
    }
    // Exactly as long as what was received: a byte read behind it is noticed.
    const Bytes received(data + kHead, data + size);

    const reference::ScanRecord expected = reference::ReadScanRecord(received);
    std::optional<bcr::ExtendedData> split;
    Check(RefusalOf([&] { split = bcr::SplitExtendedData(received); }) == expected.refusal, "refusal");
    if (split) {
        Check(split->number == expected.number, "number");
        for (std::size_t i = 0; i < expected.fields.size(); ++i) {
            Check(split->fields[i] == expected.fields[i], "field");
        }
        CheckTexts(*split, expected, SettingsOf(data[0]));
    }

    if (!received.empty()) {
        std::int32_t offset = 0;
        std::int32_t length = 0;
        std::memcpy(&offset, data + 1, sizeof offset);
        std::memcpy(&length, data + 5, sizeof length);
        CheckSingleReads(received, offset, length);
    }
    return 0;
}
