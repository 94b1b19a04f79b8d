// SPDX-License-Identifier: Apache-2.0
// Card readers on the machine's HID bus, as a program sees them that makes plain calls of the system.
#include <gtest/gtest.h>
#include <windows.h>
extern "C" {
#include <hidsdi.h>
}

#include <atomic>
#include <nlohmann/json.hpp>
#include <thread>

#include "edge/command_pipe_win.h"
#include "edge/handle_win.h"
#include "hidbus/hid_socket_win.h"
#include "magnesafe/reader.h"
#include "programs_win.h"
#include "tests/hid_program_win.h"

namespace quarlin::sim {
namespace {

using magnesafe::Form;
using magnesafe::MagneSafeReader;
using magnesafe::ReaderSettings;
using testing::CountPresent;
using testing::HidProgram;
using testing::Report;

const std::string kPipe = "qlsim-card-test-" + std::to_string(GetCurrentProcessId());

// Other tests and people may have readers of their own on the machine: these instances are looked for.
std::string Instance(int number) {
    return "6&7e57&0&000" + std::to_string(number);
}

std::string PathPart(const std::string& numbers, int number) {
    return "hid#" + numbers + "#" + Instance(number) + "#";
}

std::size_t CountReaders(int number) {
    return CountPresent(PathPart("vid_0801&pid_0011", number));
}

std::string ReaderPath(int number) {
    ReaderSettings settings;
    settings.instance = Instance(number);
    return testing::PathOf(MagneSafeReader(settings).Identity());
}

// A program that has the reader open.
class ReaderFile {
  public:
    explicit ReaderFile(int number = 1) : program_(ReaderPath(number)) {
        EXPECT_TRUE(program_.IsOpen()) << number;
        PHIDP_PREPARSED_DATA data = nullptr;
        if (HidD_GetPreparsedData(program_.Handle(), &data)) {
            HidP_GetCaps(data, &caps_);
            HidD_FreePreparsedData(data);
        }
    }

    const HIDP_CAPS& Caps() const { return caps_; }
    bool SetFeature(const Report& report) { return program_.SetFeature(report) == 0; }
    std::optional<Report> GetFeature() {
        Report report(caps_.FeatureReportByteLength);
        return program_.GetFeature(report) == 0 ? std::optional(report) : std::nullopt;
    }
    bool SetOutput(const Report& report) { return program_.SetOutput(report) == 0; }
    bool KeepInputs(ULONG count) { return HidD_SetNumInputBuffers(program_.Handle(), count); }
    void BeginRead() { program_.BeginRead(caps_.InputReportByteLength); }
    // Nothing when the read fails, or when no report comes within the program's patience.
    std::optional<Report> Read() {
        Report report;
        return program_.Read(caps_.InputReportByteLength, report) == 0 ? std::optional(report) : std::nullopt;
    }

  private:
    HidProgram program_;
    HIDP_CAPS caps_{};
};

// Whoever has card readers takes turns.
class Turn {
  public:
    Turn() : mutex_(CreateMutexW(nullptr, FALSE, L"Global\\QuarlinTestCardReader")) {
        const DWORD result = WaitForSingleObject(mutex_.get(), 3 * testing::kPatience);
        // A program that ended in the middle has lost its devices with its life.
        EXPECT_TRUE(result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) << result;
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() { ReleaseMutex(mutex_.get()); }

  private:
    OwnedHandle mutex_;
};

magnesafe::Card BankCard() {
    magnesafe::Card card;
    card.id = "visa";
    card.name = "MUSTERMANN/ERIKA";
    card.account = "4111111111111111";
    card.expiry = "2812";
    card.serviceCode = "101";
    return card;
}

Report Padded(Report report, std::size_t length = 25) {
    report.resize(length);
    return report;
}

const Report kAskSerial = Padded({0, 0, 1, 3});
const Report kAskLevel = Padded({0, 0x15, 0});

// A reader that this process plugs in.
class PluggedReader {
  public:
    explicit PluggedReader(ReaderSettings settings = {}, int number = 1)
        : reader_(WithInstance(std::move(settings), number)), socket_(MakeHidSocket()) {
        Plug();
    }
    ~PluggedReader() { socket_->Unplug(); }

    void Plug() { socket_->Plug(reader_.Identity(), reader_); }
    MagneSafeReader& Reader() { return reader_; }
    HidSocket& Socket() { return *socket_; }

  private:
    static ReaderSettings WithInstance(ReaderSettings settings, int number) {
        settings.instance = Instance(number);
        return settings;
    }

    MagneSafeReader reader_;
    std::unique_ptr<HidSocket> socket_;
};

class CardReaderOnTheBus : public ::testing::Test {
  private:
    Turn turn_;
};

TEST_F(CardReaderOnTheBus, IsFoundByItsPathAndAnswersItsCommands) {
    ReaderSettings settings;
    settings.serial = "AB12";
    settings.softwareId = "21088812D01";
    settings.securityLevel = 4;
    PluggedReader plugged(settings);
    EXPECT_EQ(1u, CountReaders(1));
    ReaderFile file;
    EXPECT_EQ(888, file.Caps().InputReportByteLength);
    EXPECT_EQ(64, file.Caps().OutputReportByteLength);
    EXPECT_EQ(25, file.Caps().FeatureReportByteLength);
    EXPECT_TRUE(file.SetFeature(kAskSerial));
    EXPECT_EQ(Padded({0, 0, 4, 'A', 'B', '1', '2'}), file.GetFeature());
    EXPECT_TRUE(file.SetFeature(Padded({0, 0, 1, 0})));
    EXPECT_EQ(Padded({0, 0, 11, '2', '1', '0', '8', '8', '8', '1', '2', 'D', '0', '1'}), file.GetFeature());
    EXPECT_TRUE(file.SetFeature(kAskLevel));
    EXPECT_EQ(Padded({0, 0, 1, 4}), file.GetFeature());
    EXPECT_TRUE(file.SetOutput(Report(64)));
    EXPECT_EQ(1u, plugged.Reader().Counts().outputs);
}

class SwipeForms : public CardReaderOnTheBus, public ::testing::WithParamInterface<Form> {};

TEST_P(SwipeForms, ArriveByteForByte) {
    PluggedReader plugged;
    ReaderFile file;
    file.BeginRead();
    const Report sent = plugged.Reader().Swipe(BankCard(), {.form = GetParam()});
    EXPECT_TRUE(plugged.Socket().SendInput(sent));
    EXPECT_EQ(sent, file.Read());
    const Report second = plugged.Reader().Swipe(BankCard(), {.form = GetParam()});
    EXPECT_NE(sent, second);
    EXPECT_TRUE(plugged.Socket().SendInput(second));
    EXPECT_EQ(second, file.Read()) << "sent before it was asked for";
}

INSTANTIATE_TEST_SUITE_P(Forms, SwipeForms, ::testing::Values(Form::kClear, Form::kMasked, Form::kEncrypted),
                         [](const auto& tested) { return std::string(NameOf(tested.param)); });

class WrongSizes : public CardReaderOnTheBus, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(WrongSizes, ArriveAsTheDescriptorSays) {
    ReaderSettings settings;
    settings.inputReportLength = GetParam();
    PluggedReader plugged(settings);
    ReaderFile file;
    EXPECT_EQ(GetParam(), file.Caps().InputReportByteLength);
    const Report sent = plugged.Reader().Swipe(BankCard(), {});
    EXPECT_TRUE(plugged.Socket().SendInput(sent));
    EXPECT_EQ(GetParam(), sent.size());
    EXPECT_EQ(sent, file.Read());
}

INSTANTIATE_TEST_SUITE_P(Bytes, WrongSizes, ::testing::Values(64, 887, 889),
                         [](const auto& tested) { return std::to_string(tested.param); });

TEST_F(CardReaderOnTheBus, AFeatureReportMayHaveAnotherLength) {
    ReaderSettings settings;
    settings.featureReportLength = 200;
    settings.serial = std::string(180, 'x');
    PluggedReader plugged(settings);
    ReaderFile file;
    EXPECT_TRUE(file.SetFeature(Padded(kAskSerial, 200)));
    const auto answer = file.GetFeature();
    ASSERT_TRUE(answer);
    EXPECT_EQ(200u, answer->size());
    EXPECT_EQ('x', answer->at(182));
    EXPECT_EQ(0, answer->at(183));
}

TEST_F(CardReaderOnTheBus, RefusesTheRequestThatItIsToldTo) {
    PluggedReader plugged;
    ReaderFile file;
    plugged.Reader().AddFault({.request = HidRequest::kSetFeature, .start = {0x15}});
    EXPECT_TRUE(file.SetFeature(kAskSerial));
    EXPECT_FALSE(file.SetFeature(kAskLevel));
    EXPECT_TRUE(file.SetFeature(kAskLevel));
    plugged.Reader().AddFault({.request = HidRequest::kGetFeature});
    EXPECT_FALSE(file.GetFeature());
    EXPECT_TRUE(file.GetFeature());
    plugged.Reader().AddFault({.request = HidRequest::kSetOutput});
    EXPECT_FALSE(file.SetOutput(Report(64)));
}

TEST_F(CardReaderOnTheBus, VanishesInTheMiddleOfATransferAndComesBack) {
    PluggedReader plugged;
    {
        ReaderFile file;
        file.BeginRead();
        plugged.Reader().AddFault({.answer = HidAnswer::kUnplug, .request = HidRequest::kGetFeature});
        EXPECT_TRUE(file.SetFeature(kAskLevel));
        EXPECT_FALSE(file.GetFeature());
        EXPECT_FALSE(file.Read()) << "the pending read fails";
        EXPECT_FALSE(file.SetFeature(kAskLevel));
    }
    EXPECT_FALSE(plugged.Socket().SendInput(plugged.Reader().Swipe(BankCard(), {})));
    plugged.Socket().Unplug();
    EXPECT_EQ(0u, CountReaders(1));
    plugged.Plug();
    ReaderFile again;
    EXPECT_TRUE(again.SetFeature(kAskLevel));
}

TEST_F(CardReaderOnTheBus, UnpluggingEndsAPendingRead) {
    PluggedReader plugged;
    ReaderFile file;
    file.BeginRead();
    plugged.Socket().Unplug();
    EXPECT_FALSE(file.Read());
    EXPECT_EQ(0u, CountReaders(1));
}

TEST_F(CardReaderOnTheBus, TwoReadersAreTwoReaders) {
    ReaderSettings settings;
    settings.serial = "ONE";
    PluggedReader one(settings, 1);
    settings.serial = "TWO";
    PluggedReader two(settings, 2);
    ReaderFile first(1);
    ReaderFile second(2);
    EXPECT_TRUE(first.SetFeature(kAskSerial));
    EXPECT_TRUE(second.SetFeature(kAskSerial));
    EXPECT_EQ(Padded({0, 0, 3, 'O', 'N', 'E'}), first.GetFeature());
    EXPECT_EQ(Padded({0, 0, 3, 'T', 'W', 'O'}), second.GetFeature());
    first.BeginRead();
    const Report swipe = two.Reader().Swipe(BankCard(), {});
    EXPECT_TRUE(two.Socket().SendInput(swipe));
    EXPECT_EQ(swipe, second.Read());
    const Report other = one.Reader().Swipe(BankCard(), {});
    EXPECT_TRUE(one.Socket().SendInput(other));
    EXPECT_EQ(other, first.Read());
}

TEST_F(CardReaderOnTheBus, ASecondReaderComesAndGoesWhileTheFirstSwipes) {
    PluggedReader first({}, 1);
    ReaderFile file(1);
    std::atomic<std::uint32_t> sent = 0;
    std::jthread swiping([&](const std::stop_token& enough) {
        while (!enough.stop_requested() && first.Socket().SendInput(first.Reader().Swipe(BankCard(), {}))) {
            ++sent;
        }
    });
    std::uint32_t last = 0;
    for (int round = 0; round < 5; ++round) {
        const PluggedReader second({}, 2);
        EXPECT_EQ(1u, CountReaders(2));
        // What is sent from now on is newer than what any queue still holds.
        const std::uint32_t before = sent;
        while (last <= before) {
            const auto report = file.Read();
            ASSERT_TRUE(report) << "round " << round;
            const std::uint32_t number = magnesafe::NumberOf(*report);
            ASSERT_GT(number, last);
            last = number;
        }
    }
}

// qlsim with a reader and another device.
class PlayedReader : public CardReaderOnTheBus {
  protected:
    PlayedReader()
        : file_(L"cards.toml", "[[device]]\nkind = \"card-reader\"\nname = \"reader\"\nserial = \"K7\"\ninstance = \"" +
                                   Instance(3) +
                                   "\"\n[[device.card]]\nid = \"staff\"\ntrack2 = \";9000012345=000042?\"\n"
                                   "[[device]]\nkind = \"hid\"\nname = \"pin-pad\"\nvendor = 0x0801\nproduct = 0x3009\n"
                                   "instance = \"" +
                                   Instance(3) + "\"\n"),
          program_(L"qlsim.exe", {"--pipe", kPipe, file_.Path()}) {}

    static std::string Ask(const std::string& line) { return AskPipe(kPipe, line, std::chrono::seconds(20)); }
    static std::string Ctl(std::vector<std::string> words) {
        words.insert(words.begin(), {"--pipe", kPipe});
        testing::Program ctl(L"qlsim-ctl.exe", words);
        EXPECT_TRUE(ctl.Wait().has_value());
        return ctl.Output();
    }
    void Quit() {
        EXPECT_EQ("ok ending", Ask("quit"));
        EXPECT_EQ(0u, program_.Wait()) << program_.Output();
        EXPECT_EQ(0u, CountReaders(3));
    }

  private:
    testing::TemporaryFile file_;
    testing::Program program_;
};

TEST_F(PlayedReader, SwipesWhatItIsTold) {
    Ask("devices");  // it is at work when it answers
    ReaderFile file(3);
    EXPECT_TRUE(file.SetFeature(kAskSerial));
    EXPECT_EQ(Padded({0, 0, 2, 'K', '7'}), file.GetFeature());
    EXPECT_EQ("swiped staff, clear, number 1\r\n", Ctl({"reader", "swipe", "staff", "clear"}));
    const auto report = file.Read();
    ASSERT_TRUE(report);
    EXPECT_EQ(888u, report->size());
    EXPECT_EQ(";9000012345=000042?", std::string(report->begin() + 120, report->begin() + 139));
    EXPECT_EQ("ok sent 888 bytes", Ask("reader swipe-raw 00 0102"));
    EXPECT_EQ(Padded({0, 1, 2}, 888), file.Read());
    EXPECT_EQ("ok 1 faults wait for their requests", Ask("reader fail-feature get"));
    EXPECT_FALSE(file.GetFeature());
    const std::string status = Ask("reader status");
    ASSERT_EQ(0u, status.find("ok {"));
    EXPECT_EQ(2, nlohmann::json::parse(status.substr(3))["get_features"]);
    Quit();
}

TEST_F(PlayedReader, IsPulledOutAndPluggedInAgain) {
    Ask("devices");
    ASSERT_EQ(1u, CountReaders(3));
    EXPECT_EQ(1u, CountPresent(PathPart("vid_0801&pid_3009", 3)));
    EXPECT_EQ("ok unplugged", Ask("reader unplug"));
    EXPECT_EQ(0u, CountReaders(3));
    EXPECT_EQ(1u, CountPresent(PathPart("vid_0801&pid_3009", 3)));
    EXPECT_EQ("ok plugged in", Ask("reader plug"));
    EXPECT_EQ(1u, CountReaders(3));
    Quit();
}

TEST_F(PlayedReader, ManySwipesComeInOrderAndNoneIsLost) {
    // As many as the system keeps for a program that is slow.
    constexpr std::uint32_t kAtOnce = 500;
    Ask("devices");
    ReaderFile file(3);
    EXPECT_TRUE(file.KeepInputs(512));
    std::uint32_t number = 0;
    for (int round = 0; round < 4; ++round) {
        EXPECT_EQ("ok swiping staff 500 times", Ask("reader swipe-many 500"));
        for (std::uint32_t i = 0; i < kAtOnce; ++i) {
            const auto report = file.Read();
            ASSERT_TRUE(report) << "after number " << number;
            ASSERT_EQ(++number, magnesafe::NumberOf(*report));
        }
    }
    Quit();
}

}  // namespace
}  // namespace quarlin::sim
