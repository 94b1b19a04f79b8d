// SPDX-License-Identifier: Apache-2.0
#include "hidbus/hid_socket_win.h"
#include "machine_turn_win.h"
#include "magnesafe/reader.h"
#include "output_text.h"
#include "own_console_win.h"
#include "view/hex.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;
using sim::magnesafe::Card;
using sim::magnesafe::Form;
using sim::magnesafe::ReaderSettings;

constexpr const wchar_t* kTurn = L"Global\\QuarlinTestCardReader";
constexpr const char* kAccount = "5412345678901232";

Card JanesCard() {
    Card card;
    card.name = "DOE/JANE";
    card.account = kAccount;
    card.expiry = "2704";
    card.serviceCode = "101";
    card.discretionary = "1234567890";
    return card;
}

// A reader on the machine's HID bus.
class Reader {
  public:
    explicit Reader(const std::string& serial) : device_(Settings(serial)), socket_(sim::MakeHidSocket()) {
        socket_->Plug(device_.Identity(), device_);
    }

    void Swipe(const Card& card, Form form) {
        sim::magnesafe::SwipeOptions options;
        options.form = form;
        EXPECT_TRUE(socket_->SendInput(device_.Swipe(card, options)));
    }
    void Unplug() { socket_->Unplug(); }
    sim::magnesafe::MagneSafeReader& Device() { return device_; }

  private:
    static ReaderSettings Settings(const std::string& serial) {
        ReaderSettings settings;
        settings.serial = serial;
        settings.securityLevel = serial == "LEVEL2" ? 2 : 3;
        return settings;
    }

    sim::magnesafe::MagneSafeReader device_;
    std::unique_ptr<sim::HidSocket> socket_;
};

// A watch that waits for swipes.
ChildProcess StartWatch(const std::string& options) {
    return ChildProcess("card watch " + options);
}

class CardCommands : public testing::Test {
  protected:
    static bool IsWaiting(ChildProcess& watch) { return watch.Err().WaitFor("waiting for swipes", kDeadline); }

  private:
    const MachineTurn turn_{kTurn};
};

TEST_F(CardCommands, ListReaders) {
    const Reader first("B30A5C7");
    const Reader second("LEVEL2");
    const ChildResult text = Qlctl("card list");
    EXPECT_EQ(text.exitStatus, 0);
    EXPECT_EQ(text.err, "");
    EXPECT_TRUE(text.out.starts_with("Index  Name         Serial number  Software     Encrypts\n0      MAGTEK(USB)  "))
        << text.out;
    EXPECT_NE(text.out.find("MAGTEK(USB)  B30A5C7        21088812D01  yes\n"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("MAGTEK(USB)  LEVEL2         21088812D01  no\n"), std::string::npos) << text.out;

    const Json readers = Json::parse(Qlctl("card list --json").out)["readers"];
    ASSERT_EQ(readers.size(), 2U);
    EXPECT_EQ(readers[1]["index"], 1);
}

TEST_F(CardCommands, ShowEverySwipeMaskedAndEndAfterTheirCount) {
    Reader reader("B30A5C7");
    ChildProcess watch = StartWatch("--count 2");
    ASSERT_TRUE(IsWaiting(watch));
    reader.Swipe(JanesCard(), Form::kClear);
    reader.Swipe(JanesCard(), Form::kEncrypted);
    const ChildResult result = watch.Finish();
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(WithoutReturns(result.err), "qlctl: waiting for swipes, 1 reader\n");
    EXPECT_EQ(result.out.find("Swipe 1  valid, not encrypted, reader B30A5C7\n"
                              "  Track 1  %B541234******1232^D**/J***^2704101**********?\n"
                              "           format B, account 541234******1232 (check digit correct), name D**/J***, "
                              "expires 2027-04, service code 101\n"
                              "  Track 2  ;541234******1232=2704101**********?\n"
                              "           account 541234******1232 (check digit correct), expires 2027-04, "
                              "service code 101\n"
                              "  Track 3  empty\n"
                              "Swipe 2  valid, encrypted, reader B30A5C7\n"),
              0U)
        << result.out;
}

TEST_F(CardCommands, ShowNothingOfAnAccountOrANameUnlessToldTo) {
    Reader reader("B30A5C7");
    Card misread = JanesCard();
    misread.tracks[2] = std::string(";") + kAccount + "?";
    const std::string accountHex = Hex(std::vector<std::uint8_t>(kAccount, kAccount + 16));
    for (const char* const options : {"--count 4", "--count 4 --json"}) {
        ChildProcess watch = StartWatch(options);
        ASSERT_TRUE(IsWaiting(watch));
        for (const Form form : {Form::kClear, Form::kMasked, Form::kEncrypted}) {
            reader.Swipe(JanesCard(), form);
        }
        reader.Swipe(misread, Form::kClear);
        const ChildResult result = watch.Finish();
        EXPECT_EQ(result.exitStatus, 0);
        for (const std::string& secret :
             {std::string(kAccount), accountHex, std::string("DOE"), std::string("JANE"), std::string("_hex")}) {
            EXPECT_EQ(result.out.find(secret), std::string::npos) << secret << " in " << result.out;
        }
        EXPECT_NE(result.out.find("541234******1232"), std::string::npos) << result.out;
    }
}

TEST_F(CardCommands, ShowAllBytesWhenToldTo) {
    Reader reader("B30A5C7");
    ChildProcess watch = StartWatch("--json --show-pan --count 2");
    ASSERT_TRUE(IsWaiting(watch));
    reader.Swipe(JanesCard(), Form::kClear);
    reader.Swipe(JanesCard(), Form::kEncrypted);
    const std::vector<Json> swipes = JsonLines(watch.Finish().out);
    ASSERT_EQ(swipes.size(), 2U);
    EXPECT_EQ(swipes[0]["tracks"][0]["text"], "%B5412345678901232^DOE/JANE^27041011234567890?");
    EXPECT_EQ(swipes[0]["tracks"][1]["card"]["account"], kAccount);
    EXPECT_EQ(swipes[0]["raw_hex"].get<std::string>().size(), 2U * 888);
    EXPECT_EQ(swipes[1]["encrypted"], true);
    EXPECT_EQ(swipes[1]["tracks"][0]["text"], nullptr);
    EXPECT_EQ(swipes[1]["key_serial_number"].get<std::string>().substr(0, 8), "9010010B");
    EXPECT_EQ(swipes[1]["masked_tracks"][1]["card"]["expiry"], "2027-04");
}

TEST_F(CardCommands, WatchOneReaderOfTwoWhenToldTo) {
    Reader first("FIRST");
    Reader second("SECOND");
    // Which reader has which index is the bus's affair.
    const Json readers = Json::parse(Qlctl("card list --json").out)["readers"];
    ASSERT_EQ(readers.size(), 2U);
    Reader& watched = readers[1]["serial_number"] == "FIRST" ? first : second;
    Reader& other = &watched == &first ? second : first;
    ChildProcess watch = StartWatch("--reader 1 --count 1 --json");
    ASSERT_TRUE(IsWaiting(watch));
    other.Swipe(JanesCard(), Form::kClear);
    watched.Swipe(JanesCard(), Form::kClear);
    const std::vector<Json> swipes = JsonLines(watch.Finish().out);
    ASSERT_EQ(swipes.size(), 1U);
    EXPECT_EQ(swipes[0]["reader_serial"], readers[1]["serial_number"]);
}

TEST_F(CardCommands, GoOnUntilTheLastReaderWasUnplugged) {
    Reader first("FIRST");
    Reader second("SECOND");
    ChildProcess watch = StartWatch("");
    ASSERT_TRUE(IsWaiting(watch));
    first.Unplug();
    ASSERT_TRUE(watch.Err().WaitFor("was unplugged", kDeadline));
    second.Swipe(JanesCard(), Form::kClear);
    EXPECT_TRUE(watch.Out().WaitFor("reader SECOND", kDeadline));
    second.Unplug();
    const ChildResult result = watch.Finish();
    EXPECT_EQ(result.exitStatus, 7);
    EXPECT_EQ(CountOf(result.err, "was unplugged"), 2U) << result.err;
    EXPECT_TRUE(WithoutReturns(result.err).ends_with("qlctl: error: no reader is left to wait for\n")) << result.err;
}

TEST_F(CardCommands, EndWhenTheTimeIsUp) {
    const Reader reader("B30A5C7");
    const ChildResult open = Qlctl("card watch --timeout 0.2");
    EXPECT_EQ(open.exitStatus, 0);
    EXPECT_EQ(open.out, "");
    const ChildResult counted = Qlctl("card watch --timeout 0.2 --count 2");
    EXPECT_EQ(counted.exitStatus, 6);
    EXPECT_TRUE(WithoutReturns(counted.err).ends_with("qlctl: error: 0 of 2 swipes came within 0.2 s\n"))
        << counted.err;
}

TEST_F(CardCommands, SayWhenThereIsNoReader) {
    EXPECT_EQ(Qlctl("card list").out, "no card reader is plugged in\n");
    const ChildResult none = Qlctl("card watch");
    EXPECT_EQ(none.exitStatus, 11);
    EXPECT_EQ(WithoutReturns(none.err), "qlctl: error: no card reader is plugged in\n");
    const ChildResult other = Qlctl("card watch --reader 3");
    EXPECT_EQ(other.exitStatus, 2);
    EXPECT_EQ(WithoutReturns(other.err), "qlctl: error 1 (QLERR_INVALID_ARGUMENT): Not valid device index.\n");
}

TEST_F(CardCommands, ShowTheLibrarysErrorOfAReaderThatDoesNotAnswer) {
    Reader reader("B30A5C7");
    reader.Device().AddFault({});
    const ChildResult result = Qlctl("card list");
    EXPECT_EQ(result.exitStatus, 5);
    EXPECT_EQ(WithoutReturns(result.err), "qlctl: error 5 (QLERR_INTERNAL_ERROR): fail MSR devices scan.\n");
}

class CardOnOwnConsole : public OwnConsole {
    const MachineTurn turn_{kTurn};
};

TEST_F(CardOnOwnConsole, CtrlCEndsAWatch) {
    Reader reader("B30A5C7");
    ChildProcess watch = StartWatch("");
    ASSERT_TRUE(watch.Err().WaitFor("waiting for swipes", kDeadline));
    reader.Swipe(JanesCard(), Form::kClear);
    ASSERT_TRUE(watch.Out().WaitFor("Track 3", kDeadline));
    PressCtrlC();
    EXPECT_EQ(watch.Finish().exitStatus, 0);
}

}  // namespace
}  // namespace quarlin::qlctl
