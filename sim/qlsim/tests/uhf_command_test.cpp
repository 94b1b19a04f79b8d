// SPDX-License-Identifier: Apache-2.0
#include "uhf/uhf_command.h"

#include <gtest/gtest.h>

namespace quarlin::sim {
namespace {

using Verb = UhfCommand::Verb;

UhfCommand Parse(const std::string& line) {
    return ParseUhfCommand(SplitWords(line));
}

struct Accepted {
    const char* line;
    Verb verb;
};

void PrintTo(const Accepted& accepted, std::ostream* stream) {
    *stream << ::testing::PrintToString(accepted.line);
}

class AcceptedUhfCommand : public ::testing::TestWithParam<Accepted> {};

TEST_P(AcceptedUhfCommand, IsUnderstood) {
    EXPECT_EQ(GetParam().verb, Parse(GetParam().line).verb);
}

INSTANTIATE_TEST_SUITE_P(
    Verbs, AcceptedUhfCommand,
    ::testing::Values(Accepted{"plug", Verb::kPlug}, Accepted{"unplug", Verb::kUnplug},
                      Accepted{"add-tag 1234", Verb::kAddTag}, Accepted{"remove-tag 1234", Verb::kRemoveTag},
                      Accepted{"tags", Verb::kTags}, Accepted{"signal 1234 -50", Verb::kSignal},
                      Accepted{"power 30", Verb::kPower}, Accepted{"parameters", Verb::kParameters},
                      Accepted{"clear-faults", Verb::kClearFaults}, Accepted{"answer-now", Verb::kAnswerNow},
                      Accepted{"send 3C0300", Verb::kSend}, Accepted{"log", Verb::kLog},
                      Accepted{"clear-log", Verb::kClearLog}, Accepted{"status", Verb::kStatus}));

struct FaultLine {
    const char* line;
    const char* text;  // as the status has it
};

void PrintTo(const FaultLine& fault, std::ostream* stream) {
    *stream << ::testing::PrintToString(fault.line);
}

class UhfFaultLine : public ::testing::TestWithParam<FaultLine> {};

TEST_P(UhfFaultLine, SetsAFault) {
    const UhfCommand command = Parse(GetParam().line);
    EXPECT_EQ(Verb::kFault, command.verb);
    EXPECT_EQ(GetParam().text, command.fault.Text());
}

INSTANTIATE_TEST_SUITE_P(
    Faults, UhfFaultLine,
    ::testing::Values(FaultLine{"status-byte 84", "status-byte 84"},
                      FaultLine{"status-byte f read", "status-byte 0F read"},
                      FaultLine{"status-byte 03 kill times 4", "status-byte 03 kill times 4"},
                      FaultLine{"status-byte 03 times 1", "status-byte 03"}, FaultLine{"silence", "silence"},
                      FaultLine{"silence inventory always", "silence inventory always"}, FaultLine{"late", "late"},
                      FaultLine{"late query", "late query"}, FaultLine{"late 0.25", "late 0.25"},
                      FaultLine{"late 2 set-power times 2", "late 2 set-power times 2"},
                      FaultLine{"refuse get-power", "refuse get-power"}, FaultLine{"unplug during", "unplug during"},
                      FaultLine{"unplug before-answer select times 3", "unplug before-answer select times 3"},
                      FaultLine{"short 2 lock", "short 2 lock"}, FaultLine{"reply-code 3c always", "byte 0 3C always"},
                      FaultLine{"length-byte 63", "byte 1 3F"}, FaultLine{"word-count 200", "byte 3 C8 read"},
                      FaultLine{"identifier-length 56 times 2", "byte 8 38 inventory times 2"},
                      FaultLine{"byte 63 5a write", "byte 63 5A write"}));

struct Refused {
    const char* line;
    const char* sentence;
};

void PrintTo(const Refused& refused, std::ostream* stream) {
    *stream << ::testing::PrintToString(refused.line);
}

class RefusedUhfCommand : public ::testing::TestWithParam<Refused> {};

TEST_P(RefusedUhfCommand, SaysWhy) {
    try {
        Parse(GetParam().line);
        FAIL() << "accepted";
    } catch (const CommandError& error) {
        EXPECT_STREQ(GetParam().sentence, error.what());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Sentences, RefusedUhfCommand,
    ::testing::Values(
        Refused{"", "a command is missing; \"help\" lists what there is"},
        Refused{"inventroy", "there is no command \"inventroy\""},
        Refused{"slience", "there is no command \"slience\"; did you mean \"silence\"?"},
        Refused{"plug in", "the command has to be: plug"},
        Refused{"unplug later", "\"later\" is neither during nor before-answer"},
        Refused{"add-tag 12G4", "\"12G4\" is no text of hexadecimal bytes"},
        Refused{"add-tag 123", "\"123\" is no text of hexadecimal bytes"},
        Refused{"add-tag 12", "an EPC has whole words of two bytes, at most 31"},
        Refused{"add-tag 1234 tid", "\"tid\" is not of the form KEY=VALUE"},
        Refused{"add-tag 1234 tod=00", "a tag has no key \"tod\"; did you mean \"tid\"?"},
        Refused{"add-tag 1234 kill_password=123456789",
                "\"123456789\" is no password of at most eight hexadecimal digits"},
        Refused{"add-tag 1234 pc=12345", "\"12345\" is no protocol control word of four hexadecimal digits"},
        Refused{"add-tag 1234 pc=1000",
                "the protocol control word's first five bits have to be the EPC's length in words"},
        Refused{"add-tag 1234 signal=-129", "\"-129\" is no whole number from -128 to 127"},
        Refused{"add-tag 1234 lock_bank=locked",
                "there is no lock \"bank\"; there are kill_password, access_password, epc, tid and user"},
        Refused{"add-tag 1234 lock_user=shut",
                "\"shut\" is none of unlocked, locked, always_unlocked and always_locked"},
        Refused{"signal 1234", "the command has to be: signal EPC DBM"},
        Refused{"power 256", "\"256\" is no whole number from 0 to 255"},
        Refused{"parameters q 4", "\"q\" is none of link-frequency, miller, session, q-begin and sensitivity"},
        Refused{"parameters miller", "a value is missing"},
        Refused{"parameters sensitivity 200", "\"200\" is no whole number from -128 to 127"},
        Refused{"status-byte 100", "\"100\" is no byte of one or two hexadecimal digits"},
        Refused{"status-byte 84 raed", "the reader has no command \"raed\"; did you mean \"read\"?"},
        Refused{"status-byte 84 read sometimes",
                "a fault ends with a command's name, then \"always\" or \"times N\"; \"sometimes\" is too much"},
        Refused{"status-byte 84 always read",
                "a fault ends with a command's name, then \"always\" or \"times N\"; \"read\" is too much"},
        Refused{"status-byte 84 times",
                "a fault ends with a command's name, then \"always\" or \"times N\"; \"times\" is too much"},
        Refused{"silence times 0", "\"0\" is no whole number from 1 to 1000000"},
        Refused{"late 5s", "\"5s\" is no time in seconds"}, Refused{"late -1", "\"-1\" is no time in seconds"},
        Refused{"late inf", "\"inf\" is no time in seconds"},
        Refused{"short 0", "\"0\" is no whole number from 1 to 255"},
        Refused{"log all", "\"all\" is no whole number from 0 to 4294967295"}));

TEST(UhfCommandArguments, MakeATag) {
    const TagSettings tag = Parse(
                                "add-tag 3034257B tid=E2801160 user=CAFE pc=1015 access_password=1A2B3C4D "
                                "kill_password=5 signal=-74 power=20 "
                                "write_power=25 lock_user=always_locked lock_kill_password=locked")
                                .tag;
    EXPECT_EQ("3034257B", HexText(tag.epc));
    EXPECT_EQ("CAFE", HexText(tag.user));
    EXPECT_EQ(0x1015, tag.pc);
    EXPECT_EQ(0x1A2B3C4Du, tag.accessPassword);
    EXPECT_EQ(5u, tag.killPassword);
    EXPECT_EQ(-74, tag.signal);
    EXPECT_EQ(20, tag.power);
    EXPECT_EQ(25, tag.writePower);
    EXPECT_EQ((std::array{LockState::kLocked, LockState::kUnlocked, LockState::kUnlocked, LockState::kAlwaysLocked,
                          LockState::kAlwaysLocked}),
              tag.locks);
}

TEST(UhfCommandArguments, AreCarried) {
    EXPECT_EQ("1234", HexText(Parse("remove-tag \"12 34\"").bytes));
    EXPECT_EQ(-50, Parse("signal 1234 -50").signal);
    EXPECT_EQ(30, Parse("power 30").power);
    EXPECT_EQ("q-begin", Parse("parameters q-begin 200").parameter);
    EXPECT_EQ(200, Parse("parameters q-begin 200").value);
    EXPECT_EQ(-100, Parse("parameters sensitivity -100").value);
    EXPECT_EQ("3C03FF", HexText(Parse("send 3c03ff").bytes));
    EXPECT_EQ(7u, Parse("log 7").last);
    EXPECT_EQ(std::nullopt, Parse("log").last);
    EXPECT_EQ(std::chrono::milliseconds(1500), Parse("late 1.5").fault.delay);
}

TEST(UhfCommandArguments, NameEveryParameter) {
    UhfQuery query;
    for (const char* const name : {"link-frequency", "miller", "session", "q-begin"}) {
        EXPECT_TRUE(SetUhfParameter(query, name, 7)) << name;
    }
    EXPECT_TRUE(SetUhfParameter(query, "sensitivity", -7));
    EXPECT_FALSE(SetUhfParameter(query, "power", 7));
    EXPECT_EQ((UhfQuery{7, 7, 7, 7, -7}), query);
}

TEST(UhfCommandUsage, IsALineForEach) {
    const auto usage = UhfCommandUsage();
    EXPECT_EQ(24u, usage.size());
    for (const std::string& line : usage) {
        const std::string name = line.substr(0, line.find(' '));
        const std::string tooMany = name == "add-tag" ? "" : " 1 2 3 4 5 6";
        try {
            Parse(name + tooMany);
            ADD_FAILURE() << name << " is accepted";
        } catch (const CommandError& error) {
            EXPECT_EQ("the command has to be: " + line, error.what());
        }
    }
}

}  // namespace
}  // namespace quarlin::sim
