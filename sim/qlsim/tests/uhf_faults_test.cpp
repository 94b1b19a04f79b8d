// SPDX-License-Identifier: Apache-2.0
// What goes wrong with the reader on request.
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "uhf_reader_fixture.h"

namespace quarlin::sim {
namespace {

using std::chrono::milliseconds;
using testing::HidPlace;
using testing::kEpc;
using testing::kInventory;
using testing::kInventoryReply;
using testing::kRead;
using testing::kReadReply;
using testing::Report;

class FaultyReader : public testing::ReaderAtABus {};

TEST_F(FaultyReader, AStatusFaultReplacesTheAnswerAndTheDeed) {
    reader_.AddFault(UhfFault::Status(0x84));
    Exchange("35 0B 03 00 00000000 01 1111", "36 04 84 00");
    EXPECT_EQ("0001020304050607", UserMemory());
    Exchange("35 0B 03 00 00000000 01 1111", "36 04 00 01");
}

class EveryStatus : public testing::ReaderAtABus, public ::testing::WithParamInterface<int> {};

TEST_P(EveryStatus, ComesAsItIsWithTheCommandsOwnLength) {
    for (const UhfCommandShape& command : kUhfCommands) {
        reader_.AddFault(UhfFault::Status(static_cast<std::uint8_t>(GetParam())).For(command.code));
        ASSERT_TRUE(Send(HexText(std::array{Raw(command.code)})));
        const std::vector<Bytes> inputs = place_.TakeInputs();
        ASSERT_EQ(1u, inputs.size());
        Bytes expected = {ReplyCode(command.code), command.replyLength, static_cast<std::uint8_t>(GetParam())};
        expected.resize(64);
        EXPECT_EQ(expected, inputs[0]) << command.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Bytes, EveryStatus, ::testing::Values(0x00, 0x01, 0x0A, 0x7F, 0x80, 0xA0, 0xFF),
                         [](const auto& test) { return HexText(std::array{static_cast<std::uint8_t>(test.param)}); });

struct SpoiltReply {
    const char* name;
    UhfFault fault;
    const char* command;
    std::string reply;
};

void PrintTo(const SpoiltReply& spoilt, std::ostream* stream) {
    *stream << spoilt.name;
}

class SpoiltReplies : public testing::ReaderAtABus, public ::testing::WithParamInterface<SpoiltReply> {};

TEST_P(SpoiltReplies, HappenOnceAndThenAllIsWell) {
    reader_.AddFault(GetParam().fault);
    Exchange(GetParam().command, GetParam().reply);
    Exchange(kRead, kReadReply);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, SpoiltReplies,
    ::testing::Values(
        SpoiltReply{"ReplyCode", UhfFault::ReplyCode(0x3C), "37 09 03 00 00000000 02", "3C 40 00 02 00010203"},
        SpoiltReply{"LengthByte", UhfFault::LengthByte(63), "37 09 03 00 00000000 02", "38 3F 00 02 00010203"},
        SpoiltReply{"LyingWordCount", UhfFault::WordCount(200), "37 09 03 00 00000000 02", "38 40 00 C8 00010203"},
        SpoiltReply{"LyingIdentifierLength", UhfFault::IdentifierLength(56), "43 03 01",
                    "44 40 00 01 D0 000000 38 3000" + kEpc},
        SpoiltReply{"Short", UhfFault::Short(5), "37 09 03 00 00000000 02", "38 05 00 02 00"},
        SpoiltReply{"ShorterThanTheStatus", UhfFault::Short(2), "43 03 01", "44 02"},
        SpoiltReply{"AnyByte", UhfFault::Byte(63, 0x5A), "C2 02", "C3 04 00 1B" + std::string(59 * 2, '0') + "5A"}),
    [](const auto& test) { return test.param.name; });

TEST_F(FaultyReader, FaultsMayBeKeptForOneCommand) {
    reader_.AddFault(UhfFault::Status(0x8F).For(UhfCode::kRead));
    Exchange(kInventory, kInventoryReply);
    EXPECT_EQ(1u, reader_.Faults().size());
    Exchange(kRead, "38 40 8F");
    EXPECT_TRUE(reader_.Faults().empty());
    Exchange(kRead, kReadReply);
}

TEST_F(FaultyReader, FaultsMayHappenOftenOrAlways) {
    reader_.AddFault(UhfFault::Status(0x8F).Times(2));
    Exchange(kRead, "38 40 8F");
    Exchange(kInventory, "44 40 8F");
    Exchange(kRead, kReadReply);
    reader_.AddFault(UhfFault::Status(0x0A).Always());
    for (int i = 0; i < 5; ++i) {
        Exchange(kRead, "38 40 0A");
    }
    reader_.ClearFaults();
    Exchange(kRead, kReadReply);
}

TEST_F(FaultyReader, SeveralFaultsMeetInOneAnswer) {
    reader_.AddFault(UhfFault::Status(0x05));
    reader_.AddFault(UhfFault::LengthByte(9));
    reader_.AddFault(UhfFault::Byte(2, 0x06));
    Exchange(kRead, "38 09 06 00 00 00 00 00 00");
}

TEST_F(FaultyReader, TakesNoFaultThatItsReportsCannotCarry) {
    EXPECT_THROW(reader_.AddFault(UhfFault::ReplyCode(0x33)), std::invalid_argument);
    EXPECT_THROW(reader_.AddFault(UhfFault::ReplyCode(0x00)), std::invalid_argument);
    EXPECT_THROW(reader_.AddFault(UhfFault::Byte(64, 0)), std::invalid_argument);
    EXPECT_THROW(reader_.AddFault(UhfFault::Short(0)), std::invalid_argument);
    EXPECT_THROW(reader_.AddFault(UhfFault::Short(64)), std::invalid_argument);
    EXPECT_THROW(reader_.AddFault(UhfFault::Silence().Times(0)), std::invalid_argument);
    EXPECT_TRUE(reader_.Faults().empty());
}

TEST_F(FaultyReader, SilenceIsADeedWithoutAnAnswer) {
    reader_.AddFault(UhfFault::Silence());
    EXPECT_TRUE(Send("35 0B 03 00 00000000 01 1111"));
    ExpectSilence();
    EXPECT_EQ("1111020304050607", UserMemory());
    EXPECT_EQ(0u, reader_.AnswerNow());
    Exchange("C2 02", "C3 04 00 1B");
}

TEST_F(FaultyReader, HeldAnswersComeWhenTheyAreLetGoInTheirOrder) {
    reader_.AddFault(UhfFault::Hold().Times(2));
    std::thread host([this] {
        EXPECT_TRUE(Send(kInventory));
        EXPECT_TRUE(Send(kRead));
    });
    ASSERT_TRUE(reader_.WaitForWaiting(2));
    host.join();
    ExpectSilence();
    EXPECT_EQ(2u, reader_.Counters().waiting);
    EXPECT_EQ(0u, reader_.Counters().sent);
    EXPECT_EQ(2u, reader_.AnswerNow());
    EXPECT_EQ((std::vector<std::string>{HexText(UhfFrameOf(Report(kInventoryReply))),
                                        HexText(UhfFrameOf(Report(kReadReply)))}),
              Inputs());
    EXPECT_EQ(0u, reader_.AnswerNow());
}

TEST_F(FaultyReader, DelayedAnswersComeAfterTheirTime) {
    const auto begin = std::chrono::steady_clock::now();
    reader_.AddFault(UhfFault::Delay(std::chrono::hours(1)).For(UhfCode::kInventory));
    reader_.AddFault(UhfFault::Delay(milliseconds(20)).For(UhfCode::kRead));
    EXPECT_TRUE(Send(kInventory));
    EXPECT_TRUE(Send(kRead));
    ASSERT_TRUE(place_.WaitForInputs(1));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(20));
    ExpectInput(kReadReply);
    EXPECT_EQ(1u, reader_.AnswerNow()) << "the one with more delay can be had at once";
    ExpectInput(kInventoryReply);
}

TEST_F(FaultyReader, ARefusedOutputReportIsNotCarriedOut) {
    reader_.AddFault(UhfFault::Refuse());
    EXPECT_FALSE(Send("35 0B 03 00 00000000 01 1111"));
    ExpectSilence();
    EXPECT_EQ("0001020304050607", UserMemory());
    Exchange(kRead, kReadReply);
}

TEST_F(FaultyReader, CanGoAwayInTheMiddleOfATransfer) {
    reader_.AddFault(UhfFault::UnplugDuring());
    EXPECT_FALSE(Send("35 0B 03 00 00000000 01 1111"));
    EXPECT_FALSE(reader_.IsPlugged());
    EXPECT_EQ("0001020304050607", UserMemory());
    EXPECT_FALSE(Send(kRead)) << "nobody is there";
    reader_.Plug();
    Exchange(kRead, kReadReply);
}

TEST_F(FaultyReader, CanGoAwayInsteadOfAnAnswer) {
    reader_.AddFault(UhfFault::UnplugBeforeAnswer());
    EXPECT_TRUE(Send(kRead));
    ASSERT_TRUE(place_.WaitFor([](const HidPlace& place) { return place.unplugged == 1; }));
    ExpectSilence();
    reader_.Plug();
    EXPECT_TRUE(reader_.IsPlugged());
    Exchange(kRead, kReadReply);
    EXPECT_EQ(2, place_.With([](const HidPlace& place) { return place.plugged; }));
}

}  // namespace
}  // namespace quarlin::sim
