// SPDX-License-Identifier: Apache-2.0
#include "view/byte_text.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using namespace std::string_literals;

TEST(Escaped, ShowsCharactersAsTheyAre) {
    EXPECT_EQ(Escaped("ABC-123 ~"), "ABC-123 ~");
    EXPECT_EQ(Escaped("Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x93\xA6"), "Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x93\xA6");
}

TEST(Escaped, ShowsWhatATerminalWouldObeyAsItsNumber) {
    EXPECT_EQ(Escaped("01\x1D"s + "17\x1B[2J\x7F"), "01\\x1D17\\x1B[2J\\x7F");
    EXPECT_EQ(Escaped("a\r\n\tb\0c"s), "a\\r\\n\\tb\\x00c");
    EXPECT_EQ(Escaped("\xC2\x9B"), "\\xC2\\x9B");
    EXPECT_EQ(Escaped("\\x41"), "\\\\x41");
}

TEST(Escaped, ShowsBytesThatAreNoUtf8AsNumbers) {
    EXPECT_EQ(Escaped("Z\xFCrich"), "Z\\xFCrich");
    EXPECT_EQ(Escaped("\x80"), "\\x80");
    EXPECT_EQ(Escaped("\xE2\x82"), "\\xE2\\x82") << "cut short";
    EXPECT_EQ(Escaped("\xE2\x82g"), "\\xE2\\x82g");
    EXPECT_EQ(Escaped("\xC0\xAF"), "\\xC0\\xAF") << "longer than need be";
    EXPECT_EQ(Escaped("\xE0\x80\xAF"), "\\xE0\\x80\\xAF");
    EXPECT_EQ(Escaped("\xED\xA0\x80"), "\\xED\\xA0\\x80") << "half of a pair";
    EXPECT_EQ(Escaped("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80") << "beyond the last character";
}

TEST(Unescaped, IsTheOtherWayRound) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    EXPECT_EQ(Unescaped(Escaped(bytes)), bytes);
    EXPECT_EQ(Unescaped("\\x1d\\x1D\\r\\n\\t\\\\x"), "\x1D\x1D\r\n\t\\x");
    EXPECT_EQ(Unescaped(""), "");
}

TEST(Unescaped, RefusesWhatItDoesNotKnow) {
    for (const char* const line : {"\\", "a\\q", "\\x", "\\x4", "\\xG0", "\\x 4", "\\x00"}) {
        EXPECT_EQ(Unescaped(line), std::nullopt) << line;
    }
}

}  // namespace
}  // namespace quarlin::qlctl
