// SPDX-License-Identifier: Apache-2.0
// The reader at its socket.
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "uhf_reader_fixture.h"

namespace quarlin::sim {
namespace {

using std::chrono::milliseconds;
using testing::Hex;
using testing::HidPlace;
using testing::kEpc;
using testing::kInventory;
using testing::kInventoryReply;
using testing::kRead;
using testing::kReadReply;
using testing::MemoryHidSocket;
using testing::OneTag;
using testing::ReaderAtABus;
using testing::Report;

TEST_F(ReaderAtABus, ShowsItsNumbersAndAReportForEachCode) {
    const HidIdentity identity = place_.With([](const HidPlace& place) { return place.identity.value(); });
    EXPECT_EQ(0x24E9, identity.vendor);
    EXPECT_EQ(0x3993, identity.product);
    const auto lengths = MeasureReportDescriptor(identity.reportDescriptor);
    ASSERT_TRUE(lengths);
    EXPECT_EQ(64u, lengths->output);
    EXPECT_EQ(64u, lengths->input);
    EXPECT_EQ(0u, lengths->feature);
    // Each code is announced as "report ID" (0x85), a usage, a count, then "output" (0x91) or "input" (0x81).
    const Bytes& bytes = identity.reportDescriptor;
    const auto announced = [&](std::uint8_t id, std::uint8_t main) {
        for (std::size_t i = 0; i + 7 < bytes.size(); ++i) {
            if (bytes[i] == 0x85 && bytes[i + 1] == id && bytes[i + 4] == 0x95 && bytes[i + 5] == 63 &&
                bytes[i + 6] == main) {
                return true;
            }
        }
        return false;
    };
    for (const UhfCommandShape& command : kUhfCommands) {
        EXPECT_TRUE(announced(Raw(command.code), 0x91)) << command.name;
        EXPECT_TRUE(announced(ReplyCode(command.code), 0x81)) << command.name;
    }
    EXPECT_FALSE(announced(0x34, 0x91));
    EXPECT_FALSE(announced(0x33, 0x81));
}

TEST_F(ReaderAtABus, AnswersBeforeTheOutputReportIsDone) {
    Exchange(kInventory, kInventoryReply);
    Exchange(kRead, kReadReply);
    Exchange("C2 02", "C3 04 00 1B");
}

TEST_F(ReaderAtABus, HasNoFeatureReports) {
    Bytes report(64);
    EXPECT_EQ(HidAnswer::kRefuse, reader_.SetFeature(report));
    EXPECT_EQ(HidAnswer::kRefuse, reader_.GetFeature(report));
}

TEST_F(ReaderAtABus, RefusesWhatIsNoCommandAndNotesIt) {
    EXPECT_FALSE(Send("34 03 00"));
    EXPECT_FALSE(Send("00"));
    ExpectSilence();
    EXPECT_EQ(2u, reader_.Counters().received);
}

TEST_F(ReaderAtABus, NotesEveryReportThatCrossesTheBus) {
    Exchange(kRead, kReadReply);
    ASSERT_TRUE(Send("43 03 01 00 00 5A"));
    const std::vector<UhfTransfer> log = reader_.Log();
    ASSERT_EQ(4u, log.size());
    EXPECT_TRUE(log[0].fromHost);
    EXPECT_EQ(Report(kRead), log[0].report);
    EXPECT_FALSE(log[1].fromHost);
    EXPECT_EQ(Report(kReadReply), log[1].report);
    EXPECT_EQ((std::vector<Bytes>{Hex(kRead), Hex("43 03 01 00 00 5A")}), reader_.ReceivedFrames());
    EXPECT_EQ(2u, reader_.Counters().received);
    EXPECT_EQ(2u, reader_.Counters().sent);
    reader_.ClearLog();
    EXPECT_TRUE(reader_.Log().empty());
    EXPECT_EQ(2u, reader_.Counters().received);
}

TEST_F(ReaderAtABus, KeepsTheLastThousandTransfers) {
    for (int i = 0; i < 600; ++i) {
        ASSERT_TRUE(Send("C0 03 " + HexText(std::array{static_cast<std::uint8_t>(i)})));
    }
    const std::vector<UhfTransfer> log = reader_.Log();
    ASSERT_EQ(1000u, log.size());
    EXPECT_EQ(Report("C0 03 64"), log[0].report) << "the hundredth";
    EXPECT_EQ(Report("C1 03 00"), log.back().report);
    EXPECT_EQ(600u, reader_.Counters().received);
}

TEST_F(ReaderAtABus, UnpluggingForgetsLateAnswersAndTheReadersState) {
    Exchange("33 0F 0C" + kEpc, "34 03 00");
    Exchange("C0 03 05", "C1 03 00");
    Exchange(kInventory, kInventoryReply);
    Exchange("35 0B 03 00 00000000 01 1111", "36 04 00 01");
    reader_.AddFault(UhfFault::Hold());
    EXPECT_TRUE(Send(kRead));
    reader_.Unplug();
    EXPECT_FALSE(reader_.IsPlugged());
    EXPECT_EQ(0u, reader_.Counters().waiting);
    reader_.Plug();
    EXPECT_EQ(0u, reader_.AnswerNow());
    ExpectSilence();
    Exchange("C2 02", "C3 04 00 1B");
    Exchange("43 03 02", "44 40 00 00");
    EXPECT_EQ(nullptr, reader_.With([](UhfEngine& engine) { return engine.Selected(); }));
    EXPECT_EQ("1111020304050607", UserMemory()) << "tags have no plug";
}

TEST_F(ReaderAtABus, PluggingInTwiceIsRefusedAndChangesNothing) {
    Exchange("C0 03 05", "C1 03 00");
    EXPECT_THROW(reader_.Plug(), HidBusError);
    Exchange("C2 02", "C3 04 00 05");
    reader_.Unplug();
    reader_.Unplug();
}

TEST_F(ReaderAtABus, SendsReportsThatNobodyAskedFor) {
    EXPECT_TRUE(reader_.SendReport(Hex("3C 03 77")));
    ExpectInput("3C 03 77");
    EXPECT_THROW(reader_.SendReport(Bytes()), std::invalid_argument);
    EXPECT_THROW(reader_.SendReport(Hex("37 03 77")), std::invalid_argument);
    EXPECT_THROW(reader_.SendReport(Report("3C", 65)), std::invalid_argument);
    reader_.Unplug();
    EXPECT_FALSE(reader_.SendReport(Hex("3C 03 77")));
    EXPECT_EQ(1u, reader_.Counters().lost);
}

TEST_F(ReaderAtABus, WaitsForCommandsWithADeadline) {
    EXPECT_FALSE(reader_.WaitForReceived(1, milliseconds(1)));
    EXPECT_FALSE(reader_.WaitForWaiting(1, milliseconds(1)));
    std::thread host([this] { Send(kRead); });
    EXPECT_TRUE(reader_.WaitForReceived(1));
    host.join();
}

TEST_F(ReaderAtABus, ServesManyHostsWhileItsFieldChanges) {
    std::vector<std::thread> threads;
    for (int host = 0; host < 3; ++host) {
        threads.emplace_back([this] {
            for (int i = 0; i < 200; ++i) {
                EXPECT_TRUE(Send(kInventory));
            }
        });
    }
    threads.emplace_back([this] {
        for (int i = 0; i < 200; ++i) {
            reader_.With([](UhfEngine& engine) {
                TagSettings tag;
                tag.epc = Hex("ABCD");
                engine.Add(tag);
                EXPECT_TRUE(engine.Remove(tag.epc));
            });
            reader_.AddFault(UhfFault::Hold());
            reader_.AnswerNow();
        }
    });
    for (std::thread& thread : threads) {
        thread.join();
    }
    reader_.ClearFaults();
    reader_.AnswerNow();
    EXPECT_EQ(600u, reader_.Counters().received);
    EXPECT_EQ(600u, Inputs().size()) << "every command is answered once";
}

UhfSettings Sizes(std::size_t output, std::size_t input) {
    UhfSettings settings = OneTag();
    settings.outputLength = output;
    settings.inputLength = input;
    return settings;
}

TEST(UhfReports, MayBeShorterThanTheReplies) {
    HidPlace place;
    MemoryHidSocket socket(place);
    UhfReader reader(Sizes(16, 12), socket);
    reader.Plug();
    ASSERT_TRUE(place.SetOutput(Report(kInventory, 16)));
    EXPECT_EQ((std::vector<Bytes>{Hex("44 40 00 01 D0 000000 0E 3000 30")}), place.TakeInputs());
    ASSERT_TRUE(place.SetOutput(Report("35 13 03 00 00000000 05 00112233445566", 16)));
    EXPECT_EQ((std::vector<Bytes>{Report("36 04 0F 00", 12)}), place.TakeInputs())
        << "the frame says that it is longer than its report";
}

TEST(UhfReports, MayBeLongerThanTheReplies) {
    HidPlace place;
    MemoryHidSocket socket(place);
    UhfReader reader(Sizes(300, 1000), socket);
    reader.Plug();
    ASSERT_TRUE(place.SetOutput(Report(kRead, 300)));
    EXPECT_EQ((std::vector<Bytes>{Report(kReadReply, 1000)}), place.TakeInputs());
}

TEST(UhfReports, HaveAtLeastACodeAndOneByte) {
    HidPlace place;
    MemoryHidSocket socket(place);
    EXPECT_THROW(UhfReader(Sizes(1, 64), socket), std::invalid_argument);
    EXPECT_THROW(UhfReader(Sizes(64, 4097), socket), std::invalid_argument);
    UhfReader reader(Sizes(64, 2), socket);
    reader.Plug();
    ASSERT_TRUE(place.SetOutput(Report("C2 02")));
    EXPECT_EQ((std::vector<Bytes>{Hex("C3 04")}), place.TakeInputs()) << "no room for a status";
}

TEST(UhfReaders, UnplugWhenTheyEnd) {
    HidPlace place;
    MemoryHidSocket socket(place);
    {
        UhfReader reader(OneTag(), socket);
        EXPECT_FALSE(reader.IsPlugged());
        reader.Plug();
        reader.AddFault(UhfFault::Delay(std::chrono::hours(1)));
        ASSERT_TRUE(place.SetOutput(Report(kRead)));
    }
    EXPECT_FALSE(socket.IsPlugged());
    EXPECT_TRUE(place.TakeInputs().empty());
}

// A bus that takes no input reports.
class BrokenSocket final : public HidSocket {
  public:
    void Plug(const HidIdentity&, HidFunction&) override { plugged_ = true; }
    void Unplug() override { plugged_ = false; }
    bool IsPlugged() const override { return plugged_; }
    bool SendInput(std::span<const std::uint8_t>) override { throw HidBusError("broken"); }

  private:
    std::atomic<bool> plugged_ = false;
};

TEST(UhfReaders, SurviveABusThatFails) {
    BrokenSocket socket;
    UhfReader reader(OneTag(), socket);
    reader.Plug();
    EXPECT_EQ(HidAnswer::kDone, reader.SetOutput(Report(kRead)));
    EXPECT_FALSE(reader.SendReport(Hex("3C 03 00")));
    EXPECT_EQ(2u, reader.Counters().lost);
}

TEST(UhfReaders, MayBeOfAnotherMakerOrKind) {
    HidPlace place;
    MemoryHidSocket socket(place);
    UhfSettings settings = OneTag();
    settings.vendor = 0x1234;
    settings.product = 0x3994;
    settings.instance = "6&2f9a1b0c&0&0000";
    UhfReader reader(settings, socket);
    EXPECT_EQ(0x1234, reader.Identity().vendor);
    EXPECT_EQ(0x3994, reader.Identity().product);
    EXPECT_EQ("6&2f9a1b0c&0&0000", reader.Identity().instance);
    place.refusePlug = true;
    EXPECT_THROW(reader.Plug(), HidBusError);
}

}  // namespace
}  // namespace quarlin::sim
