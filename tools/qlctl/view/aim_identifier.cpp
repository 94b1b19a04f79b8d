// SPDX-License-Identifier: Apache-2.0
#include "view/aim_identifier.h"

#include "view/text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quarlin::qlctl {
namespace {

constexpr char kFlag = ']';

// The letter behind the flag.
struct CodeRow {
    char letter;
    const char* name;
};

constexpr std::array kCodes{
    CodeRow{'A', "Code 39"},
    CodeRow{'B', "Telepen"},
    CodeRow{'C', "Code 128"},
    CodeRow{'D', "Code One"},
    CodeRow{'E', "EAN/UPC"},
    CodeRow{'F', "Codabar"},
    CodeRow{'G', "Code 93"},
    CodeRow{'H', "Code 11"},
    CodeRow{'I', "Interleaved 2 of 5"},
    CodeRow{'J', "DotCode"},
    CodeRow{'K', "Code 16K"},
    CodeRow{'L', "PDF417"},
    CodeRow{'M', "MSI"},
    CodeRow{'N', "Anker"},
    CodeRow{'O', "Codablock"},
    CodeRow{'P', "Plessey"},
    CodeRow{'Q', "QR Code"},
    CodeRow{'R', "Straight 2 of 5"},
    CodeRow{'S', "Straight 2 of 5"},
    CodeRow{'T', "Code 49"},
    CodeRow{'U', "MaxiCode"},
    CodeRow{'X', "Other bar code"},
    CodeRow{'Y', "System expansion"},
    CodeRow{'Z', "No bar code"},
    CodeRow{'c', "Channel Code"},
    CodeRow{'d', "Data Matrix"},
    CodeRow{'e', "GS1 DataBar"},
    CodeRow{'g', "Grid Matrix"},
    CodeRow{'h', "Han Xin"},
    CodeRow{'o', "OCR"},
    CodeRow{'p', "PosiCode"},
    CodeRow{'s', "SuperCode"},
    CodeRow{'z', "Aztec Code"},
};

constexpr const char* kSame = "";
constexpr const char* kChecked = "check character verified";
constexpr const char* kStripped = "check character verified and stripped";
constexpr const char* kFnc1First = "FNC1 in the first position";
constexpr const char* kFnc1Second = "FNC1 in the second position";
constexpr const char* kEci = "extended channels (ECI)";
constexpr const char* kEciFnc1First = "FNC1 in the first position, extended channels (ECI)";
constexpr const char* kEciFnc1Second = "FNC1 in the second position, extended channels (ECI)";
constexpr const char* kAppend = "structured append";

// The character behind the letter, where it says something: a name of its own, what the reader has done, or both.
struct ModifierRow {
    char letter;
    char modifier;
    const char* name;
    const char* detail;
};

constexpr std::array kModifiers{
    ModifierRow{'A', '1', kSame, kChecked},
    ModifierRow{'A', '3', kSame, kStripped},
    ModifierRow{'A', '4', kSame, "full ASCII"},
    ModifierRow{'A', '5', kSame, "full ASCII, check character verified"},
    ModifierRow{'A', '7', kSame, "full ASCII, check character verified and stripped"},
    ModifierRow{'B', '0', kSame, "full ASCII"},
    ModifierRow{'B', '1', kSame, "numeric"},
    ModifierRow{'B', '2', kSame, "numeric, then full ASCII"},
    ModifierRow{'B', '4', kSame, "full ASCII, then numeric"},
    ModifierRow{'C', '1', "GS1-128", kFnc1First},
    ModifierRow{'C', '2', kSame, kFnc1Second},
    ModifierRow{'C', '4', "ISBT 128", "codes joined"},
    ModifierRow{'E', '0', "EAN-13, UPC-A or UPC-E", kSame},
    ModifierRow{'E', '1', "EAN/UPC add-on", "2 digits"},
    ModifierRow{'E', '2', "EAN/UPC add-on", "5 digits"},
    ModifierRow{'E', '3', "EAN-13, UPC-A or UPC-E", "with add-on"},
    ModifierRow{'E', '4', "EAN-8", kSame},
    ModifierRow{'F', '1', kSame, "ABC Codabar"},
    ModifierRow{'F', '2', kSame, kChecked},
    ModifierRow{'F', '4', kSame, kStripped},
    ModifierRow{'H', '0', kSame, kChecked},
    ModifierRow{'H', '1', kSame, "2 check characters verified"},
    ModifierRow{'H', '3', kSame, kStripped},
    ModifierRow{'I', '1', kSame, kChecked},
    ModifierRow{'I', '3', kSame, kStripped},
    ModifierRow{'K', '1', kSame, kFnc1First},
    ModifierRow{'K', '2', kSame, kFnc1Second},
    ModifierRow{'L', '1', kSame, kEci},
    ModifierRow{'L', '3', "MicroPDF417", kFnc1First},
    ModifierRow{'L', '4', "MicroPDF417", kFnc1Second},
    ModifierRow{'L', '5', "MicroPDF417", "as Code 128, without FNC1"},
    ModifierRow{'M', '0', kSame, kChecked},
    ModifierRow{'M', '1', kSame, kStripped},
    ModifierRow{'O', '0', "Codablock 256", kSame},
    ModifierRow{'O', '1', "Codablock 256", kFnc1First},
    ModifierRow{'O', '4', "Codablock F", kSame},
    ModifierRow{'O', '5', "Codablock F", kFnc1First},
    ModifierRow{'O', '6', "Codablock A", kSame},
    ModifierRow{'Q', '0', "QR Code model 1", kSame},
    ModifierRow{'Q', '2', kSame, kEci},
    ModifierRow{'Q', '3', "GS1 QR Code", kFnc1First},
    ModifierRow{'Q', '4', "GS1 QR Code", kEciFnc1First},
    ModifierRow{'Q', '5', kSame, kFnc1Second},
    ModifierRow{'Q', '6', kSame, kEciFnc1Second},
    ModifierRow{'R', '1', kSame, kChecked},
    ModifierRow{'R', '3', kSame, kStripped},
    ModifierRow{'U', '0', kSame, "mode 4 or 5"},
    ModifierRow{'U', '1', kSame, "mode 2 or 3"},
    ModifierRow{'U', '2', kSame, "mode 4 or 5, extended channels (ECI)"},
    ModifierRow{'U', '3', kSame, "mode 2 or 3, extended channels (ECI)"},
    ModifierRow{'d', '0', kSame, "ECC 000 to 140"},
    ModifierRow{'d', '1', kSame, "ECC 200"},
    ModifierRow{'d', '2', "GS1 DataMatrix", kFnc1First},
    ModifierRow{'d', '3', kSame, kFnc1Second},
    ModifierRow{'d', '4', kSame, kEci},
    ModifierRow{'d', '5', "GS1 DataMatrix", kEciFnc1First},
    ModifierRow{'d', '6', kSame, kEciFnc1Second},
    ModifierRow{'e', '1', "GS1 Composite", "the part behind a separator"},
    ModifierRow{'e', '2', "GS1 Composite", "the part behind an escape, without extended channels"},
    ModifierRow{'e', '3', "GS1 Composite", "the part behind an escape, extended channels (ECI)"},
    ModifierRow{'o', '1', "OCR-A", kSame},
    ModifierRow{'o', '2', "OCR-B", kSame},
    ModifierRow{'z', '1', kSame, kFnc1First},
    ModifierRow{'z', '2', kSame, kFnc1Second},
    ModifierRow{'z', '3', kSame, kEci},
    ModifierRow{'z', '4', kSame, kEciFnc1First},
    ModifierRow{'z', '5', kSame, kEciFnc1Second},
    ModifierRow{'z', '6', kSame, kAppend},
    ModifierRow{'z', 'C', "Aztec Rune", kSame},
};

std::string_view WithoutFill(std::string_view text) {
    constexpr std::string_view kFill("\0 ", 2);
    const size_t last = text.find_last_not_of(kFill);
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

}  // namespace

AimIdentifier ReadAimIdentifier(std::span<const std::uint8_t> bytes) {
    const std::string all(bytes.begin(), bytes.end());
    const std::string_view identifier = WithoutFill(all);
    AimIdentifier read{Printable(identifier), {}, {}};
    if (identifier.size() < 2 || identifier[0] != kFlag) {
        return read;
    }
    const auto code = std::ranges::find(kCodes, identifier[1], &CodeRow::letter);
    if (code == kCodes.end()) {
        return read;
    }
    read.name = code->name;
    const auto modifier = std::ranges::find_if(kModifiers, [identifier](const ModifierRow& row) {
        return identifier.size() > 2 && row.letter == identifier[1] && row.modifier == identifier[2];
    });
    if (modifier != kModifiers.end()) {
        read.name = *modifier->name == '\0' ? read.name : modifier->name;
        read.detail = modifier->detail;
    }
    return read;
}

}  // namespace quarlin::qlctl
