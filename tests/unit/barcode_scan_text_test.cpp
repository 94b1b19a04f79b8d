// SPDX-License-Identifier: Apache-2.0
// The text of a scan: prefix, fields, edited text, suffix.
#include "bcr/scan_text.h"
#include "scan_record.h"

#include <gtest/gtest.h>
#include <quarlin/barcode.h>

#include <ostream>

namespace quarlin::test {
namespace {

using bcr::HoneywellText;
using bcr::IntermecText;
using bcr::TextSettings;
using namespace std::string_literals;

bcr::ExtendedData DataOf(const std::array<std::string_view, 5>& fields) {
    bcr::ExtendedData data;
    data.fields = fields;
    return data;
}

struct PlaceRow {
    const char* name;
    std::uint8_t prefixAsTop;
    std::uint8_t suffixAsTop;
    const char* expected;
};

void PrintTo(const PlaceRow& row, std::ostream* stream) {
    *stream << row.name;
}

class BarcodePlaces : public testing::TestWithParam<PlaceRow> {
  protected:
    static TextSettings Settings() {
        TextSettings settings;
        settings.prefix = {"<", GetParam().prefixAsTop};
        settings.suffix = {">", GetParam().suffixAsTop};
        return settings;
    }
};

TEST_P(BarcodePlaces, AreAroundTheOuterFieldsOfAnIntermecRecord) {
    EXPECT_EQ(IntermecText(DataOf({"A", "B", "C", "D", "]E0"}), Settings()), GetParam().expected);
}

TEST_P(BarcodePlaces, DoNotMatterForAHoneywellEngine) {
    EXPECT_EQ(HoneywellText("C", Settings()), "<C>");
}

TEST_P(BarcodePlaces, DoNotMatterWithoutTheFieldsAround) {
    EXPECT_EQ(IntermecText(DataOf({"", "", "C", "", "]E0"}), Settings()), "<C>");
}

TEST_P(BarcodePlaces, DoNotMatterWithoutPrefixAndSuffix) {
    TextSettings settings = Settings();
    settings.prefix.text.clear();
    settings.suffix.text.clear();
    EXPECT_EQ(IntermecText(DataOf({"A", "B", "C", "D", "]E0"}), settings), "ABCD");
}

INSTANTIATE_TEST_SUITE_P(All, BarcodePlaces,
                         testing::Values(PlaceRow{"BothInside", 0, 0, "A<BC>D"},
                                         PlaceRow{"PrefixOutside", 1, 0, "<ABC>D"},
                                         PlaceRow{"SuffixOutside", 0, 1, "A<BCD>"},
                                         PlaceRow{"BothOutside", 1, 1, "<ABCD>"},
                                         // Any flag but 0.
                                         PlaceRow{"OtherFlags", 2, 0x80, "<ABCD>"}),
                         [](const auto& test) { return test.param.name; });

TEST(BarcodeText, IsTheScannedTextAtFirst) {
    const TextSettings settings;
    EXPECT_EQ(HoneywellText("4901234567894", settings), "4901234567894");
    EXPECT_EQ(IntermecText(DataOf({"", "", "4901234567894", "", "]E0"}), settings), "4901234567894");
}

TEST(BarcodeText, PlacesAreOutsideAtFirst) {
    EXPECT_EQ(TextSettings{}.prefix.asTop, 1);
    EXPECT_EQ(TextSettings{}.suffix.asTop, 1);
}

// Neither what is added nor the fields around are touched by the edit.
TEST(BarcodeText, EditsTheScannedTextAlone) {
    TextSettings settings;
    settings.prefix.text = "0p";
    settings.suffix.text = "0s";
    settings.edit = {QLBCR_EDIT_REPLACE, "0", "--"};
    EXPECT_EQ(HoneywellText("102", settings), "0p1--20s");
    EXPECT_EQ(IntermecText(DataOf({"0A", "0B", "102", "0D", "0"}), settings), "0p0A0B1--20D0s");
}

TEST(BarcodeText, EditsBeforeItAdds) {
    TextSettings settings;
    settings.prefix.text = "ab";
    settings.suffix.text = "ab";
    settings.edit = {QLBCR_EDIT_DELETE, "ba", ""};
    EXPECT_EQ(HoneywellText("a1b", settings), "aba1bab");
    settings.edit = {QLBCR_EDIT_INSERT, "", "-", 1};
    EXPECT_EQ(HoneywellText("a1b", settings), "aba-1bab");
    EXPECT_EQ(IntermecText(DataOf({"x", "y", "a1b", "z", ""}), settings), "abxya-1bzab");
}

TEST(BarcodeText, MayBecomeEmpty) {
    TextSettings settings;
    EXPECT_EQ(HoneywellText("", settings), "");
    EXPECT_EQ(IntermecText(DataOf({}), settings), "");
    settings.edit = {QLBCR_EDIT_DELETE, "0", ""};
    EXPECT_EQ(HoneywellText("000", settings), "");
    EXPECT_EQ(IntermecText(DataOf({"", "", "000", "", "]E0"}), settings), "");
}

TEST(BarcodeText, HasPrefixAndSuffixWithoutAScan) {
    TextSettings settings;
    settings.prefix.text = "<";
    settings.suffix.text = ">";
    EXPECT_EQ(HoneywellText("", settings), "<>");
}

TEST(BarcodeText, KeepsBytesThatAreNoText) {
    TextSettings settings;
    settings.prefix.text = "\0\x80"s;
    EXPECT_EQ(IntermecText(DataOf({"\xFF"s, "\0"s, "\x1D\0"s, "\xC3"s, ""}), settings), "\0\x80\xFF\0\x1D\0\xC3"s);
    EXPECT_EQ(HoneywellText("\x1D\0\x80"s, settings), "\0\x80\x1D\0\x80"s);
}

// From the engine's bytes to the text, as the listener does it.
TEST(BarcodeText, IsMadeOfARecord) {
    const ExactBlock block(RecordOf({"head", "(", "10203", ")", "]C0"}).Bytes());
    TextSettings settings;
    settings.prefix = {"<", 0};
    settings.suffix = {">", 1};
    settings.edit = {QLBCR_EDIT_DELETE, "0", ""};
    EXPECT_EQ(IntermecText(bcr::SplitExtendedData(block.Span()), settings), "head<(123)>");
}

}  // namespace
}  // namespace quarlin::test
