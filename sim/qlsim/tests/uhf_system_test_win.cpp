// SPDX-License-Identifier: Apache-2.0
// The reader on the machine's HID bus, used by the calls that any Windows program has.
#include <gtest/gtest.h>

#include <windows.h>

#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}

#include <atomic>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "edge/command_pipe_win.h"
#include "edge/handle_win.h"
#include "hidbus/hid_socket_win.h"
#include "programs_win.h"
#include "uhf/uhf_reader.h"

namespace quarlin::sim {
namespace {

using testing::kPatience;

// Every program sees the readers that are plugged in: one test at a time.
class ReaderTurn {
  public:
    ReaderTurn() : mutex_(CreateMutexW(nullptr, FALSE, L"Global\\QuarlinTestRfidReader")) {
        const DWORD wait = WaitForSingleObject(mutex_.get(), 5 * kPatience);
        if (wait != WAIT_OBJECT_0 && wait != WAIT_ABANDONED) {
            ADD_FAILURE() << "the turn does not come";
        }
    }
    ~ReaderTurn() { ReleaseMutex(mutex_.get()); }
    ReaderTurn(const ReaderTurn&) = delete;
    ReaderTurn& operator=(const ReaderTurn&) = delete;

  private:
    OwnedHandle mutex_;
};

std::vector<std::string> HidPaths() {
    GUID guid;
    HidD_GetHidGuid(&guid);
    const HDEVINFO list = SetupDiGetClassDevsA(&guid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    std::vector<std::string> paths;
    SP_DEVICE_INTERFACE_DATA data = {};
    data.cbSize = sizeof(data);
    for (DWORD i = 0; SetupDiEnumDeviceInterfaces(list, nullptr, &guid, i, &data) != FALSE; ++i) {
        DWORD size = 0;
        SetupDiGetDeviceInterfaceDetailA(list, &data, nullptr, 0, &size, nullptr);
        std::vector<char> memory(size);
        auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(memory.data());
        detail->cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A);
        if (SetupDiGetDeviceInterfaceDetailA(list, &data, detail, size, nullptr, nullptr) != FALSE) {
            paths.emplace_back(detail->DevicePath);
        }
    }
    SetupDiDestroyDeviceInfoList(list);
    return paths;
}

// The readers that programs can find now.
std::vector<std::string> ReaderPaths() {
    std::vector<std::string> found;
    for (const std::string& path : HidPaths()) {
        std::string lower = path;
        for (char& c : lower) {
            c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        }
        if (lower.find("vid_24e9&pid_3993") != std::string::npos) {
            found.push_back(path);
        }
    }
    return found;
}

// A program's handle of a reader.
class Host {
  public:
    explicit Host(const std::string& path)
        : file_(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {}

    bool IsOpen() const { return static_cast<bool>(file_); }
    HANDLE Get() const { return file_.get(); }
    bool Send(const std::string& command, std::size_t size = 64) {
        Bytes report = ParseHex(command).value();
        report.resize(size);
        return HidD_SetOutputReport(file_.get(), report.data(), static_cast<ULONG>(report.size())) != FALSE;
    }
    // Waits until a report comes; nothing when the device goes away.
    std::optional<Bytes> Read() {
        Bytes report(1024);
        DWORD read = 0;
        if (ReadFile(file_.get(), report.data(), static_cast<DWORD>(report.size()), &read, nullptr) == FALSE) {
            return std::nullopt;
        }
        report.resize(read);
        return report;
    }
    // The reply's frame, and "nothing" when there is none.
    std::string Exchange(const std::string& command, std::size_t size = 64) {
        if (!Send(command, size)) {
            return "not sent";
        }
        const auto reply = Read();
        return reply ? HexText(UhfFrameOf(*reply)) : "nothing";
    }
    HIDP_CAPS Caps() {
        HIDP_CAPS caps = {};
        PHIDP_PREPARSED_DATA data = nullptr;
        if (HidD_GetPreparsedData(file_.get(), &data) != FALSE) {
            HidP_GetCaps(data, &caps);
            HidD_FreePreparsedData(data);
        }
        return caps;
    }

  private:
    OwnedHandle file_;
};

const std::string kEpc = "3034257BF7194E4000001A85";

UhfSettings Settings() {
    UhfSettings settings;
    TagSettings tag;
    tag.epc = ParseHex(kEpc).value();
    tag.user = ParseHex("0001020304050607").value();
    tag.signal = -48;
    settings.tags.push_back(tag);
    return settings;
}

std::string Zeros(std::size_t bytes) {
    return std::string(2 * bytes, '0');
}

class ReaderOnTheBus : public ::testing::Test {
  protected:
    explicit ReaderOnTheBus(const UhfSettings& settings = Settings())
        : socket_(MakeHidSocket()), reader_(settings, *socket_) {
        reader_.Plug();
        const auto paths = ReaderPaths();
        EXPECT_EQ(1u, paths.size());
        if (!paths.empty()) {
            host_.emplace(paths.front());
        }
    }
    void SetUp() override { ASSERT_TRUE(host_ && host_->IsOpen()); }

    ReaderTurn turn_;
    std::unique_ptr<HidSocket> socket_;
    UhfReader reader_;
    std::optional<Host> host_;
};

TEST_F(ReaderOnTheBus, IsFoundAndShowsItsNumbersAndReports) {
    HIDD_ATTRIBUTES attributes = {};
    attributes.Size = sizeof(attributes);
    ASSERT_NE(FALSE, HidD_GetAttributes(host_->Get(), &attributes));
    EXPECT_EQ(0x24E9, attributes.VendorID);
    EXPECT_EQ(0x3993, attributes.ProductID);
    const HIDP_CAPS caps = host_->Caps();
    EXPECT_EQ(64, caps.OutputReportByteLength);
    EXPECT_EQ(64, caps.InputReportByteLength);
    EXPECT_EQ(0, caps.FeatureReportByteLength);
}

TEST_F(ReaderOnTheBus, AnswersEveryCommandWithAWholeReport) {
    ASSERT_TRUE(host_->Send("C202"));
    const auto reply = host_->Read();
    ASSERT_TRUE(reply);
    EXPECT_EQ("C304001B" + Zeros(60), HexText(*reply));
    EXPECT_EQ("44400001D00000000E3000" + kEpc + Zeros(41), host_->Exchange("430301"));
    EXPECT_EQ("340300", host_->Exchange("330F0C" + kEpc));
    EXPECT_EQ("36040002", host_->Exchange("350D03000000000002CAFEBABE"));
    EXPECT_EQ("38400004CAFEBABE04050607" + Zeros(52), host_->Exchange("370903000000000004"));
    EXPECT_EQ("3C0300", host_->Exchange("3B08040200000000"));
    EXPECT_EQ("3E0303", host_->Exchange("3D0600000001"));
    EXPECT_EQ("5A0F000009000200000000000400BA", host_->Exchange("590E"));
    EXPECT_EQ("C10300", host_->Exchange("C00309"));
    EXPECT_EQ(9u, reader_.Counters().received);
    EXPECT_EQ(0u, reader_.Counters().lost);
}

TEST_F(ReaderOnTheBus, SeesWhatTheProgramSent) {
    ASSERT_TRUE(host_->Send("43030100005A"));
    const std::vector<UhfTransfer> log = reader_.Log();
    ASSERT_EQ(2u, log.size());
    EXPECT_EQ("43030100005A" + Zeros(58), HexText(log[0].report));
}

TEST_F(ReaderOnTheBus, TakesNoReportThatItDoesNotHave) {
    EXPECT_FALSE(host_->Send("340300"));
    EXPECT_FALSE(host_->Send("00"));
    EXPECT_EQ(0u, reader_.Counters().received) << "the system itself refuses it";
    Bytes feature(64);
    EXPECT_EQ(FALSE, HidD_SetFeature(host_->Get(), feature.data(), 64));
    EXPECT_EQ(FALSE, HidD_GetFeature(host_->Get(), feature.data(), 64));
}

TEST_F(ReaderOnTheBus, ARefusedReportFailsAndTheNextIsAnswered) {
    reader_.AddFault(UhfFault::Refuse());
    EXPECT_FALSE(host_->Send("C202"));
    EXPECT_EQ("C304001B", host_->Exchange("C202"));
}

TEST_F(ReaderOnTheBus, ALateAnswerEndsAWaitThatHasBegun) {
    reader_.AddFault(UhfFault::Hold());
    ASSERT_TRUE(host_->Send("C202"));
    std::optional<Bytes> reply;
    std::thread waiting([&] { reply = host_->Read(); });
    ASSERT_TRUE(reader_.WaitForWaiting(1));
    EXPECT_EQ(1u, reader_.AnswerNow());
    waiting.join();
    ASSERT_TRUE(reply);
    EXPECT_EQ("C304001B", HexText(UhfFrameOf(*reply)));
}

TEST_F(ReaderOnTheBus, ADelayedAnswerComesByItself) {
    reader_.AddFault(UhfFault::Delay(std::chrono::milliseconds(30)));
    EXPECT_EQ("C304001B", host_->Exchange("C202"));
}

TEST_F(ReaderOnTheBus, AnUnplugEndsAWait) {
    reader_.AddFault(UhfFault::Silence());
    ASSERT_TRUE(host_->Send("C202"));
    std::optional<Bytes> reply = Bytes();
    std::thread waiting([&] { reply = host_->Read(); });
    reader_.Unplug();
    waiting.join();
    EXPECT_EQ(std::nullopt, reply);
    EXPECT_FALSE(host_->Send("C202"));
    EXPECT_TRUE(ReaderPaths().empty());
}

TEST_F(ReaderOnTheBus, GoesAwayInTheMiddleOfATransferAndComesBack) {
    reader_.AddFault(UhfFault::UnplugDuring());
    EXPECT_FALSE(host_->Send("C202"));
    EXPECT_FALSE(reader_.IsPlugged());
    host_.reset();
    reader_.Plug();
    const auto paths = ReaderPaths();
    ASSERT_EQ(1u, paths.size());
    Host again(paths.front());
    EXPECT_EQ("C304001B", again.Exchange("C202"));
}

TEST_F(ReaderOnTheBus, GoesAwayInsteadOfAnAnswer) {
    reader_.AddFault(UhfFault::UnplugBeforeAnswer());
    EXPECT_EQ("nothing", host_->Exchange("C202"));
    host_.reset();
    reader_.Unplug();
    reader_.Plug();
    const auto paths = ReaderPaths();
    ASSERT_EQ(1u, paths.size());
    EXPECT_EQ("C304001B", Host(paths.front()).Exchange("C202"));
}

TEST_F(ReaderOnTheBus, LosesNoneOfAThousandExchanges) {
    for (int i = 0; i < 1000; ++i) {
        const std::string power = HexText(std::array{static_cast<std::uint8_t>(i)});
        ASSERT_EQ("C10300", host_->Exchange("C003" + power)) << i;
        ASSERT_EQ("C30400" + power, host_->Exchange("C202")) << i;
    }
    EXPECT_EQ(2000u, reader_.Counters().received);
    EXPECT_EQ(0u, reader_.Counters().lost);
}

UhfSettings Sizes(std::size_t output, std::size_t input) {
    UhfSettings settings = Settings();
    settings.outputLength = output;
    settings.inputLength = input;
    return settings;
}

class ReaderWithOtherReports : public ReaderOnTheBus {
  protected:
    ReaderWithOtherReports() : ReaderOnTheBus(Sizes(32, 2)) {}
};

TEST_F(ReaderWithOtherReports, HasThemAtTheProgramsEnd) {
    EXPECT_EQ(32, host_->Caps().OutputReportByteLength);
    EXPECT_EQ(2, host_->Caps().InputReportByteLength);
    ASSERT_TRUE(host_->Send("C202", 32));
    const auto reply = host_->Read();
    ASSERT_TRUE(reply);
    EXPECT_EQ("C304", HexText(*reply)) << "no room for a status";
}

TEST(ReadersOnTheBus, MayBeTwoAtATime) {
    const ReaderTurn turn;
    const auto first = MakeHidSocket();
    const auto second = MakeHidSocket();
    UhfSettings strong = Settings();
    strong.radio.power = 40;
    UhfReader weakReader(Settings(), *first);
    UhfReader strongReader(strong, *second);
    weakReader.Plug();
    strongReader.Plug();
    std::set<std::string> replies;
    for (const std::string& path : ReaderPaths()) {
        replies.insert(Host(path).Exchange("C202"));
    }
    EXPECT_EQ((std::set<std::string>{"C304001B", "C3040028"}), replies);
    weakReader.Unplug();
    ASSERT_EQ(1u, ReaderPaths().size());
    EXPECT_EQ("C3040028", Host(ReaderPaths().front()).Exchange("C202"));
}

TEST(ReadersOnTheBus, ArePlayedByQlsim) {
    const ReaderTurn turn;
    const std::string pipe = "qlsim-rfid-test-" + std::to_string(GetCurrentProcessId());
    const auto ask = [&](const std::string& line) { return AskPipe(pipe, line, std::chrono::milliseconds(kPatience)); };
    const testing::TemporaryFile scenario(L"rfid.toml",
                                          "[[device]]\nkind = \"rfid-reader\"\nname = \"rfid\"\n"
                                          "[[device.tag]]\nepc = \"" +
                                              kEpc + "\"\nuser = \"0001\"\nsignal = -48\n");
    testing::Program qlsim(L"qlsim.exe", {"--pipe", pipe, scenario.Path()});
    EXPECT_EQ("ok power 33", ask("rfid power 33"));
    auto paths = ReaderPaths();
    ASSERT_EQ(1u, paths.size());
    {
        Host host(paths.front());
        EXPECT_EQ("C3040021", host.Exchange("C202"));
        EXPECT_EQ("44400001D00000000E3000" + kEpc + Zeros(41), host.Exchange("430301"));
        EXPECT_EQ("ok status-byte 84 write", ask("rfid status-byte 84 write"));
        EXPECT_EQ("36048400", host.Exchange("350B03000000000001CAFE"));
        EXPECT_EQ("ok late", ask("rfid late"));
        ASSERT_TRUE(host.Send("C202"));
        EXPECT_EQ("ok 1 answer", ask("rfid answer-now"));
        ASSERT_TRUE(host.Read());
        EXPECT_EQ("ok unplugged", ask("rfid unplug"));
        EXPECT_FALSE(host.Send("C202"));
    }
    EXPECT_TRUE(ReaderPaths().empty());
    EXPECT_EQ("ok plugged in", ask("rfid plug"));
    EXPECT_EQ(1u, ReaderPaths().size());
    EXPECT_EQ("ok ending", ask("quit"));
    EXPECT_EQ(0u, qlsim.Wait()) << qlsim.Output();
    EXPECT_TRUE(ReaderPaths().empty());
}

}  // namespace
}  // namespace quarlin::sim
