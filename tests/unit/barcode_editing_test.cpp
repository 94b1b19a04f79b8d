// SPDX-License-Identifier: Apache-2.0
// Characters and their positions, and the replacing and inserting modes.
#include "bcr/data_editing.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using bcr::CountCharacters;
using bcr::Edit;
using bcr::EditSetting;
using bcr::OffsetBehind;
using namespace std::string_literals;

constexpr std::uint32_t kReplace = 1;
constexpr std::uint32_t kInsert = 2;

struct CharacterRow {
    const char* name;
    std::string text;
    // Behind each character.
    std::vector<std::size_t> ends;
};

void PrintTo(const CharacterRow& row, std::ostream* stream) {
    *stream << row.name;
}

const std::vector<CharacterRow> kCharacterRows{
    {"Nothing", "", {}},
    {"Ascii", "abc", {1, 2, 3}},
    {"Zeros", "\0\0"s, {1, 2}},
    {"HighestOneByte", "\x7F\x7F", {1, 2}},
    {"TwoBytes", "\xC3\xA4\xC3\xB6", {2, 4}},
    {"ThreeBytes", "\xE3\x81\x82\xEF\xBC\xA1", {3, 6}},
    {"FourBytes", "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", {4, 8}},
    {"AllLengths", "a\xC3\xA4\xE3\x81\x82\xF0\x9F\x98\x80z", {1, 3, 6, 10, 11}},
    // The first byte alone decides, whatever stands behind it.
    {"LowestTwoBytes", "\x80xa", {2, 3}},
    {"ContinuationByteTakesTheNextOneAlong", "\xBFxa", {2, 3}},
    {"HighestTwoBytes", "\xDFxa", {2, 3}},
    {"LowestThreeBytes", "\xE0xya", {3, 4}},
    {"HighestThreeBytes", "\xEFxya", {3, 4}},
    {"LowestFourBytes", "\xF0xyza", {4, 5}},
    {"HighestFourBytes", "\xFFxyza", {4, 5}},
    {"TwoContinuationBytes", "\x80\x80", {2}},
    // What is left at the end is one character.
    {"TwoBytesCutShort", "a\xC3", {1, 2}},
    {"ThreeBytesCutShortByOne", "a\xE3\x81", {1, 3}},
    {"ThreeBytesCutShortByTwo", "a\xE3", {1, 2}},
    {"FourBytesCutShortByOne", "a\xF0\x9F\x98", {1, 4}},
    {"FourBytesCutShortByThree", "a\xF0", {1, 2}},
    {"StrayContinuationByteAtTheEnd", "a\x80", {1, 2}},
};

class BarcodeCharacters : public testing::TestWithParam<CharacterRow> {};

TEST_P(BarcodeCharacters, AreCounted) {
    EXPECT_EQ(CountCharacters(GetParam().text), GetParam().ends.size());
}

TEST_P(BarcodeCharacters, EndWhereTheirFirstBytesSay) {
    const auto count = static_cast<std::int32_t>(GetParam().ends.size());
    for (std::int32_t k = 1; k <= count; ++k) {
        const std::size_t end = GetParam().ends[static_cast<std::size_t>(k - 1)];
        EXPECT_EQ(OffsetBehind(GetParam().text, k), end) << k;
        // From the end: the position that leaves as many characters behind it.
        if (k < count) {
            EXPECT_EQ(OffsetBehind(GetParam().text, k - count), end) << k;
        }
    }
}

TEST_P(BarcodeCharacters, EndNowhereElse) {
    const auto count = static_cast<std::int32_t>(GetParam().ends.size());
    for (const std::int32_t position : {0, count + 1, count + 2, INT_MAX, -count, -count - 1, INT_MIN, INT_MIN + 1}) {
        EXPECT_EQ(OffsetBehind(GetParam().text, position), std::nullopt) << position;
    }
}

// In a block of exactly its length: a byte read behind it is noticed.
TEST_P(BarcodeCharacters, AreToldWithoutATerminator) {
    const std::string& text = GetParam().text;
    const auto block = std::make_unique<char[]>(text.size());
    std::copy(text.begin(), text.end(), block.get());
    const std::string_view view(block.get(), text.size());
    EXPECT_EQ(CountCharacters(view), GetParam().ends.size());
    EXPECT_EQ(OffsetBehind(view, INT_MAX), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, BarcodeCharacters, testing::ValuesIn(kCharacterRows),
                         [](const auto& test) { return test.param.name; });

struct EditRow {
    const char* name;
    EditSetting setting;
    std::string text;
    std::string expected;
};

void PrintTo(const EditRow& row, std::ostream* stream) {
    *stream << row.name;
}

class BarcodeEdit : public testing::TestWithParam<EditRow> {};

TEST_P(BarcodeEdit, GivesTheText) {
    EXPECT_EQ(Edit(GetParam().text, GetParam().setting), GetParam().expected);
}

const std::vector<EditRow> kReplaceRows{
    {"ContentThatHoldsTheTarget", {kReplace, "A", "AA"}, "ABA", "AABAA"},
    {"ContentThatEndsWithTheTarget", {kReplace, "A", "BA"}, "AA", "BABA"},
    {"EachOccurrence", {kReplace, "-", "/"}, "2024-01-02", "2024/01/02"},
    {"ByAShorterContent", {kReplace, "abc", "x"}, "abcabc1abc", "xx1x"},
    {"ByALongerContent", {kReplace, "1", "<one>"}, "1121", "<one><one>2<one>"},
    {"ByTheSame", {kReplace, "1", "1"}, "111", "111"},
    {"WholeText", {kReplace, "abc", "x"}, "abc", "x"},
    {"OverlappingOccurrencesFromTheFirst", {kReplace, "aa", "b"}, "aaaaa", "bba"},
    // What a replacement brings together is not looked at again.
    {"ReplacementThatMakesANewTarget", {kReplace, "ab", "a"}, "abb", "ab"},
    {"ContentWithWhatFollowsMakesATarget", {kReplace, "xy", "x"}, "xyy", "xy"},
    {"TargetThatIsNotThere", {kReplace, "z", "y"}, "abc", "abc"},
    {"TargetLongerThanTheText", {kReplace, "abcd", "x"}, "abc", "abc"},
    {"BeginningOfTheTargetAtTheEnd", {kReplace, "ab", "x"}, "1a", "1a"},
    {"CaseMatters", {kReplace, "A", "x"}, "aA", "ax"},
    {"EmptyText", {kReplace, "a", "x"}, "", ""},
    {"EmptyContentSwitchesOff", {kReplace, "a", ""}, "abc", "abc"},
    {"EmptyTargetSwitchesOff", {kReplace, "", "x"}, "abc", "abc"},
    {"BothEmpty", {kReplace, "", ""}, "abc", "abc"},
    {"PositionsDoNotMatter", {kReplace, "a", "x", 3, 1}, "aaaa", "xxxx"},
    {"ZerosAreBytes", {kReplace, "\0"s, "0"}, "a\0b\0"s, "a0b0"},
    {"BytesAreComparedNotCharacters", {kReplace, "\xA4", "?"}, "\xC3\xA4", "\xC3?"},
};

INSTANTIATE_TEST_SUITE_P(Replace, BarcodeEdit, testing::ValuesIn(kReplaceRows),
                         [](const auto& test) { return test.param.name; });

EditRow InsertRow(const char* name, std::int32_t start, const std::string& text, const std::string& expected) {
    return {name, {kInsert, "", "-", start}, text, expected};
}

const std::vector<EditRow> kInsertRows{
    InsertRow("BehindTheFirst", 1, "1234", "1-234"),
    InsertRow("BehindTheSecond", 2, "1234", "12-34"),
    InsertRow("BehindTheLast", 4, "1234", "1234-"),
    InsertRow("BeyondTheLast", 5, "1234", "1234"),
    InsertRow("FarBeyondTheLast", INT_MAX, "1234", "1234"),
    InsertRow("Nowhere", 0, "1234", "1234"),
    InsertRow("BeforeTheLast", -1, "1234", "123-4"),
    InsertRow("BehindTheFirstFromTheEnd", -3, "1234", "1-234"),
    InsertRow("BeforeTheFirst", -4, "1234", "1234"),
    InsertRow("BeforeTheBeginning", -5, "1234", "1234"),
    InsertRow("LowestPosition", INT_MIN, "1234", "1234"),
    InsertRow("LowestPositionButOne", INT_MIN + 1, "1234", "1234"),
    InsertRow("OnlyCharacter", 1, "1", "1-"),
    InsertRow("OnlyCharacterFromTheEnd", -1, "1", "1"),
    InsertRow("EmptyText", 1, "", ""),
    InsertRow("EmptyTextFromTheEnd", -1, "", ""),
    InsertRow("EmptyTextLowestPosition", INT_MIN, "", ""),
    InsertRow("BehindACharacterOfTwoBytes", 1, "\xC3\xA4z", "\xC3\xA4-z"),
    InsertRow("BehindACharacterOfThreeBytes", 2, "a\xE3\x81\x82z", "a\xE3\x81\x82-z"),
    InsertRow("BehindACharacterOfFourBytes", -1, "\xF0\x9F\x98\x80z", "\xF0\x9F\x98\x80-z"),
    InsertRow("BytesAreNotCharacters", 3, "\xC3\xA4\xC3\xB6", "\xC3\xA4\xC3\xB6"),
    InsertRow("BehindABrokenTail", 2, "a\xE3\x81", "a\xE3\x81-"),
    InsertRow("BehindAStrayContinuationByte", 1, "\x80zz", "\x80z-z"),
    {"TargetDoesNotMatter", {kInsert, "3", "-", 2}, "1234", "12-34"},
    {"EndDoesNotMatter", {kInsert, "", "-", 2, 1}, "1234", "12-34"},
    {"LongContent", {kInsert, "", std::string(500, 'x'), 1}, "ab", "a" + std::string(500, 'x') + "b"},
    {"EmptyContent", {kInsert, "", "", 2}, "1234", "1234"},
};

INSTANTIATE_TEST_SUITE_P(Insert, BarcodeEdit, testing::ValuesIn(kInsertRows),
                         [](const auto& test) { return test.param.name; });

TEST(BarcodeEditMode, OfNoMeaningChangesNothing) {
    for (const std::uint32_t mode : {0U, 4U, 5U, 255U, 256U, 257U, 258U, 259U, 0x10001U, 0x80000001U, 0xFFFFFFFFU}) {
        EXPECT_EQ(Edit("1234", {mode, "2", "x", 2, 0}), "1234") << mode;
    }
}

TEST(BarcodeEditMode, IsNoneAtFirst) {
    EXPECT_EQ(Edit("1234", EditSetting{}), "1234");
}

}  // namespace
}  // namespace quarlin::test
