// SPDX-License-Identifier: Apache-2.0
#include "view/scan_settings.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

TEST(ParseReplace, DividesAtTheFirstEqualsSign) {
    const auto rule = ParseReplace("A=AA");
    ASSERT_TRUE(rule);
    EXPECT_EQ(rule->mode, EditRule::kReplace);
    EXPECT_EQ(rule->target, "A");
    EXPECT_EQ(rule->content, "AA");
    EXPECT_EQ(ParseReplace("a=b=c")->content, "b=c");
}

TEST(ParseReplace, TakesEscapesAlsoForAnEqualsSign) {
    const auto rule = ParseReplace("\\x3D\\x1D= ");
    ASSERT_TRUE(rule);
    EXPECT_EQ(rule->target, "=\x1D");
    EXPECT_EQ(rule->content, " ");
}

TEST(ParseReplace, RefusesWhatTheLibraryWouldNotDo) {
    for (const char* const text : {"", "A", "=A", "A=", "A=\\", "\\q=A"}) {
        EXPECT_FALSE(ParseReplace(text)) << text;
    }
}

TEST(ParseInsert, TakesAPositionFromTheStartOrFromTheEnd) {
    const auto rule = ParseInsert("2:-");
    ASSERT_TRUE(rule);
    EXPECT_EQ(rule->mode, EditRule::kInsert);
    EXPECT_EQ(rule->start, 2);
    EXPECT_EQ(rule->content, "-");
    EXPECT_EQ(ParseInsert("-1:x:y")->start, -1);
    EXPECT_EQ(ParseInsert("-1:x:y")->content, "x:y");
}

TEST(ParseInsert, RefusesWhatTheLibraryWouldNotDo) {
    for (const char* const text : {"", "2", "2:", ":x", "0:x", "+1:x", "1 :x", "x:1", "99999999999:x"}) {
        EXPECT_FALSE(ParseInsert(text)) << text;
    }
}

TEST(ParseDelete, TakesTwoPositionsOrNone) {
    const auto all = ParseDelete("0");
    ASSERT_TRUE(all);
    EXPECT_EQ(all->mode, EditRule::kDelete);
    EXPECT_EQ(all->target, "0");
    EXPECT_EQ(all->start, 0);
    EXPECT_EQ(all->end, 0);
    const auto some = ParseDelete("0:1:-2");
    ASSERT_TRUE(some);
    EXPECT_EQ(some->target, "0");
    EXPECT_EQ(some->start, 1);
    EXPECT_EQ(some->end, -2);
}

TEST(ParseDelete, TakesOneNumberForPartOfTheText) {
    EXPECT_EQ(ParseDelete("a:1")->target, "a:1");
    EXPECT_EQ(ParseDelete("a:b:1")->target, "a:b:1");
    EXPECT_EQ(ParseDelete("a:1:2:0:0")->target, "a:1:2");
    EXPECT_EQ(ParseDelete("1\\x3A2:3:4")->target, "1:2");
}

TEST(ParseDelete, RefusesWhatTheLibraryWouldNotDo) {
    for (const char* const text : {"", ":1:2", "\\"}) {
        EXPECT_FALSE(ParseDelete(text)) << text;
    }
}

TEST(RuleText, SaysWhatTheRuleDoes) {
    EXPECT_EQ(RuleText(*ParseReplace("A=\\x1D")), "replace A by \\x1D");
    EXPECT_EQ(RuleText(*ParseInsert("2:-")), "insert - behind character 2");
    EXPECT_EQ(RuleText(*ParseInsert("-1:-")), "insert - behind the character with 1 behind it");
    EXPECT_EQ(RuleText(*ParseDelete("0")), "delete 0 from the start to the end");
    EXPECT_EQ(RuleText(*ParseDelete("0:1:-2")), "delete 0 from behind character 1 to the character with 2 behind it");
    EXPECT_EQ(RuleText(EditRule{}), "none");
}

}  // namespace
}  // namespace quarlin::qlctl
