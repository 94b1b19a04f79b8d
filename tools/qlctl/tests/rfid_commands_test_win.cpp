// SPDX-License-Identifier: Apache-2.0
#include "hidbus/hid_socket_win.h"
#include "machine_turn_win.h"
#include "output_text.h"
#include "own_console_win.h"
#include "uhf/uhf_reader.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;
using sim::Bytes;
using sim::LockArea;
using sim::LockState;
using sim::TagBank;
using sim::TagSettings;
using sim::UhfCode;
using sim::UhfFault;

constexpr const wchar_t* kTurn = L"Global\\QuarlinTestRfidReader";
const Bytes kFirstEpc{0xE2, 0x80, 0x11, 0x60, 0x00, 0x01};
const Bytes kSecondEpc{0xAB, 0xCD};

TagSettings FirstTag() {
    TagSettings tag;
    tag.epc = kFirstEpc;
    tag.tid = {0xE2, 0x00, 0x34, 0x12};
    tag.user = Bytes(80);
    for (size_t at = 0; at < tag.user.size(); ++at) {
        tag.user[at] = static_cast<std::uint8_t>(at);
    }
    tag.signal = -47;
    return tag;
}

TagSettings SecondTag() {
    TagSettings tag;
    tag.epc = kSecondEpc;
    tag.signal = -60;
    return tag;
}

TagSettings ProtectedTag() {
    TagSettings tag = FirstTag();
    tag.accessPassword = 0x1234ABCD;
    tag.killPassword = 0x5678EF01;
    return tag;
}

// A reader on the machine's HID bus, with tags in its field.
class Field {
  public:
    explicit Field(const std::vector<TagSettings>& tags)
        : socket_(sim::MakeHidSocket()), reader_(Settings(tags), *socket_) {
        reader_.Plug();
    }

    sim::UhfReader& Reader() { return reader_; }
    Bytes Memory(TagBank bank) {
        return reader_.With([bank](sim::UhfEngine& engine) { return engine.Field().front().tag.Memory(bank); });
    }
    // How often a command came.
    size_t Commands(UhfCode code) {
        size_t count = 0;
        for (const Bytes& frame : reader_.ReceivedFrames()) {
            count += frame.front() == sim::Raw(code) ? 1 : 0;
        }
        return count;
    }

  private:
    static sim::UhfSettings Settings(const std::vector<TagSettings>& tags) {
        sim::UhfSettings settings;
        settings.tags = tags;
        return settings;
    }

    std::unique_ptr<sim::HidSocket> socket_;
    sim::UhfReader reader_;
};

std::string ErrorOf(const ChildResult& result) {
    return WithoutReturns(result.err);
}

class RfidCommands : public testing::Test {
    const MachineTurn turn_{kTurn};
};

TEST_F(RfidCommands, ListTheTagsOfARound) {
    const Field field({FirstTag(), SecondTag()});
    const ChildResult text = Qlctl("rfid inventory");
    EXPECT_EQ(text.exitStatus, 0);
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out,
              "EPC           Signal\n"
              "E28011600001     -47\n"
              "ABCD             -60\n"
              "2 tags\n");
    EXPECT_EQ(Json::parse(Qlctl("rfid inventory --json").out), Json::parse(R"({"round": 1, "tags": [
        {"epc": "E28011600001", "protocol_control": "1800", "signal": -47},
        {"epc": "ABCD", "protocol_control": "0800", "signal": -60}]})"));
}

TEST_F(RfidCommands, RepeatRoundsAndSeeTagsComeAndGo) {
    Field field({});
    ChildProcess inventory("rfid inventory --json --repeat 0 --interval 0.05");
    ASSERT_TRUE(inventory.Out().WaitFor(R"("tags":[])", kDeadline));
    field.Reader().With([](sim::UhfEngine& engine) { engine.Add(SecondTag()); });
    EXPECT_TRUE(inventory.Out().WaitFor(R"("tags":[{"epc":"ABCD")", kDeadline));
}

TEST_F(RfidCommands, EndTheirRoundsByCountOrByTime) {
    const Field field({SecondTag()});
    const ChildResult counted = Qlctl("rfid inventory --repeat 3 --interval 0");
    EXPECT_EQ(counted.exitStatus, 0);
    EXPECT_EQ(CountOf(counted.out, "1 tag\n"), 3U) << counted.out;
    EXPECT_EQ(counted.out.find("Round 1\n"), 0U) << counted.out;
    const ChildResult timed = Qlctl("rfid inventory --repeat 0 --timeout 0.5 --interval 3600");
    EXPECT_EQ(timed.exitStatus, 0);
    EXPECT_EQ(CountOf(timed.out, "1 tag\n"), 1U) << timed.out;
}

TEST_F(RfidCommands, ReadWords) {
    const Field field({FirstTag()});
    EXPECT_EQ(Qlctl("rfid read --bank tid --count 2").out, "tid   0  E200 3412\n");
    EXPECT_EQ(Json::parse(Qlctl("rfid read --json --epc E28011600001 --bank user --word 3 --count 2").out),
              Json::parse(R"({"epc": "E28011600001", "bank": "user", "word": 3, "count": 2, "data": "06070809"})"));
}

TEST_F(RfidCommands, ReadMoreWordsThanAReplyHolds) {
    const Field field({FirstTag()});
    const Json read = Json::parse(Qlctl("rfid read --json --bank user --count 40").out);
    EXPECT_EQ(read["count"], 40);
    EXPECT_EQ(read["data"].get<std::string>().substr(2 * 58), "3A3B3C3D3E3F404142434445464748494A4B4C4D4E4F");
}

TEST_F(RfidCommands, TellFewerWordsFromWordsThatLookLikeNone) {
    TagSettings tag = FirstTag();
    tag.user = {0x11, 0x11, 0x5A, 0x5A, 0xA5, 0xA5, 0x5A, 0x5A};
    Field field({tag});
    EXPECT_EQ(Qlctl("rfid read --bank user --count 4").out, "user   0  1111 5A5A A5A5 5A5A\n");
    field.Reader().AddFault(UhfFault::WordCount(2).Always());
    EXPECT_EQ(Qlctl("rfid read --bank user --count 4").out, "user   0  1111 5A5A\n");
    field.Reader().ClearFaults();
    field.Reader().AddFault(UhfFault::WordCount(0).Always());
    EXPECT_EQ(Qlctl("rfid read --bank user --count 4").out, "no words\n");
}

TEST_F(RfidCommands, WriteWordsWithAPasswordThatTheDigitOfMostWeightLeads) {
    TagSettings tag = ProtectedTag();
    tag.Lock(LockArea::kUser) = LockState::kLocked;
    Field field({tag});
    const ChildResult result = Qlctl("rfid write --bank user --word 1 --data \"CAFE 0001\" --password 1234ABCD");
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_EQ(result.out, "written  E28011600001\n");
    const Bytes user = field.Memory(TagBank::kUser);
    EXPECT_EQ(Bytes(user.begin(), user.begin() + 8), (Bytes{0x00, 0x01, 0xCA, 0xFE, 0x00, 0x01, 0x06, 0x07}));
}

TEST_F(RfidCommands, ShowTheReadersRefusal) {
    Field field({ProtectedTag()});
    const ChildResult result = Qlctl("rfid write --bank user --data CAFE --password CDAB3412");
    EXPECT_EQ(result.exitStatus, 8);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(ErrorOf(result), "qlctl: error 65538 (QLERR_UHFRFID_ACCESS): QLERR_UHFRFID_ACCESS\n");
}

TEST_F(RfidCommands, LockAndKillOnlyWithYes) {
    Field field({ProtectedTag()});
    for (const char* const command : {"rfid lock 4 2 --password 1234ABCD", "rfid kill --password 5678EF01"}) {
        const ChildResult result = Qlctl(command);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_NE(result.err.find("--yes is required"), std::string::npos) << result.err;
    }
    EXPECT_EQ(field.Reader().Counters().received, 0U);

    EXPECT_EQ(Qlctl("rfid lock 4 2 --password 1234ABCD --yes").out, "locked  E28011600001\n");
    const auto isLocked = [](sim::UhfEngine& engine) {
        return engine.Field().front().tag.Lock(LockArea::kUser) == LockState::kLocked;
    };
    EXPECT_TRUE(field.Reader().With(isLocked));

    EXPECT_EQ(Qlctl("rfid kill --epc E28011600001 --password 5678EF01 --yes --json").out,
              "{\"epc\":\"E28011600001\",\"done\":\"killed\"}\n");
    EXPECT_EQ(Qlctl("rfid inventory").out, "no tags\n");
}

TEST_F(RfidCommands, WantTheTagNamedWhenThereAreSeveral) {
    Field field({FirstTag(), SecondTag()});
    const ChildResult result = Qlctl("rfid kill --password 1 --yes");
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_EQ(ErrorOf(result), "qlctl: error: 2 tags are in the field, name one with --epc: ABCD, E28011600001\n");
    EXPECT_EQ(field.Commands(UhfCode::kKill), 0U);
}

TEST_F(RfidCommands, SayWhenThereIsNoTag) {
    const Field field({});
    const ChildResult result = Qlctl("rfid read --bank tid");
    EXPECT_EQ(result.exitStatus, 8);
    EXPECT_EQ(ErrorOf(result), "qlctl: error: no tag is in the field\n");
}

TEST_F(RfidCommands, ShowAndSetThePower) {
    const Field field({});
    EXPECT_EQ(Qlctl("rfid power").out, "Power         27\n");
    EXPECT_EQ(Qlctl("rfid power 200 --json").out, "{\"power\":200}\n");
    const ChildResult refused = Qlctl("rfid power 256");
    EXPECT_EQ(refused.exitStatus, 2);
    EXPECT_EQ(ErrorOf(refused), "qlctl: error 1 (QLERR_INVALID_ARGUMENT): QLERR_INVALID_ARGUMENT\n");
}

TEST_F(RfidCommands, ShowAndSetTheQueryParameters) {
    Field field({});
    EXPECT_EQ(Qlctl("rfid query").out,
              "Link          256 kHz\n"
              "Encoding      Miller 4\n"
              "Session       S0\n"
              "Q             4\n"
              "Sensitivity   -70 dBm\n");
    const ChildResult changed =
        Qlctl("rfid query --json --link-frequency 640 --miller 0 --session 3 --q 15 --sensitivity -86");
    EXPECT_EQ(changed.out,
              "{\"link_frequency_khz\":640,\"miller\":0,\"session\":3,\"q\":15,\"sensitivity_dbm\":-86}\n");
    const size_t sent = field.Commands(UhfCode::kQuery);
    const ChildResult refused = Qlctl("rfid query --link-frequency 250");
    EXPECT_EQ(refused.exitStatus, 2);
    EXPECT_EQ(ErrorOf(refused), "qlctl: error 1 (QLERR_INVALID_ARGUMENT): Invalid Argument\n");
    EXPECT_EQ(field.Commands(UhfCode::kQuery), sent);
}

TEST_F(RfidCommands, GiveUpAReaderThatNeverAnswers) {
    Field field({});
    field.Reader().AddFault(UhfFault::Silence().Always());
    const ChildResult result = Qlctl("rfid inventory --timeout 0.5");
    EXPECT_EQ(result.exitStatus, 6);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(ErrorOf(result), "qlctl: error: the reader did not answer within 0.5 s\n");
    field.Reader().ClearFaults();
    EXPECT_EQ(Qlctl("rfid inventory").out, "no tags\n") << "the reader is free again";
}

TEST_F(RfidCommands, ShowTheLibrarysErrorWhenTheReaderGoesAway) {
    Field field({});
    field.Reader().AddFault(UhfFault::UnplugBeforeAnswer());
    const ChildResult gone = Qlctl("rfid inventory");
    EXPECT_EQ(gone.exitStatus, 8);
    EXPECT_EQ(ErrorOf(gone), "qlctl: error 65798 (QLERR_UHFRFID_COMMAND_RECEIVE): QLERR_UHFRFID_COMMAND_RECEIVE\n");
    const ChildResult none = Qlctl("rfid inventory");
    EXPECT_EQ(none.exitStatus, 11);
    EXPECT_EQ(ErrorOf(none), "qlctl: error 65803 (QLERR_UHFRFID_DEVICENOTFOUND): QLERR_UHFRFID_DEVICENOTFOUND\n");
}

class RfidOnOwnConsole : public OwnConsole {
    const MachineTurn turn_{kTurn};
};

TEST_F(RfidOnOwnConsole, CtrlCEndsRounds) {
    const Field field({});
    ChildProcess inventory("rfid inventory --repeat 0");
    ASSERT_TRUE(inventory.Out().WaitFor("no tags", kDeadline));
    PressCtrlC();
    EXPECT_EQ(inventory.Finish().exitStatus, 0);
}

TEST_F(RfidOnOwnConsole, CtrlCEndsTheWaitForASilentReader) {
    Field field({});
    field.Reader().AddFault(UhfFault::Silence().Always());
    ChildProcess inventory("rfid inventory --timeout 3600");
    ASSERT_TRUE(field.Reader().WaitForReceived(1));
    PressCtrlC();
    const ChildResult result = inventory.Finish();
    EXPECT_EQ(result.exitStatus, 9);
    EXPECT_EQ(ErrorOf(result), "qlctl: error: stopped before the reader answered\n");
}

}  // namespace
}  // namespace quarlin::qlctl
