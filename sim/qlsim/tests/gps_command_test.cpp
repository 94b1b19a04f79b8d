// SPDX-License-Identifier: Apache-2.0
#include "gps/gps_command.h"

#include <gtest/gtest.h>

namespace quarlin::sim {
namespace {

using Verb = GpsCommand::Verb;

GpsCommand Parse(const char* line) {
    return ParseGpsCommand(SplitWords(line));
}

struct Accepted {
    const char* line;
    Verb verb;
};

void PrintTo(const Accepted& accepted, std::ostream* stream) {
    *stream << ::testing::PrintToString(accepted.line);
}

class AcceptedCommand : public ::testing::TestWithParam<Accepted> {};

TEST_P(AcceptedCommand, IsUnderstood) {
    EXPECT_EQ(GetParam().verb, Parse(GetParam().line).verb);
}

INSTANTIATE_TEST_SUITE_P(
    Verbs, AcceptedCommand,
    ::testing::Values(Accepted{"lose-fix", Verb::kLoseFix}, Accepted{"regain-fix", Verb::kRegainFix},
                      Accepted{"unplug", Verb::kUnplug}, Accepted{"plug", Verb::kPlug},
                      Accepted{"silence on", Verb::kSilence}, Accepted{"noise 0.5", Verb::kNoise},
                      Accepted{"drop 0.5", Verb::kDrop}, Accepted{"bad-checksum 1", Verb::kBadChecksum},
                      Accepted{"satellites 3", Verb::kSatellites}, Accepted{"replay a.nmea", Verb::kReplay},
                      Accepted{"send $GPTXT", Verb::kSend}, Accepted{"send-bytes x", Verb::kSendBytes},
                      Accepted{"status", Verb::kStatus}));

struct Refused {
    const char* line;
    const char* sentence;
};

void PrintTo(const Refused& refused, std::ostream* stream) {
    *stream << ::testing::PrintToString(refused.line);
}

class RefusedCommand : public ::testing::TestWithParam<Refused> {};

TEST_P(RefusedCommand, SaysWhy) {
    try {
        Parse(GetParam().line);
        FAIL() << "accepted";
    } catch (const CommandError& error) {
        EXPECT_STREQ(GetParam().sentence, error.what());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Sentences, RefusedCommand,
    ::testing::Values(
        Refused{"", "a command is missing; \"help\" lists what there is"},
        Refused{"unplgu", "there is no command \"unplgu\"; did you mean \"unplug\"?"},
        Refused{"explode", "there is no command \"explode\""}, Refused{"unplug now", "the command has to be: unplug"},
        Refused{"silence", "the command has to be: silence on|off"},
        Refused{"silence maybe", "\"maybe\" is neither on nor off"},
        Refused{"noise 2", "\"2\" is no probability from 0 to 1"},
        Refused{"satellites few", "\"few\" is neither a number of satellites nor \"all\""},
        Refused{"replay", "the command has to be: replay FILE [paced|full-speed] [then-resume|then-silent]"},
        Refused{"replay a fast", "\"fast\" is none of paced, full-speed, then-resume and then-silent"},
        Refused{"send", "the command has to be: send TEXT"},
        Refused{"send-bytes \\q", "after a backslash come r, n, a second backslash, or x and two hexadecimal digits"},
        Refused{"send-bytes a\\", "after a backslash come r, n, a second backslash, or x and two hexadecimal digits"},
        Refused{"send-bytes \\x7",
                "after a backslash come r, n, a second backslash, or x and two hexadecimal digits"}));

TEST(GpsCommands, CarryTheirArguments) {
    EXPECT_TRUE(Parse("silence on").on);
    EXPECT_EQ(0.125, Parse("drop 0.125").probability);
    EXPECT_EQ(5u, Parse("satellites 5").satellites);
    EXPECT_EQ(std::nullopt, Parse("satellites all").satellites);
    EXPECT_EQ("$GPTXT,a b", Parse("send $GPTXT,a b").text);
    EXPECT_EQ(std::string("a\r\n\\~\0b", 7), Parse("send-bytes a\\r\\n\\\\\\x7e\\x00b").text);
    const GpsCommand replay = Parse("replay \"my log.nmea\" full-speed then-silent");
    EXPECT_EQ("my log.nmea", replay.text);
    EXPECT_TRUE(replay.fullSpeed);
    EXPECT_TRUE(replay.thenSilent);
}

TEST(GpsCommands, EveryVerbHasAUsageLine) {
    const auto usage = GpsCommandUsage();
    EXPECT_EQ(13u, usage.size());
    for (const std::string& line : usage) {
        EXPECT_EQ("the command has to be: " + line, [&] {
            try {
                ParseGpsCommand(SplitWords(line.substr(0, line.find(' ')) +
                                           (line == "send TEXT" || line == "send-bytes TEXT" ? "" : " 1 2 3 4")));
            } catch (const CommandError& error) {
                return std::string(error.what());
            }
            return std::string("accepted");
        }());
    }
}

}  // namespace
}  // namespace quarlin::sim
