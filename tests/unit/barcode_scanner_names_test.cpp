// SPDX-License-Identifier: Apache-2.0
// Intermec scanners by the names under which the system shows them.
#include "bcr/scanner_names.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using bcr::BarcodeEngineKind;
using bcr::EngineOfHidPath;
using bcr::ScannerPortNumber;

struct PathRow {
    const char* name;
    const wchar_t* path;
    BarcodeEngineKind kind;
};

void PrintTo(const PathRow& row, std::ostream* stream) {
    *stream << row.name;
}

constexpr auto k0801 = BarcodeEngineKind::kIntermecUsb0801;
constexpr auto k0809 = BarcodeEngineKind::kIntermecUsb0809;
constexpr auto kNone = BarcodeEngineKind::kNone;

const std::vector<PathRow> kPathRows{
    {"AsWindowsMakesIt", LR"(\\?\hid#vid_067e&pid_0801&col02#7&1a2b3c&0&0001#{4d1e55b2-f16f-11cf-88cb-001111000030})",
     k0801},
    {"ProductOfOneInterface", LR"(\\?\hid#vid_067e&pid_0809#6&2c1ce9c&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})",
     k0809},
    {"UpperCase", LR"(\\?\HID#VID_067E&PID_0801&COL02#7&1A2B3C&0&0001#)", k0801},
    {"MixedCase", LR"(\\?\hid#Vid_067e&PID_0801&Col02#7&1&0&0001#)", k0801},
    {"MixedCaseOfTheOtherProduct", LR"(\\?\hid#viD_067E&pId_0809&mi_00#)", k0809},
    {"NothingButTheNumbers", L"vid_067e&pid_0801&col02", k0801},
    {"NothingButTheOtherNumbers", L"vid_067e&pid_0809", k0809},
    {"NumbersAtTheEnd", LR"(\\?\hid#vid_067e&pid_0809)", k0809},
    {"OtherProductOfAnyCollection", L"vid_067e&pid_0809&col01#", k0809},
    {"AfterItsOwnBeginning", L"vid_067e&pid_080vid_067e&pid_0801&col02#", k0801},
    {"BothInOnePath", L"vid_067e&pid_0809#vid_067e&pid_0801&col02#", k0801},
    {"OtherCollection", LR"(\\?\hid#vid_067e&pid_0801&col01#7&1a2b3c&0&0000#)", kNone},
    {"NoCollection", LR"(\\?\hid#vid_067e&pid_0801#7&1a2b3c&0&0000#)", kNone},
    {"InterfaceBetween", L"vid_067e&pid_0801&mi_00&col02#", kNone},
    {"OtherProduct", L"vid_067e&pid_0802&col02#", kNone},
    {"OtherVendor", L"vid_067f&pid_0801&col02#", kNone},
    {"OtherOrder", L"pid_0809&vid_067e", kNone},
    {"OneCharacterShortAtTheEnd", L"vid_067e&pid_080", kNone},
    {"OneCharacterShortAtTheBeginning", L"id_067e&pid_0809", kNone},
    {"CollectionCutShort", L"vid_067e&pid_0801&col0", kNone},
    {"Empty", L"", kNone},
    // 0x10A above 'E', and the Turkish letter without a dot: equal to no ASCII letter.
    {"NarrowedToTheSameByte", L"vid_067\u0145&pid_0809", kNone},
    {"LetterWithoutADot", L"v\u0131d_067e&pid_0809", kNone},
    // Bytes that differ from letters in the bit of the case alone.
    {"UnderscoreInAnotherCase",
     L"vid\x7F"
     L"067e&pid_0809",
     kNone},
    {"AmpersandInAnotherCase", L"vid_067e\x06pid_0809", kNone},
};

class BarcodeHidPath : public testing::TestWithParam<PathRow> {};

TEST_P(BarcodeHidPath, SaysWhichEngineItIs) {
    EXPECT_EQ(EngineOfHidPath(GetParam().path), GetParam().kind);
}

INSTANTIATE_TEST_SUITE_P(All, BarcodeHidPath, testing::ValuesIn(kPathRows),
                         [](const auto& test) { return test.param.name; });

struct PortRow {
    const char* name;
    std::wstring portName;
    std::optional<std::int32_t> number;
};

void PrintTo(const PortRow& row, std::ostream* stream) {
    *stream << row.name;
}

const std::vector<PortRow> kPortRows{
    {"OneDigit", L"Intermec Scanner VID_067E (COM9)", 9},
    {"TwoDigits", L"Intermec Scanner VID_067E (COM12)", 12},
    {"ThreeDigits", L"Intermec Scanner VID_067E (COM256)", 256},
    {"AnyLastDigitOfTheVendor", L"VID_067B (COM3)", 3},
    {"NothingBehindTheVendor", L"(COM3) VID_067", 3},
    {"PortBeforeTheVendor", L"(COM4) of VID_067E&PID_0801", 4},
    {"NoClosingBracket", L"VID_067E (COM5", 5},
    {"DigitsEndAtALetter", L"VID_067E (COM6B)", 6},
    {"DigitsEndAtABlank", L"VID_067E (COM7 8)", 7},
    {"Zero", L"VID_067E (COM0)", 0},
    {"LeadingZeros", L"VID_067E (COM" + std::wstring(1000, L'0') + L"17)", 17},
    {"LargestNumber", L"VID_067E (COM2147483647)", 2147483647},
    {"BracketOfAName", L"VID_067E (COMPACT) (COM8)", 8},
    {"FirstOfTwoPorts", L"VID_067E (COM1) (COM2)", 1},
    {"BracketWithinABracket", L"VID_067E (COM(COM10)", 10},
    {"TooLargeByOne", L"VID_067E (COM2147483648)", std::nullopt},
    {"TooLargeFor32Bits", L"VID_067E (COM4294967297)", std::nullopt},
    {"TooLargeFor64Bits", L"VID_067E (COM18446744073709551617)", std::nullopt},
    {"EndlessDigits", L"VID_067E (COM" + std::wstring(10000, L'9') + L")", std::nullopt},
    {"NoDigits", L"VID_067E (COM)", std::nullopt},
    {"NothingBehindTheBracket", L"VID_067E (COM", std::nullopt},
    {"Negative", L"VID_067E (COM-1)", std::nullopt},
    {"Signed", L"VID_067E (COM+1)", std::nullopt},
    {"BlankBeforeTheDigits", L"VID_067E (COM 1)", std::nullopt},
    {"DigitsOfAnotherScript", L"VID_067E (COM\uFF11)", std::nullopt},
    {"NoBracket", L"VID_067E COM9", std::nullopt},
    {"OtherBracket", L"VID_067E [COM9]", std::nullopt},
    {"PrinterPort", L"VID_067E (LPT1)", std::nullopt},
    {"OtherVendor", L"VID_068E (COM9)", std::nullopt},
    {"VendorCutShort", L"VID_06 (COM9)", std::nullopt},
    {"NoVendor", L"Communications Port (COM1)", std::nullopt},
    // The system shows a port's name as its driver has it.
    {"VendorInLowerCase", L"vid_067e (COM9)", std::nullopt},
    {"PortInLowerCase", L"VID_067E (com9)", std::nullopt},
    {"Empty", L"", std::nullopt},
};

class BarcodePortName : public testing::TestWithParam<PortRow> {};

TEST_P(BarcodePortName, GivesTheNumberOfAScannersPort) {
    EXPECT_EQ(ScannerPortNumber(GetParam().portName), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(All, BarcodePortName, testing::ValuesIn(kPortRows),
                         [](const auto& test) { return test.param.name; });

// A name without a terminator, as registry values may be.
TEST(BarcodePortNameView, EndsTheDigits) {
    const std::wstring_view name = L"VID_067E (COM123)";
    EXPECT_EQ(ScannerPortNumber(name.substr(0, name.size() - 2)), 12);
}

}  // namespace
}  // namespace quarlin::test
