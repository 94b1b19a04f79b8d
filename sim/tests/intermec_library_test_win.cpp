// SPDX-License-Identifier: Apache-2.0
// ISDC_RS.dll and ISDC_HID.dll as programs find them.
#include <algorithm>
#include <array>
#include <optional>

#include "scanner_library_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"

namespace quarlin::sim {
namespace {

using Function = IntermecFunction;
using Bytes = std::vector<std::uint8_t>;

// A window that gathers what the engine posts.
class ScanWindow {
  public:
    ScanWindow()
        : message_(RegisterWindowMessageW(L"WM_ISCP_FRAME")),
          window_(CreateWindowW(L"STATIC", L"scans", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
        EXPECT_NE(window_, nullptr);
    }
    ScanWindow(const ScanWindow&) = delete;
    ScanWindow& operator=(const ScanWindow&) = delete;
    ~ScanWindow() { DestroyWindow(window_); }

    HWND Get() const { return window_; }
    // The wParam of the next message that is there, if any.
    std::optional<WPARAM> Take() const {
        MSG message;
        if (PeekMessageW(&message, window_, message_, message_, PM_REMOVE) == 0) {
            return {};
        }
        return message.wParam;
    }
    std::optional<WPARAM> Wait() const {
        std::optional<WPARAM> found;
        WaitUntil([&] { return (found = Take()).has_value(); });
        return found;
    }

  private:
    UINT message_;
    HWND window_;
};

class IntermecLibrary : public testing::TestWithParam<const wchar_t*> {
  protected:
    std::uint16_t Frame(const char* function, const Bytes& request) {
        answerLength_ = 77;
        answer_.fill(0xEE);
        return library_.Call(function, request.data(), static_cast<std::uint32_t>(request.size()), answer_.data(),
                             std::uint32_t{4096}, &answerLength_);
    }
    Bytes Answer() const { return {answer_.begin(), answer_.begin() + std::min(answerLength_, 4096u)}; }
    std::string AnswerText() const { return {answer_.begin(), answer_.begin() + std::min(answerLength_, 4096u)}; }
    std::uint16_t Initialize() {
        std::uint32_t out = 0;
        return library_.Call("Initialize", "HKCU\\SOFTWARE\\Test", &out);
    }
    void Connect() {
        ASSERT_EQ(0, Initialize());
        ASSERT_EQ(0, Address());
        ASSERT_EQ(0, library_.Call("Connect"));
    }
    void Listen() { ASSERT_EQ(0, library_.Call("MessageIdentify", window_.Get(), 1u)); }
    std::uint16_t Address() {
        std::uint32_t port = 6;
        std::uint32_t out = 0;
        if (IsHid()) {
            return library_.Call("DeviceIOControl", 260u, "\\\\?\\hid#7", 10u, static_cast<void*>(nullptr), 0u);
        }
        return library_.Call("DeviceIOControl", 525u, &port, 4u, &out, 4u);
    }
    // The next scan, empty when there is none.
    std::string Drain() {
        EXPECT_EQ(0, library_.Call("GetBarcodeDataEx", answer_.data(), std::uint32_t{4096}, &answerLength_));
        return AnswerText();
    }
    static bool IsHid() { return std::wstring(GetParam()) == L"ISDC_HID.dll"; }

    ScannerRecord<IntermecState> record_;
    ScannerLibrary library_{GetParam()};
    ScanWindow window_;
    std::array<std::uint8_t, 4096> answer_{};
    std::uint32_t answerLength_ = 0;
};

TEST_P(IntermecLibrary, RefusesAllBeforeItsTime) {
    EXPECT_EQ(kIntermecNotInitialized, library_.Call("Connect"));
    EXPECT_EQ(kIntermecNotInitialized, library_.Call("Disconnect"));
    EXPECT_EQ(kIntermecNotInitialized, library_.Call("Deinitialize"));
    EXPECT_EQ(kIntermecNotInitialized, library_.Call("ConfigurationDialog"));
    EXPECT_EQ(kIntermecNotInitialized, library_.Call("MessageIdentify", window_.Get(), 1u));
    EXPECT_EQ(kIntermecNotInitialized, Address());
    for (const char* const function : {"SetupWrite", "SetupRead", "ControlCommand", "StatusRead"}) {
        EXPECT_EQ(kIntermecNotInitialized, Frame(function, {0x73, 0x4E}));
    }
    EXPECT_EQ(kIntermecNotInitialized,
              library_.Call("GetBarcodeDataEx", answer_.data(), std::uint32_t{4096}, &answerLength_));
    ASSERT_EQ(0, Initialize());
    EXPECT_EQ(kIntermecAlreadyInitialized, Initialize());
    EXPECT_EQ(kIntermecNoDevice, library_.Call("Connect"));
    EXPECT_EQ(kIntermecNotConnected, library_.Call("Disconnect"));
    EXPECT_EQ(kIntermecNotConnected, library_.Call("MessageIdentify", window_.Get(), 1u));
    for (const char* const function : {"SetupWrite", "SetupRead", "ControlCommand", "StatusRead"}) {
        EXPECT_EQ(kIntermecNotConnected, Frame(function, {0x73, 0x4E}));
    }
    ASSERT_EQ(0, Address());
    ASSERT_EQ(0, library_.Call("Connect"));
    EXPECT_EQ(kIntermecAlreadyConnected, library_.Call("Connect"));
    EXPECT_EQ(0, library_.Call("Disconnect"));
    EXPECT_EQ(0, library_.Call("Deinitialize"));
}

TEST_P(IntermecLibrary, FindsItsKindOfDevice) {
    ASSERT_EQ(0, Initialize());
    std::uint32_t number = 0;
    if (IsHid()) {
        EXPECT_EQ(kIntermecUnknownCode, library_.Call("DeviceIOControl", 525u, &number, 4u, &number, 4u));
        EXPECT_EQ(kIntermecBadArgument,
                  library_.Call("DeviceIOControl", 260u, "path", 4u, static_cast<void*>(nullptr), 0u));
    } else {
        EXPECT_EQ(kIntermecUnknownCode,
                  library_.Call("DeviceIOControl", 260u, "path", 5u, static_cast<void*>(nullptr), 0u));
        EXPECT_EQ(kIntermecBadArgument, library_.Call("DeviceIOControl", 525u, &number, 2u, &number, 4u));
        // The dialog is as good as a port.
        EXPECT_EQ(0, library_.Call("ConfigurationDialog"));
        EXPECT_EQ(0, library_.Call("Connect"));
        EXPECT_EQ(0, library_.Call("Disconnect"));
        EXPECT_EQ(1u, record_.Use()->dialogs);
    }
    ASSERT_EQ(0, Address());
    EXPECT_EQ(IsHid() ? "\\\\?\\hid#7" : "", std::string(record_.Use()->path));
    EXPECT_EQ(IsHid() ? 0u : 6u, record_.Use()->port);
    record_.Use()->plugged = 0;
    EXPECT_EQ(kIntermecNoDevice, library_.Call("Connect"));
    EXPECT_EQ(0u, record_.Use()->connected);
    record_.Use()->plugged = 1;
    EXPECT_EQ(0, library_.Call("Connect"));
    EXPECT_EQ(GetCurrentProcessId(), record_.Use()->connected);
    EXPECT_EQ(GetCurrentProcessId(), record_.Use()->initialized);
    EXPECT_EQ("HKCU\\SOFTWARE\\Test", std::string(record_.Use()->registryPath));
    EXPECT_EQ(0, library_.Call("Deinitialize"));
    EXPECT_EQ(0u, record_.Use()->connected);
    EXPECT_EQ(0u, record_.Use()->initialized);
}

TEST_P(IntermecLibrary, KeepsItsParameters) {
    Connect();
    EXPECT_EQ(0, Frame("SetupRead", {0x73, 0x4E}));
    EXPECT_EQ((Bytes{0x73, 0x4E, 1}), Answer());
    EXPECT_EQ(0, Frame("SetupWrite", {0x43, 0x41, 1, 0x43, 0x40, 0, 0x43, 0x42, 0}));
    EXPECT_EQ((Bytes{0x43, 0x41, 1, 0x43, 0x40, 0, 0x43, 0x42, 0}), Answer());
    EXPECT_EQ(1, record_.Use()->Value(0x4341));
    ASSERT_NE(nullptr, record_.Use()->Find(0x4342));
    EXPECT_EQ(nullptr, record_.Use()->Find(0x4343));
    EXPECT_EQ(0, Frame("SetupRead", {0x43, 0x41, 0x55, 0x40, 0x43, 0x40}));
    EXPECT_EQ((Bytes{0x43, 0x41, 1, 0x55, 0x40, 0, 0x43, 0x40, 0}), Answer());
    record_.Use()->unknownParameterStatus = 0x777;
    EXPECT_EQ(0x777, Frame("SetupRead", {0x55, 0x40}));
    EXPECT_EQ(kIntermecBadFrame, Frame("SetupWrite", {0x43, 0x41}));
    EXPECT_EQ(kIntermecBadFrame, Frame("SetupRead", {0x43, 0x41, 0}));
    EXPECT_EQ(kIntermecBadFrame, Frame("StatusRead", {0x30}));
    // They stay while no program has the engine.
    EXPECT_EQ(0, library_.Call("Deinitialize"));
    record_.Use()->Set(0x734E, 2);
    Connect();
    EXPECT_EQ(0, Frame("SetupRead", {0x73, 0x4E, 0x43, 0x41}));
    EXPECT_EQ((Bytes{0x73, 0x4E, 2, 0x43, 0x41, 1}), Answer());
}

TEST_P(IntermecLibrary, ObeysAndTellsItsVersion) {
    Connect();
    EXPECT_EQ(0, Frame("ControlCommand", {0x20, 0x40, 1}));
    EXPECT_EQ(1u, record_.Use()->decoding);
    EXPECT_EQ(0, Frame("ControlCommand", {0x20, 0x40, 0}));
    EXPECT_EQ(0u, record_.Use()->decoding);
    EXPECT_EQ(0, Frame("ControlCommand", {0x50, 0x40, 0}));
    EXPECT_EQ(0, Frame("ControlCommand", {0x30, 0x02}));
    EXPECT_EQ(1u, record_.Use()->linkPrepared);
    EXPECT_EQ(1u, record_.Use()->linkReset);
    record_.Use()->SetVersion("X 1.2", 5);
    EXPECT_EQ(0, Frame("StatusRead", {0x30, 0xC0}));
    EXPECT_EQ(std::string("\x30\xC0\0\0X 1.2", 9), AnswerText());
    const std::string tooLong(4096, 'v');
    record_.Use()->SetVersion(tooLong.data(), tooLong.size());
    EXPECT_EQ(kIntermecTooSmall, Frame("StatusRead", {0x30, 0xC0}));
}

TEST_P(IntermecLibrary, LogsWhoCalledWhatWithWhat) {
    Connect();
    Listen();
    Frame("SetupWrite", {0x70, 0x40, 1});
    Drain();
    const std::vector<EngineCall> calls = record_.Calls();
    ASSERT_EQ(6u, calls.size());
    const Function order[] = {Function::kInitialize,      Function::kDeviceIOControl, Function::kConnect,
                              Function::kMessageIdentify, Function::kSetupWrite,      Function::kGetBarcodeDataEx};
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(static_cast<std::uint32_t>(order[i]), calls[i].function) << i;
        EXPECT_EQ(GetCurrentProcessId(), calls[i].process);
        EXPECT_EQ(GetCurrentThreadId(), calls[i].thread);
        EXPECT_EQ(IsHid() ? kIntermecHidLibrary : kIntermecSerialLibrary, calls[i].library);
        EXPECT_EQ(0u, calls[i].status);
    }
    EXPECT_EQ("HKCU\\SOFTWARE\\Test", RequestOf(calls[0]));
    EXPECT_EQ(IsHid() ? 260 : 525, calls[1].arguments[0]);
    EXPECT_EQ(IsHid() ? std::string("\\\\?\\hid#7\0", 10) : std::string("\6\0\0\0", 4), RequestOf(calls[1]));
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(window_.Get()), calls[3].arguments[0]);
    EXPECT_EQ(1, calls[3].arguments[1]);
    EXPECT_EQ(std::string("\x70\x40\1"), RequestOf(calls[4]));
    EXPECT_EQ(4096, calls[4].arguments[0]);
    EXPECT_EQ(3u, calls[4].answerLength);
    EXPECT_EQ(4096, calls[5].arguments[1]);
}

TEST_P(IntermecLibrary, AnswersWithDirtAboveTheStatus) {
    std::uint32_t out = 0;
    EXPECT_EQ(kStatusDirt, library_.CallRaw("Initialize", "HKCU\\Test", &out));
    EXPECT_EQ(kStatusDirt | kIntermecNotConnected, library_.CallRaw("Disconnect"));
}

TEST_P(IntermecLibrary, RefusesWhatItIsTold) {
    // Every function; what nobody calls takes no notice of arguments.
    for (std::size_t i = 0; i < kIntermecFunctionCount; ++i) {
        const auto status = static_cast<std::uint16_t>(0x8000 + i);
        record_.Use()->Refuse(static_cast<Function>(i), status, 1);
        const std::string name = kIntermecFunctionNames[i];
        std::uint32_t out = 0;
        std::uint16_t found = 0;
        if (name == "Initialize") {
            found = Initialize();
        } else if (name == "SetupWrite" || name == "SetupRead" || name == "ControlCommand" || name == "StatusRead") {
            found = Frame(name.c_str(), {1, 2});
        } else if (name == "DeviceIOControl") {
            found = Address();
        } else if (name == "GetBarcodeDataEx") {
            found = library_.Call("GetBarcodeDataEx", answer_.data(), std::uint32_t{4096}, &out);
        } else if (name == "MessageIdentify") {
            found = library_.Call("MessageIdentify", window_.Get(), 1u);
        } else {
            found = library_.Call(name.c_str());
        }
        EXPECT_EQ(status, found) << name;
        EXPECT_EQ(0u, record_.Use()->refusals[i].count) << name;
    }
    EXPECT_EQ(0u, record_.Use()->initialized);
    EXPECT_EQ(0, library_.Call("GetImageData"));

    Connect();
    record_.Use()->Refuse(Function::kSetupWrite, 9, 1, 1, 0x7340);
    EXPECT_EQ(0, Frame("SetupWrite", {0x73, 0x4E, 1}));
    EXPECT_EQ(0, Frame("SetupWrite", {0x73, 0x40, 1}));
    EXPECT_EQ(0, Frame("SetupWrite", {0x73, 0x4E, 1}));
    EXPECT_EQ(9, Frame("SetupWrite", {0x73, 0x40, 0}));
    EXPECT_EQ(1, record_.Use()->Value(0x7340));
    EXPECT_EQ(0, Frame("SetupWrite", {0x73, 0x40, 0}));
}

TEST_P(IntermecLibrary, LiesInAnswersWhenTold) {
    Connect();
    {
        const auto state = record_.Use();
        state->answersInstead[0] = {static_cast<std::uint32_t>(Function::kSetupRead), 1, 1, 5000, {0x99}};
        state->answersInstead[1] = {static_cast<std::uint32_t>(Function::kStatusRead), Refusal::kAlways, 0, 0, {}};
    }
    EXPECT_EQ(0, Frame("SetupRead", {0x73, 0x4E}));
    EXPECT_EQ(5000u, answerLength_);
    EXPECT_EQ(0x99, answer_[0]);
    EXPECT_EQ(0xEE, answer_[1]);
    EXPECT_EQ(0, Frame("SetupRead", {0x73, 0x4E}));
    EXPECT_EQ(3u, answerLength_);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(0, Frame("StatusRead", {0x30, 0xC0}));
        EXPECT_EQ(0u, answerLength_);
    }
}

TEST_P(IntermecLibrary, HandsOverScansInOrder) {
    Connect();
    Listen();
    const LONGLONG before = [] {
        LARGE_INTEGER now;
        QueryPerformanceCounter(&now);
        return now.QuadPart;
    }();
    // More than the record and the library can hold at once.
    for (int i = 0; i < 300; ++i) {
        if (i >= 100) {
            ASSERT_EQ(WPARAM{100}, window_.Wait());
            ASSERT_EQ(IntermecRecord({"", "", "scan " + std::to_string(i - 100), "", "]C000"}), Drain()) << i;
        }
        ASSERT_TRUE(AddScan(record_.Shared(), IntermecScan({"", "", "scan " + std::to_string(i), "", "]C000"})));
    }
    for (int i = 200; i < 300; ++i) {
        ASSERT_EQ(WPARAM{100}, window_.Wait());
        ASSERT_EQ(IntermecRecord({"", "", "scan " + std::to_string(i), "", "]C000"}), Drain()) << i;
    }
    EXPECT_EQ("", Drain());
    EXPECT_EQ(std::nullopt, window_.Take());
    EXPECT_EQ(300u, record_.Unlocked().announcements.Count());
    EXPECT_LE(before, record_.Unlocked().announcements.At(0));
    EXPECT_LE(record_.Unlocked().announcements.At(0), record_.Unlocked().announcements.At(299));
    EXPECT_EQ(300u, record_.Use()->handedOut);
    EXPECT_EQ(0u, record_.Use()->waiting);
}

TEST_P(IntermecLibrary, WaitsForAProgramThatDoesNotFetch) {
    Connect();
    const int room = 128 + static_cast<int>(ScanInbox::kRoom);
    for (int i = 0; i < room; ++i) {
        ASSERT_TRUE(AddScan(record_.Shared(), RawIntermecScan(std::to_string(i)))) << i;
    }
    EXPECT_FALSE(AddScan(record_.Shared(), RawIntermecScan("too much"), 0));
    for (int i = 0; i < room; ++i) {
        std::string scan;
        ASSERT_TRUE(WaitUntil([&] { return !(scan = Drain()).empty(); })) << i;
        ASSERT_EQ(std::to_string(i), scan);
    }
}

TEST_P(IntermecLibrary, HasWhatWasScannedBeforeItWasConnected) {
    ASSERT_TRUE(AddScan(record_.Shared(), RawIntermecScan("early")));
    Connect();
    EXPECT_EQ("early", Drain());
    EXPECT_EQ("", Drain());
    ASSERT_TRUE(AddScan(record_.Shared(), RawIntermecScan("unlistened")));
    ASSERT_TRUE(WaitUntil([&] { return record_.Use()->waiting == 1; }));
    Listen();
    EXPECT_EQ("unlistened", Drain());
    EXPECT_EQ(0, library_.Call("Disconnect"));
    ASSERT_TRUE(AddScan(record_.Shared(), RawIntermecScan("between")));
    EXPECT_EQ(0, library_.Call("Connect"));
    EXPECT_EQ("between", Drain());
    EXPECT_EQ(std::nullopt, window_.Take());
}

TEST_P(IntermecLibrary, AnnouncesAsItIsTold) {
    Connect();
    Listen();
    ScanSlot scan = RawIntermecScan("data");
    scan.claimed = 9999;
    scan.eventType = 101;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    EXPECT_EQ(WPARAM{101}, window_.Wait());
    EXPECT_EQ(0, library_.Call("GetBarcodeDataEx", answer_.data(), std::uint32_t{2}, &answerLength_));
    EXPECT_EQ(9999u, answerLength_);
    scan = RawIntermecScan("nothing");
    scan.flags = kScanNoData;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    EXPECT_EQ(WPARAM{100}, window_.Wait());
    EXPECT_EQ("", Drain());
    scan = RawIntermecScan("silent");
    scan.flags = kScanSilent;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    scan = RawIntermecScan("last");
    scan.flags = kScanWhileDisconnecting;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    ASSERT_TRUE(WaitUntil([&] { return record_.Use()->inbox.IsEmpty(); }));
    EXPECT_EQ("silent", Drain());
    EXPECT_EQ(std::nullopt, window_.Take());
    EXPECT_EQ(0, library_.Call("Disconnect"));
    EXPECT_EQ(WPARAM{100}, window_.Take());
    EXPECT_EQ(kIntermecNotConnected,
              library_.Call("GetBarcodeDataEx", answer_.data(), std::uint32_t{4096}, &answerLength_));
}

TEST_P(IntermecLibrary, SendsBurstsNoFurtherAheadThanAsked) {
    Connect();
    Listen();
    IntermecState& record = record_.Unlocked();
    constexpr std::uint64_t kCount = 2000;
    constexpr std::uint64_t kAhead = 5;
    ASSERT_TRUE(OrderBurst(record_.Shared(), RawIntermecScan("no ......!"), kCount, kAhead, 10, 3, 6));
    EXPECT_FALSE(OrderBurst(record_.Shared(), RawIntermecScan("another"), 1, 1));
    for (std::uint64_t i = 0; i < kCount; ++i) {
        ASSERT_EQ(WPARAM{100}, window_.Wait()) << i;
        const std::string digits = std::to_string(1000000 + 10 + i).substr(1);
        ASSERT_EQ("no " + digits + "!", Drain());
        ASSERT_LE(record.burst.Sent(), i + kAhead);
        record.burst.CountHandled();
    }
    ASSERT_TRUE(WaitUntil([&] { return record.burst.Done() == 1; }));
    EXPECT_EQ(kCount, record.announcements.Count());
    // One that nobody handles ends with the connection.
    ASSERT_TRUE(OrderBurst(record_.Shared(), RawIntermecScan("more"), kCount, kAhead));
    ASSERT_TRUE(WaitUntil([&] { return record.burst.Sent() == kAhead; }));
    EXPECT_EQ(0, library_.Call("Disconnect"));
    EXPECT_TRUE(WaitUntil([&] { return record.burst.Done() == 2; }));
    EXPECT_EQ(kAhead, record.burst.Sent());
}

TEST_P(IntermecLibrary, IsHeldInACall) {
    ASSERT_EQ(0, Initialize());
    record_.Use()->hold.function = static_cast<std::uint32_t>(Function::kConnect);
    ASSERT_EQ(0, Address());
    const EngineEvent held(IntermecState::kHeldEvent);
    const EngineEvent goOn(IntermecState::kGoOnEvent);
    static const ScannerLibrary* library;
    library = &library_;
    HANDLE const thread = CreateThread(
        nullptr, 0, [](void*) -> DWORD { return library->Call("Connect"); }, nullptr, 0, nullptr);
    EXPECT_TRUE(held.Wait(kScannerDeadline));
    EXPECT_EQ(1u, record_.Use()->hold.held);
    EXPECT_EQ(0u, record_.Use()->connected);
    EXPECT_TRUE(goOn.Set());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, kScannerDeadline));
    CloseHandle(thread);
    EXPECT_EQ(GetCurrentProcessId(), record_.Use()->connected);
}

TEST_P(IntermecLibrary, LeavesNothingBehind) {
    library_.Unload();
    const auto session = [&](bool takesLeave) {
        ScannerLibrary library(GetParam());
        std::uint32_t out = 0;
        ASSERT_EQ(0, library.Call("Initialize", "HKCU\\Test", &out));
        if (IsHid()) {
            ASSERT_EQ(0, library.Call("DeviceIOControl", 260u, "path", 5u, static_cast<void*>(nullptr), 0u));
        } else {
            ASSERT_EQ(0, library.Call("ConfigurationDialog"));
        }
        ASSERT_EQ(0, library.Call("Connect"));
        ASSERT_EQ(0, library.Call("MessageIdentify", window_.Get(), 1u));
        ASSERT_TRUE(AddScan(record_.Shared(), RawIntermecScan("scan")));
        ASSERT_EQ(WPARAM{100}, window_.Wait());
        if (takesLeave) {
            ASSERT_EQ(0, library.Call("Deinitialize"));
        }
    };
    session(true);
    session(false);
    const test::ResourceCount before = test::CountResources();
    const std::size_t threads = test::CountThreads();
    for (int i = 0; i < 5; ++i) {
        session(true);
        EXPECT_EQ(nullptr, GetModuleHandleW(GetParam()));
    }
    EXPECT_EQ(before, test::CountResources());
    EXPECT_EQ(threads, test::CountThreads());
    // A program may forget to take its leave.
    for (int i = 0; i < 5; ++i) {
        session(false);
        EXPECT_EQ(nullptr, GetModuleHandleW(GetParam()));
        EXPECT_EQ(0u, record_.Use()->connected);
    }
    EXPECT_EQ(before.handles, test::CountResources().handles);
    EXPECT_EQ(threads, test::CountThreads());
}

TEST_P(IntermecLibrary, ComesInVariantsThatLackAFunction) {
    for (const std::string missing : kIntermecFunctionNames) {
        const ScannerLibrary variant(VariantPath(missing, GetParam()).c_str());
        for (const char* const name : kIntermecFunctionNames) {
            EXPECT_EQ(name != missing, variant.Has(name)) << name << " without " << missing;
        }
    }
}

std::string LibraryName(const testing::TestParamInfo<const wchar_t*>& info) {
    return std::wstring(info.param) == L"ISDC_HID.dll" ? "Hid" : "Serial";
}

INSTANTIATE_TEST_SUITE_P(Libraries, IntermecLibrary, testing::Values(L"ISDC_RS.dll", L"ISDC_HID.dll"), LibraryName);

// Before any record is opened.
class OwnInstance : public testing::Environment {
  public:
    void SetUp() override {
        SetEnvironmentVariableW(L"QLSIM_INSTANCE",
                                (L"scanner-libraries-" + std::to_wstring(GetCurrentProcessId())).c_str());
    }
};

const testing::Environment* const kOwnInstance = testing::AddGlobalTestEnvironment(new OwnInstance);

}  // namespace
}  // namespace quarlin::sim
