// SPDX-License-Identifier: Apache-2.0
// Whatever names a machine has for itself, its HID interfaces and its ports, and whatever symbology is asked for. The
// input is a symbology's number and a text.
#include "bcr/scanner_choice.h"
#include "bcr/scanner_names.h"
#include "bcr/setup_frame.h"
#include "bcr/symbology_table.h"
#include "reference/reference_scanner_names.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

void Expect(bool same, const char* what) {
    if (!same) {
        std::fprintf(stderr, "%s differs from the reference\n", what);
        std::abort();
    }
}

// Every byte a character, and every value from 0x80 up one far away, of which some fold to letters in some languages.
std::wstring Widen(const std::uint8_t* bytes, std::size_t size) {
    std::wstring text;
    for (std::size_t i = 0; i < size; ++i) {
        text.push_back(bytes[i] < 0x80 ? static_cast<wchar_t>(bytes[i]) : static_cast<wchar_t>(0x0080 + bytes[i]));
    }
    return text;
}

void CheckSymbology(std::int32_t value) {
    const bool known = value >= 0 && value < static_cast<std::int32_t>(bcr::kSymbologyCount);
    const bcr::SymbologyRow* const row = bcr::FindSymbology(value);
    const bcr::HoneywellRow* const commands = bcr::FindHoneywellSymbology(value);
    Expect((row != nullptr) == known && (commands != nullptr) == known, "whether a symbology is known");
    for (const bool enable : {false, true}) {
        const std::optional<bcr::SetupFrame> frame = bcr::SymbologyFrame(value, enable);
        Expect(frame.has_value() == known, "whether there is a frame");
        if (!frame) {
            Expect(!bcr::FindHoneywellPair(value, enable), "whether there is a pair");
            continue;
        }
        const std::span<const std::uint8_t> bytes = frame->Bytes();
        Expect(bytes.size() == (value == BARCODE_SYMBOLOGY_ISBT && enable ? 9U : 3U), "a frame's length");
        Expect(std::equal(row->intermecId.begin(), row->intermecId.end(), bytes.begin()), "a frame's parameter");
        Expect(bytes[2] == (enable ? 1 : 0), "a frame's value");
        const bool paired = value == BARCODE_SYMBOLOGY_EAN_ISSN || value == BARCODE_SYMBOLOGY_BPO_CODE;
        Expect(bcr::FindHoneywellPair(value, enable).has_value() == paired, "whether there is a pair");
    }
    if (known) {
        Expect(bcr::FindSymbologyByName(row->name) == value, "a symbology's own name");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < sizeof(std::int32_t)) {
        return 0;
    }
    std::int32_t value = 0;
    std::memcpy(&value, data, sizeof value);
    CheckSymbology(value);
    CheckSymbology(data[0] % 64);

    const std::wstring text = Widen(data + sizeof value, size - sizeof value);
    Expect(static_cast<int>(bcr::EngineOfHidPath(text)) == reference::ReferenceEngineOfHidPath(text),
           "a path's engine");
    Expect(bcr::ScannerPortNumber(text) == reference::ReferencePortNumber(text), "a port's number");
    Expect(static_cast<int>(bcr::ModelOf(text)) == reference::ReferenceModel(text), "a model");
    const std::optional<std::int32_t> named = bcr::FindSymbologyByName(text);
    Expect(!named || bcr::FindSymbology(*named)->name == text, "a name that was found");
    return 0;
}
