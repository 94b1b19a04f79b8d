// SPDX-License-Identifier: Apache-2.0
#include "jni/modified_utf8.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace quarlin::jni {
namespace {

using namespace std::string_literals;

const std::string kReplaced = "\xEF\xBF\xBD";

struct TextRow {
    const char* name;
    std::string bytes;
    std::string text;
};

void PrintTo(const TextRow& row, std::ostream* out) {
    *out << row.name;
}

class ModifiedUtf8 : public ::testing::TestWithParam<TextRow> {};

TEST_P(ModifiedUtf8, IsMadeOfAnyBytes) {
    EXPECT_EQ(ToModifiedUtf8(GetParam().bytes), GetParam().text);
}

TEST_P(ModifiedUtf8, IsToldFromOtherBytes) {
    EXPECT_EQ(IsModifiedUtf8(GetParam().bytes), GetParam().bytes == GetParam().text);
}

TEST_P(ModifiedUtf8, IsNotChangedAgain) {
    EXPECT_TRUE(IsModifiedUtf8(GetParam().text));
    EXPECT_EQ(ToModifiedUtf8(GetParam().text), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ModifiedUtf8,
    ::testing::Values(TextRow{"Empty", "", ""}, TextRow{"Ascii", "0123 ABC\x7F", "0123 ABC\x7F"},
                      TextRow{"GroupSeparator",
                              "01\x1D"
                              "17",
                              "01\x1D"
                              "17"},
                      TextRow{"TwoBytes", "\xC2\x80\xDF\xBF", "\xC2\x80\xDF\xBF"},
                      TextRow{"ThreeBytes", "\xE0\xA0\x80\xE3\x81\x82\xEF\xBF\xBF",
                              "\xE0\xA0\x80\xE3\x81\x82\xEF\xBF\xBF"},
                      TextRow{"ZeroInTwoBytes", "\xC0\x80", "\xC0\x80"},
                      TextRow{"ZeroAsItIs", "a\0b"s, "a" + kReplaced + "b"},
                      TextRow{"SurrogatePair", "\xED\xA0\xBD\xED\xB8\x80", "\xED\xA0\xBD\xED\xB8\x80"},
                      TextRow{"SurrogateAlone", "\xED\xA0\xBD", "\xED\xA0\xBD"},
                      TextRow{"FourBytes", "\xF0\x9F\x98\x80", "\xED\xA0\xBD\xED\xB8\x80"},
                      TextRow{"FirstOfFourBytes", "\xF0\x90\x80\x80", "\xED\xA0\x80\xED\xB0\x80"},
                      TextRow{"LastOfFourBytes", "\xF4\x8F\xBF\xBF", "\xED\xAF\xBF\xED\xBF\xBF"},
                      TextRow{"BeyondTheLast", "\xF4\x90\x80\x80", kReplaced + kReplaced + kReplaced + kReplaced},
                      TextRow{"FourBytesForLess", "\xF0\x8F\xBF\xBF", kReplaced + kReplaced + kReplaced + kReplaced},
                      TextRow{"TwoBytesForLess", "\xC1\xBF\xC0\x81", kReplaced + kReplaced + kReplaced + kReplaced},
                      TextRow{"ThreeBytesForLess", "\xE0\x9F\xBF", kReplaced + kReplaced + kReplaced},
                      TextRow{"CutInTwo", "ab\xC3", "ab" + kReplaced},
                      TextRow{"CutInThree", "ab\xE3\x81", "ab" + kReplaced + kReplaced},
                      TextRow{"CutInFour", "\xF0\x9F\x98", kReplaced + kReplaced + kReplaced},
                      TextRow{"TailAlone", "\x80z\xBF", kReplaced + "z" + kReplaced},
                      TextRow{"Latin1", "K\xF6ln \xFF", "K" + kReplaced + "ln " + kReplaced},
                      TextRow{"HeadBeforeAscii",
                              "\xE3"
                              "abc",
                              kReplaced + "abc"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace quarlin::jni
