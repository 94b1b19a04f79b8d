// SPDX-License-Identifier: Apache-2.0
// Every symbology: its names, and what each engine is sent for it.
#include "bcr/setup_frame.h"
#include "bcr/symbology_table.h"

#include <gtest/gtest.h>

#include <cctype>
#include <limits>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using bcr::FindHoneywellPair;
using bcr::FindHoneywellSymbology;
using bcr::FindSymbology;
using bcr::FindSymbologyByName;
using bcr::SymbologyFrame;
using Commands = std::vector<std::string>;

struct Row {
    std::int32_t value;
    const wchar_t* name;
    const char* enableFrame;
    const char* disableFrame;
    // What a Honeywell engine is sent: one command, a pair, or nothing.
    Commands enable;
    Commands disable;
    const char* factoryDefault;
};

std::string NarrowName(const Row& row) {
    const std::wstring name = row.name;
    return {name.begin(), name.end()};
}

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << NarrowName(row);
}

const std::vector<Row> kRows{
    {0, L"Codabar", "40 40 01", "40 40 00", {"CBRENA1"}, {"CBRENA0"}, "CBRDFT"},
    {1, L"Code11", "4A 40 01", "4A 40 00", {"C11ENA1"}, {"C11ENA0"}, "C11DFT"},
    {2, L"Code128", "43 40 01", "43 40 00", {"128ENA1"}, {"128ENA0"}, "128DFT"},
    {3, L"ISBT", "43 41 01 43 40 00 43 42 00", "43 41 00", {"128ENA1"}, {"ISBENA0"}, "ISBENA0"},
    {4, L"Code_128_FrenchCIP", "43 4C 01", "43 4C 00", {"128ENA1"}, {"128ENA0"}, "128DFT"},
    {5, L"Code39", "42 40 01", "42 40 00", {"C39ENA1"}, {"C39ENA0"}, "C39DFT"},
    {6, L"TLC39", "4E 40 01", "4E 40 00", {"T39ENA1"}, {"T39ENA0"}, "T39ENA0"},
    {7, L"Code93", "41 40 01", "41 40 00", {"C93ENA1"}, {"C93ENA0"}, "C93DFT"},
    {8, L"EAN_13", "4B 43 01", "4B 43 00", {"E13ENA1"}, {"E13ENA0"}, "E13DFT"},
    {9, L"EAN_128_Irregular", "43 43 01", "43 43 00", {}, {}, ""},
    {10, L"ISBN", "4B 44 01", "4B 44 00", {"E13ISB1"}, {"E13ISB0"}, "E13ISB0"},
    {11,
     L"EAN_ISMN",
     "4B 61 01",
     "4B 61 00",
     {"DFMBK30099649999fe39fe37fe39fe30f7f503f501f44d01f100."},
     {"DFMCA3"},
     "DFMCA3"},
    {12, L"EAN_ISSN", "4B 62 01", "4B 62 00", {"E13ISR1", "E13ISS1"}, {"E13ISR0", "E13ISS0"}, ""},
    {13, L"EAN_8", "4B 42 01", "4B 42 00", {"EA8ENA1"}, {"EA8ENA0"}, "EA8DFT"},
    {14, L"EAN_128", "43 42 01", "43 42 00", {"GS1ENA1"}, {"GS1ENA0"}, "GS1DFT"},
    {15, L"RSS_14", "4F 40 01", "4F 40 00", {"RSSENA1"}, {"RSSENA0"}, "RSSDFT"},
    {16, L"RSS_Limited", "4F 41 01", "4F 41 00", {"RSLENA1"}, {"RSLENA0"}, "RSLDFT"},
    {17, L"RSS_Expanded", "4F 42 01", "4F 42 00", {"RSEENA1"}, {"RSEENA0"}, "RSEDFT"},
    {18, L"EAN.UCC Composite_AB", "56 40 01", "56 40 00", {"COMENA1"}, {"COMENA0"}, "COMENA0"},
    {19, L"EAN.UCC Composite_C", "56 41 01", "56 41 00", {"COMENA1"}, {"COMENA0"}, "COMENA0"},
    {20, L"EAN.UCC Composite_Lin", "56 44 01", "56 44 00", {"COMENA0"}, {"COMENA0"}, "COMENA0"},
    {21, L"Interleaved2of5", "44 40 01", "44 40 00", {"I25ENA1"}, {"I25ENA0"}, "I25DFT"},
    {22, L"Matrix", "45 40 01", "45 40 00", {"X25ENA1"}, {"X25ENA0"}, "X25DFT"},
    {23, L"Standard2of5", "48 40 01", "48 40 00", {"R25ENA1"}, {"R25ENA0"}, "R25DFT"},
    {24, L"MSI", "46 40 01", "46 40 00", {"MSIENA1"}, {"MSIENA0"}, "MSIDFT"},
    {25, L"Plessey", "47 40 01", "47 40 00", {"PLSENA1"}, {"PLSENA0"}, "PLSENA"},
    {26, L"Telepen", "49 40 01", "49 40 00", {"TELENA1"}, {"TELENA0"}, "TELDFT"},
    {27, L"UPC_A", "4B 40 01", "4B 40 00", {"UPBENA1"}, {"UPBENA0"}, "UPADFT"},
    {28, L"UPC_E", "4B 41 01", "4B 41 00", {"UPEEN01"}, {"UPEEN00"}, "UPEDFT"},
    {29, L"UPC_E1", "4B 4C 01", "4B 4C 00", {"UPEEN11"}, {"UPEEN10"}, "UPEEN10"},
    {30, L"Aztec", "53 40 01", "53 40 00", {"AZTENA1"}, {"AZTENA0"}, "AZTDFT"},
    {31, L"CODABLOCK_A", "4D 40 01", "4D 40 00", {"CBAENA1"}, {"CBAENA0"}, "CBADFT"},
    {32, L"CODABLOCK_F", "4D 41 01", "4D 41 00", {"CBFENA1"}, {"CBFENA0"}, "CBFDFT"},
    {33, L"DataMatrix", "54 40 01", "54 40 00", {"IDMENA1"}, {"IDMENA0"}, "IDMDFT"},
    {34, L"Maxicode", "52 40 01", "52 40 00", {"MAXENA1"}, {"MAXENA0"}, "MAXDFT"},
    {35, L"PDF417", "4C 40 01", "4C 40 00", {"PDFENA1"}, {"PDFENA0"}, "PDFDFT"},
    {36, L"MicroPDF 417", "4C 42 01", "4C 42 00", {"MPDENA1"}, {"MPDENA0"}, "MPDDFT"},
    {37, L"QR", "55 40 01", "55 40 00", {"QRCENA1"}, {"QRCENA0"}, "QRCDFT"},
    {38, L"AustralianPost", "34 40 01", "34 40 00", {"POSTAL1"}, {"POSTAL0"}, "POSTAL0"},
    {39, L"BPOCode", "32 40 01", "32 40 00", {"POSTAL7", "RMMISC1"}, {"POSTAL0", "RMMISC0"}, ""},
    {40, L"CanadaPost", "33 40 01", "33 40 00", {"POSTAL30"}, {"POSTAL0"}, "POSTAL0"},
    {41, L"Infomail", "39 40 01", "39 40 00", {"POSTAL2"}, {"POSTAL0"}, "POSTAL0"},
    {42, L"JapanPost", "35 40 01", "35 40 00", {"POSTAL3"}, {"POSTAL0"}, "POSTAL0"},
    {43, L"DutchPost", "36 40 01", "36 40 00", {"POSTAL4"}, {"POSTAL0"}, "POSTAL0"},
    {44, L"Planet", "31 40 01", "31 40 00", {"POSTAL5"}, {"POSTAL0"}, "POSTAL0"},
    {45, L"Postnet", "30 40 01", "30 40 00", {"POSTAL6"}, {"POSTAL0"}, "POSTAL0"},
    {46, L"SwedenPost", "37 40 01", "37 40 00", {"POSTAL32"}, {"POSTAL0"}, "POSTAL0"},
};

std::string Hex(std::span<const std::uint8_t> bytes) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += text.empty() ? "" : " ";
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

// The text of the frame; "none" when there is none.
std::string FrameOf(std::int32_t value, bool enable) {
    const std::optional<bcr::SetupFrame> frame = SymbologyFrame(value, enable);
    return frame ? Hex(frame->Bytes()) : "none";
}

// What a Honeywell engine is to be sent by the tables.
Commands CommandsOf(std::int32_t value, bool enable) {
    if (const auto pair = FindHoneywellPair(value, enable)) {
        return {pair->commands[0], pair->commands[1]};
    }
    const bcr::HoneywellRow* const row = FindHoneywellSymbology(value);
    const std::string command = enable ? row->enable : row->disable;
    return command.empty() ? Commands{} : Commands{command};
}

class BarcodeSymbologyRow : public testing::TestWithParam<Row> {};

TEST_P(BarcodeSymbologyRow, IsFoundByItsName) {
    EXPECT_EQ(FindSymbologyByName(GetParam().name), GetParam().value);
}

TEST_P(BarcodeSymbologyRow, IsFoundByItsValue) {
    const bcr::SymbologyRow* const row = FindSymbology(GetParam().value);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->value, GetParam().value);
    EXPECT_STREQ(row->name, GetParam().name);
}

TEST_P(BarcodeSymbologyRow, IsFoundAmongTheHoneywellCommandsByItsValue) {
    const bcr::HoneywellRow* const row = FindHoneywellSymbology(GetParam().value);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->value, GetParam().value);
    EXPECT_STREQ(row->factoryDefault, GetParam().factoryDefault);
}

TEST_P(BarcodeSymbologyRow, NameIsComparedToTheLetter) {
    const std::wstring name = GetParam().name;
    for (const std::wstring& other : {L" " + name, name + L" ", name + L'\0', name.substr(1), name + L"x"}) {
        EXPECT_NE(FindSymbologyByName(other), GetParam().value);
    }
    for (std::size_t i = 0; i < name.size(); ++i) {
        std::wstring other = name;
        // Letters of the other case, other digits.
        other[i] = static_cast<wchar_t>(other[i] ^ 0x20);
        EXPECT_NE(FindSymbologyByName(other), GetParam().value) << i;
        other[i] = static_cast<wchar_t>(name[i] + 0x100);
        EXPECT_NE(FindSymbologyByName(other), GetParam().value) << i;
        other = name;
        EXPECT_NE(FindSymbologyByName(other.erase(i, 1)), GetParam().value) << i;
    }
}

TEST_P(BarcodeSymbologyRow, HasItsIntermecFrames) {
    EXPECT_EQ(FrameOf(GetParam().value, true), GetParam().enableFrame);
    EXPECT_EQ(FrameOf(GetParam().value, false), GetParam().disableFrame);
}

TEST_P(BarcodeSymbologyRow, HasItsHoneywellCommands) {
    EXPECT_EQ(CommandsOf(GetParam().value, true), GetParam().enable);
    EXPECT_EQ(CommandsOf(GetParam().value, false), GetParam().disable);
}

TEST_P(BarcodeSymbologyRow, HasNoSingleCommandBesideAPair) {
    const bcr::HoneywellRow* const row = FindHoneywellSymbology(GetParam().value);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(std::string(row->enable).empty(), GetParam().enable.size() != 1);
    EXPECT_EQ(std::string(row->disable).empty(), GetParam().disable.size() != 1);
}

INSTANTIATE_TEST_SUITE_P(All, BarcodeSymbologyRow, testing::ValuesIn(kRows), [](const auto& test) {
    std::string name = NarrowName(test.param);
    for (char& character : name) {
        character = std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    }
    return name;
});

TEST(BarcodeSymbologies, Are47InTheOrderOfTheirValues) {
    ASSERT_EQ(kRows.size(), 47U);
    ASSERT_EQ(bcr::kSymbologyCount, 47U);
    std::set<std::wstring> names;
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        EXPECT_EQ(bcr::kSymbologyTable[i].value, static_cast<std::int32_t>(i));
        EXPECT_EQ(bcr::kHoneywellTable[i].value, static_cast<std::int32_t>(i));
        ASSERT_NE(bcr::kSymbologyTable[i].name, nullptr) << i;
        names.insert(bcr::kSymbologyTable[i].name);
    }
    EXPECT_EQ(names.size(), 47U);
}

TEST(BarcodeSymbologies, AreClosedByRowsWithoutTexts) {
    ASSERT_EQ(bcr::kSymbologyTable.size(), 48U);
    ASSERT_EQ(bcr::kHoneywellTable.size(), 48U);
    EXPECT_EQ(bcr::kSymbologyTable[47].name, nullptr);
    EXPECT_EQ(bcr::kHoneywellTable[47].enable, nullptr);
    EXPECT_EQ(bcr::kHoneywellTable[47].disable, nullptr);
    EXPECT_EQ(bcr::kHoneywellTable[47].factoryDefault, nullptr);
}

TEST(BarcodeSymbologies, AreNotFoundByOtherValues) {
    for (const std::int32_t value : {-1, 47, 48, 255, 256, 256 + 37, 0x10000, std::numeric_limits<std::int32_t>::max(),
                                     std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(FindSymbology(value), nullptr) << value;
        EXPECT_EQ(FindHoneywellSymbology(value), nullptr) << value;
        EXPECT_EQ(FrameOf(value, true), "none") << value;
        EXPECT_EQ(FrameOf(value, false), "none") << value;
        EXPECT_FALSE(FindHoneywellPair(value, true)) << value;
        EXPECT_FALSE(FindHoneywellPair(value, false)) << value;
    }
}

// The value of the row that closes the table must not become a symbology.
TEST(BarcodeSymbologies, DoNotIncludeTheClosingRow) {
    EXPECT_EQ(FindSymbology(bcr::kSymbologyTable[47].value), nullptr);
    EXPECT_EQ(FindHoneywellSymbology(bcr::kHoneywellTable[47].value), nullptr);
}

TEST(BarcodeSymbologies, AreNotFoundByNamesThatComeClose) {
    for (const wchar_t* const name : {L"",
                                      L" ",
                                      L"MicroPDF417",
                                      L"MicroPDF  417",
                                      L"micropdf 417",
                                      L"EAN.UCCComposite_AB",
                                      L"EANUCC Composite_AB",
                                      L"EAN UCC Composite_AB",
                                      L"EAN.UCC Composite",
                                      L"qr",
                                      L"Qr",
                                      L"QR Code",
                                      L"Code",
                                      L"Code 39",
                                      L"CODE39",
                                      L"EAN",
                                      L"EAN_",
                                      L"UPC",
                                      L"UPC_E2",
                                      L"\uFF31\uFF32"}) {
        EXPECT_EQ(FindSymbologyByName(name), std::nullopt);
    }
}

// Names of which one begins another one: the whole name decides.
TEST(BarcodeSymbologies, AreToldApartByTheirWholeNames) {
    EXPECT_EQ(FindSymbologyByName(L"EAN_128"), BARCODE_SYMBOLOGY_EAN_128);
    EXPECT_EQ(FindSymbologyByName(L"EAN_128_Irregular"), BARCODE_SYMBOLOGY_EAN_128_IRREGULAR);
    EXPECT_EQ(FindSymbologyByName(L"EAN_13"), BARCODE_SYMBOLOGY_EAN_13);
    EXPECT_EQ(FindSymbologyByName(L"UPC_E"), BARCODE_SYMBOLOGY_UPC_E);
    EXPECT_EQ(FindSymbologyByName(L"UPC_E1"), BARCODE_SYMBOLOGY_UPC_E1);
    EXPECT_EQ(FindSymbologyByName(L"PDF417"), BARCODE_SYMBOLOGY_PDF_417);
    EXPECT_EQ(FindSymbologyByName(L"MicroPDF 417"), BARCODE_SYMBOLOGY_MICRO_PDF_417);
}

// A view of more than the name, as a caller's buffer may be.
TEST(BarcodeSymbologies, NameIsTakenByItsLength) {
    const std::wstring_view text = L"QR";
    EXPECT_EQ(FindSymbologyByName(text), BARCODE_SYMBOLOGY_QR);
    EXPECT_EQ(FindSymbologyByName(text.substr(0, 1)), std::nullopt);
}

}  // namespace
}  // namespace quarlin::test
