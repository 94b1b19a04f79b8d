// SPDX-License-Identifier: Apache-2.0
#include "core/command.h"

#include <gtest/gtest.h>

namespace quarlin::sim {
namespace {

struct Split {
    const char* line;
    Words words;
};

void PrintTo(const Split& split, std::ostream* stream) {
    *stream << ::testing::PrintToString(split.line);
}

class CommandLine : public ::testing::TestWithParam<Split> {};

TEST_P(CommandLine, IsSplitIntoWordsAndPutTogetherAgain) {
    EXPECT_EQ(GetParam().words, SplitWords(GetParam().line));
    EXPECT_EQ(GetParam().words, SplitWords(JoinWords(GetParam().words)));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, CommandLine,
    ::testing::Values(Split{"", {}}, Split{" \t ", {}}, Split{"gps unplug", {"gps", "unplug"}},
                      Split{"  gps   noise 0.1\r", {"gps", "noise", "0.1"}},
                      Split{R"(gps replay "C:\my logs\a.nmea")", {"gps", "replay", R"(C:\my logs\a.nmea)"}},
                      Split{R"(gps send "say ""hello"" twice")", {"gps", "send", R"(say "hello" twice)"}},
                      Split{R"(gps send "")", {"gps", "send", ""}}, Split{R"(a"b c"d)", {"ab cd"}}));

TEST(CommandLineErrors, AnOpenQuoteIsRefused) {
    EXPECT_THROW(SplitWords("gps send \"oh"), CommandError);
}

TEST(Arguments, ProbabilitiesAndSwitches) {
    EXPECT_EQ(0.25, ProbabilityArgument("0.25"));
    EXPECT_EQ(1, ProbabilityArgument("1"));
    for (const char* const wrong : {"", "1.01", "-0.1", "nan", "0.5x", "often"}) {
        EXPECT_THROW(ProbabilityArgument(wrong), CommandError) << wrong;
    }
    EXPECT_TRUE(SwitchArgument("on"));
    EXPECT_FALSE(SwitchArgument("off"));
    EXPECT_THROW(SwitchArgument("ON"), CommandError);
}

TEST(Replies, AreOneLine) {
    EXPECT_EQ("ok", (Reply{true, ""}.Line()));
    EXPECT_EQ("ok silent", (Reply{true, "silent"}.Line()));
    EXPECT_EQ("error no", (Reply{false, "no"}.Line()));
}

TEST(Suggestions, NameTheNearestKnownWord) {
    const std::vector<std::string> known = {"port", "rate", "talker"};
    EXPECT_EQ("; did you mean \"port\"?", Suggestion("prot", known));
    EXPECT_EQ("; did you mean \"talker\"?", Suggestion("taler", known));
    EXPECT_EQ("", Suggestion("colour", known));
}

}  // namespace
}  // namespace quarlin::sim
