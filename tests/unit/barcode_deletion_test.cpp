// SPDX-License-Identifier: Apache-2.0
// The deleting mode: what is removed, between which characters, and that it is done in one walk through the text.
#include "bcr/data_editing.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using bcr::Edit;
using bcr::EditSetting;
using namespace std::string_literals;

constexpr std::uint32_t kDelete = 3;

struct Row {
    const char* name;
    std::string target;
    std::int32_t start;
    std::int32_t end;
    std::string text;
    std::string expected;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

class BarcodeDelete : public testing::TestWithParam<Row> {};

TEST_P(BarcodeDelete, GivesTheText) {
    const Row& row = GetParam();
    EXPECT_EQ(Edit(row.text, {kDelete, row.target, "", row.start, row.end}), row.expected);
    // The content is of the other modes.
    EXPECT_EQ(Edit(row.text, {kDelete, row.target, "zz", row.start, row.end}), row.expected);
}

const std::vector<Row> kWholeTextRows{
    {"EachOccurrence", "0", 0, 0, "10203", "123"},
    {"Everything", "0", 0, 0, "0000", ""},
    {"NeighbouringOccurrences", "ab", 0, 0, "1abab2", "12"},
    {"AtBothEnds", "ab", 0, 0, "ab12ab", "12"},
    {"OverlappingOccurrencesFromTheFirst", "aa", 0, 0, "aaaaa", "a"},
    {"OverlappingWithAnother", "aba", 0, 0, "ababa", "ba"},
    // Removing one brings the next one together.
    {"AcrossTheSeam", "ab", 0, 0, "aabb", ""},
    {"AcrossTheSeamAgainAndAgain", "abc", 0, 0, "abaabcbcc1", "1"},
    {"AcrossTheSeamWithMoreBefore", "aab", 0, 0, "1aaaaabbb2", "1ab2"},
    {"AcrossTheSeamOfTwo", "ab", 0, 0, "aababb", ""},
    {"TargetThatIsNotThere", "z", 0, 0, "abc", "abc"},
    {"TargetLongerThanTheText", "abcd", 0, 0, "abc", "abc"},
    {"TargetAsLongAsTheText", "abc", 0, 0, "abc", ""},
    {"TargetOneByteShorterThanTheText", "abc", 0, 0, "xabc", "x"},
    {"BeginningOfTheTargetAtTheEnd", "ab", 0, 0, "1a", "1a"},
    {"CaseMatters", "A", 0, 0, "aA", "a"},
    {"EmptyText", "a", 0, 0, "", ""},
    {"EmptyTarget", "", 0, 0, "abc", "abc"},
    {"ZerosAreBytes", "\0"s, 0, 0, "a\0b\0"s, "ab"},
    {"BytesAreComparedNotCharacters", "\xA4", 0, 0, "\xC3\xA4", "\xC3"},
};

INSTANTIATE_TEST_SUITE_P(WholeText, BarcodeDelete, testing::ValuesIn(kWholeTextRows),
                         [](const auto& test) { return test.param.name; });

const std::vector<Row> kStartRows{
    {"BehindTheFirst", "0", 1, 0, "0000", "0"},
    {"BehindTheThird", "0", 3, 0, "00000", "000"},
    {"BeforeTheLast", "0", 3, 0, "0000", "000"},
    // A position that leaves no character behind it counts as the beginning.
    {"BehindTheLast", "0", 4, 0, "0000", ""},
    {"BeyondTheLast", "0", 5, 0, "0000", ""},
    {"HighestPosition", "0", INT_MAX, 0, "0000", ""},
    {"Negative", "0", -1, 0, "0000", ""},
    {"LowestPosition", "0", INT_MIN, 0, "0000", ""},
    {"WithinAnOccurrence", "ab", 1, 0, "abab", "ab"},
    // What stands before the start takes part in no occurrence.
    {"SeamAtTheStart", "ab", 1, 0, "aabb", "ab"},
    {"SeamBeforeTheStart", "ab", 1, 0, "aabbb", "abb"},
    {"CharactersOfManyBytes", "0", 2, 0,
     "\xC3\xA4\xE3\x81\x82"
     "00",
     "\xC3\xA4\xE3\x81\x82"},
    {"CharactersNotBytes", "0", 1, 0,
     "\xF0\x9F\x98\x80"
     "0",
     "\xF0\x9F\x98\x80"},
    {"StrayContinuationByte", "0", 1, 0,
     "\x80"
     "000",
     "\x80"
     "0"},
};

INSTANTIATE_TEST_SUITE_P(Start, BarcodeDelete, testing::ValuesIn(kStartRows),
                         [](const auto& test) { return test.param.name; });

const std::vector<Row> kEndRows{
    {"BehindTheFirst", "0", 0, 1, "0000", "000"},
    {"BehindTheThird", "0", 0, 3, "0000", "0"},
    // A position that leaves no character behind it counts as the end.
    {"BehindTheLast", "0", 0, 4, "0000", ""},
    {"BeyondTheLast", "0", 0, 5, "0000", ""},
    {"HighestPosition", "0", 0, INT_MAX, "0000", ""},
    {"FromTheEnd", "0", 0, -1, "0000", "0"},
    {"FromTheEndBehindTheFirst", "0", 0, -3, "0000", "000"},
    {"FromTheEndBeforeTheFirst", "0", 0, -4, "0000", ""},
    {"FromTheEndBeforeTheBeginning", "0", 0, -5, "0000", ""},
    {"LowestPosition", "0", 0, INT_MIN, "0000", ""},
    // The whole target has to lie before the end.
    {"TargetUpToTheEnd", "ab", 0, 2, "abab", "ab"},
    {"TargetAcrossTheEnd", "ab", 0, 3, "abab", "ab"},
    {"TargetAcrossTheEndAlone", "ab", 0, 1, "abab", "abab"},
    {"TargetLongerThanTheRange", "abcd", 0, 2, "abcdabcd", "abcdabcd"},
    // What is removed takes the end along.
    {"EndComesNearer", "0", 0, 2, "000000", "0000"},
    {"EndComesNearerByTheTargetsLength", "ab", 0, 4, "abababab", "abab"},
    {"OccurrenceThatMovesBeforeTheEnd", "0", 0, 3,
     "1"
     "0"
     "2"
     "0"
     "3",
     "12"
     "0"
     "3"},
    {"SeamBeforeTheEnd", "ab", 0, 4, "aabbab", "ab"},
    {"SeamAcrossTheEnd", "ab", 0, 3, "aabbab", "abab"},
    {"CharactersOfManyBytes", "0", 0, 2,
     "\xE3\x81\x82"
     "00",
     "\xE3\x81\x82"
     "0"},
    {"CharactersOfManyBytesFromTheEnd", "0", 0, -1, "0\xE3\x81\x82", "\xE3\x81\x82"},
    {"BrokenTailIsTheLastCharacter", "0", 0, -1, "00\xE3\x81", "\xE3\x81"},
};

INSTANTIATE_TEST_SUITE_P(End, BarcodeDelete, testing::ValuesIn(kEndRows),
                         [](const auto& test) { return test.param.name; });

const std::vector<Row> kRangeRows{
    {"BetweenTwoCharacters", "0", 1, 3, "00000", "000"},
    {"BetweenTwoCharactersFromTheEnd", "0", 1, -1, "00000", "00"},
    {"EmptyRange", "0", 2, 2, "00000", "00000"},
    {"EndBeforeTheStart", "0", 3, 1, "00000", "00000"},
    {"EndBeforeTheStartFromTheEnd", "0", 3, -4, "00000", "00000"},
    {"RangeOfOneTarget", "ab", 2, 4, "ababab", "abab"},
    {"BothBeyondTheText", "0", 9, 9, "000", ""},
    {"BothLowest", "0", INT_MIN, INT_MIN, "000", ""},
    {"OutsideOfTheRange", "0", 1, 3, "01230", "01230"},
};

INSTANTIATE_TEST_SUITE_P(Range, BarcodeDelete, testing::ValuesIn(kRangeRows),
                         [](const auto& test) { return test.param.name; });

// The rule as it is said, for texts of one-byte characters: search from the start, remove, search again.
std::string RemoveStepByStep(std::string text, const std::string& target, int start, int end) {
    const auto count = static_cast<int>(text.size());
    const int from = start >= 1 && count > start ? start : 0;
    int limit = end != 0 && count > std::abs(end) ? (end > 0 ? end : count + end) : count;
    const auto length = static_cast<int>(target.size());
    if (length > 1) {
        limit = limit + 1 - length;
    }
    for (;;) {
        const std::size_t found = text.find(target, static_cast<std::size_t>(from));
        if (found == std::string::npos || static_cast<int>(found) >= limit) {
            return text;
        }
        text.erase(found, target.size());
        limit -= length;
    }
}

// The texts of a length over two letters.
std::vector<std::string> TextsOf(std::size_t length) {
    std::vector<std::string> texts;
    for (unsigned bits = 0; bits < 1U << length; ++bits) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i) {
            text += (bits >> i & 1U) != 0 ? 'b' : 'a';
        }
        texts.push_back(text);
    }
    return texts;
}

TEST(BarcodeDeletion, IsWhatTheStepsGiveForAllShortTexts) {
    for (std::size_t targetLength = 1; targetLength <= 4; ++targetLength) {
        for (const std::string& target : TextsOf(targetLength)) {
            for (const std::string& text : TextsOf(10)) {
                for (const int start : {0, 1, 3}) {
                    for (const int end : {0, 5, 8, -1}) {
                        ASSERT_EQ(Edit(text, {kDelete, target, "", start, end}),
                                  RemoveStepByStep(text, target, start, end))
                            << target << " of " << text << " from " << start << " to " << end;
                    }
                }
            }
        }
    }
}

TEST(BarcodeDeletion, IsWhatTheStepsGiveForAllPositions) {
    for (const std::string& target : {"a"s, "ab"s, "aab"s, "abab"s}) {
        for (const std::string& text : {"aaaaaaaa"s, "aaaabbbb"s, "aabaabbb"s, "babababa"s, "aaabbabb"s}) {
            for (int start = -10; start <= 10; ++start) {
                for (int end = -10; end <= 10; ++end) {
                    ASSERT_EQ(Edit(text, {kDelete, target, "", start, end}), RemoveStepByStep(text, target, start, end))
                        << target << " of " << text << " from " << start << " to " << end;
                }
            }
        }
    }
}

// Targets within targets, some of them cut, so that one removal after the other brings the next together.
TEST(BarcodeDeletion, IsWhatTheStepsGiveForNestedTargets) {
    std::mt19937 random(20);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    for (int round = 0; round < 4000; ++round) {
        std::string target;
        for (std::size_t length = 3 + below(6); target.size() < length;) {
            target += below(3) == 0 ? 'b' : 'a';
        }
        std::string text;
        for (std::size_t count = 1 + below(8); count != 0; --count) {
            const std::string part = target.substr(0, below(4) == 0 ? below(target.size()) : target.size());
            text.insert(below(text.size() + 1), part);
        }
        const int end = static_cast<int>(below(text.size() + 1));
        const int start = static_cast<int>(below(4));
        for (const int last : {0, end, -end / 4}) {
            ASSERT_EQ(Edit(text, {kDelete, target, "", start, last}), RemoveStepByStep(text, target, start, last))
                << target << " of " << text << " from " << start << " to " << last;
        }
    }
}

// Step by step these would take minutes.
TEST(BarcodeDeletion, OfALargeTextIsOneWalk) {
    constexpr std::size_t kHalf = std::size_t{1} << 19;
    const std::string opening(kHalf, 'a');
    const std::string closing(kHalf, 'b');
    EXPECT_EQ(Edit(opening + closing, {kDelete, "ab", ""}), "");
    EXPECT_EQ(Edit(opening + closing + "b", {kDelete, "ab", ""}), "b");
    EXPECT_EQ(Edit(opening + closing + closing, {kDelete, "abb", ""}), "");
    EXPECT_EQ(Edit(opening + opening, {kDelete, "a", "", 1}), "a");
    // A target whose beginning comes again and again.
    EXPECT_EQ(Edit("aab" + opening, {kDelete, "aab", ""}), opening);
}

}  // namespace
}  // namespace quarlin::test
