// SPDX-License-Identifier: Apache-2.0
#include "gps/line_assembler.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quarlin::gps {
namespace {

using Lines = std::vector<std::string>;

// A bad line reads as this.
const std::string kNoSentence = "\n";

Lines Take(LineAssembler& assembler, const std::string& bytes) {
    Lines lines;
    for (const char byte : bytes) {
        if (assembler.Take(static_cast<unsigned char>(byte))) {
            lines.emplace_back(assembler.Line());
        }
    }
    return lines;
}

Lines Take(const std::string& bytes) {
    LineAssembler assembler;
    return Take(assembler, bytes);
}

TEST(LineReader, GivesALineAtItsLineFeed) {
    LineAssembler assembler;
    EXPECT_EQ(Take(assembler, "$GPG"), Lines{});
    EXPECT_EQ(Take(assembler, "GA"), Lines{});
    EXPECT_EQ(Take(assembler, "\n"), Lines{"$GPGGA"});
}

TEST(LineReader, GivesTheSameLinesForBothLineEnds) {
    const Lines expected{"one", "two", "", "three"};
    EXPECT_EQ(Take("one\ntwo\n\nthree\n"), expected);
    EXPECT_EQ(Take("one\r\ntwo\r\n\r\nthree\r\n"), expected);
    EXPECT_EQ(Take("one\r\ntwo\n\r\nthree\n"), expected);
}

TEST(LineReader, DropsCarriageReturnsWhereverTheyStand) {
    EXPECT_EQ(Take("\ron\re\r\r\n"), Lines{"one"});
}

TEST(LineReader, DropsALineWithATildeWhole) {
    EXPECT_EQ(Take("$GPGGA,1~2\n$GPGGA,2\n"), (Lines{kNoSentence, "$GPGGA,2"}));
    EXPECT_EQ(Take("~\nb\n"), (Lines{kNoSentence, "b"}));
    EXPECT_EQ(Take("a~\nb\n"), (Lines{kNoSentence, "b"}));
}

class EveryByte : public testing::TestWithParam<int> {};

Lines LinesWith(int byte) {
    const std::string text = std::string("a") + static_cast<char>(byte) + "b";
    if (byte == '\n') {
        return {"a", "b", "next"};
    }
    if (byte == '\r') {
        return {"ab", "next"};
    }
    return {byte >= 32 && byte <= 125 ? text : kNoSentence, "next"};
}

TEST_P(EveryByte, IsKeptOrDroppedOrEndsOrSpoilsItsLine) {
    const std::string character(1, static_cast<char>(GetParam()));
    EXPECT_EQ(Take("a" + character + "b\nnext\n"), LinesWith(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Value, EveryByte, testing::Range(0, 256));

TEST(LineReader, KeepsOnlyTheLast476CharactersOf1500) {
    std::string text;
    for (int i = 0; i < 1500; ++i) {
        text.push_back(static_cast<char>('!' + i % 90));
    }
    EXPECT_EQ(Take(text + '\n'), Lines{text.substr(1024)});
    EXPECT_EQ(Take(text + '\n').front().size(), 476U);
}

TEST(LineReader, StartsOverAfterEvery1024Characters) {
    for (const std::size_t length : {1022U, 1023U, 1024U, 1025U, 2047U, 2048U, 2049U, 10'000U}) {
        const Lines lines = Take(std::string(length, 'x') + "\nnext\n");
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_EQ(lines[0], std::string(length % 1024, 'x')) << length;
        EXPECT_EQ(lines[1], "next");
    }
}

TEST(LineReader, DroppedBytesTakeNoRoom) {
    std::string text(1023, 'x');
    text.insert(500, "\r\r\r\r");
    EXPECT_EQ(Take(text + '\n'), Lines{std::string(1023, 'x')});
}

TEST(LineReader, AnOverLongBadLineIsStillBad) {
    EXPECT_EQ(Take("~" + std::string(3000, 'x') + "\nnext\n"), (Lines{kNoSentence, "next"}));
    EXPECT_EQ(Take(std::string(3000, '\xff') + "\nnext\n"), (Lines{kNoSentence, "next"}));
}

}  // namespace
}  // namespace quarlin::gps
