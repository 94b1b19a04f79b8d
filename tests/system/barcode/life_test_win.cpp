// SPDX-License-Identifier: Apache-2.0
// Initialising, enabling, disabling and uninitialising, step by step as the system and the engine see it.
#include <algorithm>
#include <array>
#include <atomic>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "barcode/intermec_test_win.h"
#include "support/loader_watch_win.h"
#include "support/thread_count_win.h"

namespace quarlin::test {
namespace {

constexpr const wchar_t* kLibrary = L"ISDC_RS.dll";

// Those that take a frame and give one.
const std::set<IntermecFunction> kFrames = {IntermecFunction::kSetupWrite, IntermecFunction::kSetupRead,
                                            IntermecFunction::kControlCommand, IntermecFunction::kStatusRead};

bool IsLoaded(const wchar_t* library) {
    return GetModuleHandleW(library) != nullptr;
}

Texts Joined(Texts first, const Texts& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class IntermecLife : public IntermecTest {
  protected:
    void Initialize() {
        ASSERT_SUCCESS(QLBCR_Initialize());
        ASSERT_EQ(Engine().TakeTexts(), kInitializeCalls);
    }
    // Enables from state 1, with the engine's data mode as it is.
    Texts EnableCalls() {
        EXPECT_SUCCESS(QLBCR_Enable());
        return Engine().TakeTexts();
    }
    Texts DisableCalls() {
        EXPECT_SUCCESS(QLBCR_Disable());
        return Engine().TakeTexts();
    }
};

TEST_F(IntermecLife, BeginsWithTheEnginesLibraryAndAHiddenWindow) {
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    ASSERT_FALSE(IsLoaded(kLibrary));
    ASSERT_EQ(FindListenerWindow(), nullptr);
    const std::size_t threads = CountThreads();
    Initialize();
    EXPECT_TRUE(IsLoaded(kLibrary));
    EXPECT_FALSE(IsLoaded(L"ISDC_HID.dll"));
    EXPECT_FALSE(IsLoaded(L"HEDC_RS.dll"));
    HWND const window = FindListenerWindow();
    ASSERT_NE(window, nullptr);
    std::array<wchar_t, 64> title{};
    GetWindowTextW(window, title.data(), static_cast<int>(title.size()));
    EXPECT_STREQ(title.data(), kListenerWindow);
    EXPECT_FALSE(IsWindowVisible(window));
    EXPECT_EQ(GetParent(window), nullptr);
    EXPECT_EQ(GetWindowLongPtrW(window, GWL_STYLE) & WS_OVERLAPPEDWINDOW, WS_OVERLAPPEDWINDOW);
    EXPECT_NE(GetWindowThreadProcessId(window, nullptr), GetCurrentThreadId());
    EXPECT_EQ(CountThreads(), threads + 1);
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(IntermecLife, LooksForEveryProcedureInOrder) {
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    Texts expected{"LoadLibrary ISDC_RS.dll"};
    std::transform(std::begin(sim::kIntermecFunctionNames), std::end(sim::kIntermecFunctionNames),
                   std::back_inserter(expected),
                   [](const char* name) { return std::string("GetProcAddress ") + name; });
    const LoaderWatch watch;
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(watch.Take(), expected);
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(watch.Take(), Texts{"FreeLibrary"});
}

TEST_F(IntermecLife, BeginsOnce) {
    Initialize();
    HWND const window = FindListenerWindow();
    const std::size_t threads = CountThreads();
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_SUCCESS(QLBCR_Enable());
    Engine().TakeCalls();
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(BarcodeState(), 2);
    EXPECT_EQ(FindListenerWindow(), window);
    EXPECT_EQ(CountThreads(), threads + 1) << "the engine's own thread alone is new";
}

TEST_F(IntermecLife, EndsWithNothingLeft) {
    const std::size_t threads = CountThreads();
    Enable();
    EXPECT_SUCCESS(QLBCR_Disable());
    Engine().TakeCalls();
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Deinitialize"});
    EXPECT_FALSE(IsLoaded(kLibrary));
    EXPECT_EQ(FindListenerWindow(), nullptr);
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads; }));
    EXPECT_EQ(BarcodeState(), 0);
    EXPECT_EQ(Engine().Use()->initialized, 0U);
    EXPECT_EQ(Engine().Use()->connected, 0U);
}

TEST_F(IntermecLife, EndsEvenIfTheEngineRefusesToStop) {
    Initialize();
    Engine().Refuse(IntermecFunction::kDeinitialize);
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_FALSE(IsLoaded(kLibrary));
    EXPECT_EQ(BarcodeState(), 0);
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Initialize());
}

TEST_F(IntermecLife, BeginsAnewAfterTheEnd) {
    for (int round = 0; round < 3; ++round) {
        Initialize();
        EXPECT_EQ(EnableCalls(), kConnectCalls);
        EXPECT_EQ(BarcodeState(), 2);
        EXPECT_EQ(DisableCalls(), kDisconnectCalls);
        EXPECT_EQ(BarcodeState(), 1);
        EXPECT_EQ(EnableCalls(), kConnectCalls);
        EXPECT_EQ(DisableCalls(), kDisconnectCalls);
        EXPECT_SUCCESS(QLBCR_Uninitialize());
        EXPECT_EQ(Engine().TakeTexts(), Texts{"Deinitialize"});
    }
}

TEST_F(IntermecLife, TellsTheEngineTheListenersWindow) {
    Initialize();
    ASSERT_SUCCESS(QLBCR_Enable());
    const auto calls = Engine().TakeCalls();
    const auto call = std::find_if(calls.begin(), calls.end(), [](const EngineCall& made) {
        return made.function == static_cast<std::uint32_t>(IntermecFunction::kMessageIdentify);
    });
    ASSERT_NE(call, calls.end());
    EXPECT_EQ(call->arguments[0], reinterpret_cast<std::intptr_t>(FindListenerWindow()));
    EXPECT_EQ(call->arguments[1], 1);
    EXPECT_EQ(Engine().Use()->window, reinterpret_cast<std::uintptr_t>(FindListenerWindow()));
}

// The answer's buffer is as large as promised, and its length begins at zero.
TEST_F(IntermecLife, GivesEveryCallItsWholeBuffer) {
    Initialize();
    ASSERT_SUCCESS(QLBCR_Enable());
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
    ASSERT_SUCCESS(QLBCR_EnableSymbologies(1, 0));
    unsigned int size = 0;
    ASSERT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(nullptr, &size));
    for (std::size_t count = 1; count <= 2; ++count) {
        machine_.ScanIntermec("text");
        log_.AwaitCount(count);
    }
    std::map<IntermecFunction, int> seen;
    for (const EngineCall& call : Engine().TakeCalls()) {
        const auto function = static_cast<IntermecFunction>(call.function);
        if (function == IntermecFunction::kGetBarcodeDataEx) {
            EXPECT_NE(call.arguments[0], 0);
            EXPECT_EQ(call.arguments[1], 4096);
        } else if (kFrames.contains(function)) {
            EXPECT_EQ(call.arguments[0], 4096);
            EXPECT_NE(call.arguments[1], 0);
        } else {
            continue;
        }
        EXPECT_NE(call.arguments[2], 0);
        EXPECT_EQ(call.arguments[3], 0) << TextOf(function, call);
        ++seen[function];
    }
    EXPECT_EQ(seen, (std::map<IntermecFunction, int>{{IntermecFunction::kSetupWrite, 2},
                                                     {IntermecFunction::kSetupRead, 1},
                                                     {IntermecFunction::kControlCommand, 1},
                                                     {IntermecFunction::kStatusRead, 1},
                                                     {IntermecFunction::kGetBarcodeDataEx, 3}}));
}

// What the engine was set to before, what is sent for it in between, and afterwards.
struct DataMode {
    std::uint8_t before;
    Texts connecting;
    Texts disconnecting;
    std::uint8_t after;
};

TEST_F(IntermecLife, RemembersTheDataModeAndPutsItBack) {
    const Texts set{"SetupWrite 73 4E 01"};
    const DataMode modes[] = {{0, set, {"SetupWrite 73 4E 00"}, 0},
                              {1, {}, {}, 1},
                              {2, set, {"SetupWrite 73 4E 02"}, 2},
                              {3, set, {"SetupWrite 73 4E 02"}, 2},
                              {255, set, {"SetupWrite 73 4E 02"}, 2}};
    Initialize();
    for (const DataMode& mode : modes) {
        Engine().Use()->Set(sim::kIntermecDataMode, mode.before);
        Texts expected = kConnectCalls;
        expected.insert(expected.end() - 1, mode.connecting.begin(), mode.connecting.end());
        EXPECT_EQ(EnableCalls(), expected) << int{mode.before};
        EXPECT_EQ(Engine().Use()->Value(sim::kIntermecDataMode), 1);
        EXPECT_EQ(Engine().Use()->Value(sim::kIntermecLink), 1);
        EXPECT_EQ(DisableCalls(), Joined(mode.disconnecting, kDisconnectCalls)) << int{mode.before};
        EXPECT_EQ(Engine().Use()->Value(sim::kIntermecDataMode), mode.after);
        EXPECT_EQ(Engine().Use()->Value(sim::kIntermecLink), 0);
    }
}

TEST_F(IntermecLife, DropsWhatTheEngineHadReadBefore) {
    Initialize();
    for (const char* const text : {"one", "two", "three"}) {
        machine_.ScanIntermecRecord(IntermecScan::Of(text).Bytes(), {}, IntermecState::kScanType, sim::kScanSilent);
    }
    Texts expected = kConnectCalls;
    expected.insert(expected.end(), 3, "GetBarcodeDataEx");
    EXPECT_EQ(EnableCalls(), expected);
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
    machine_.ScanIntermec("four");
    EXPECT_EQ(log_.AwaitCount(1).text, "four");
    EXPECT_EQ(log_.Count(), 1U);
}

TEST_F(IntermecLife, StopsDroppingWhenTheEngineRefuses) {
    Initialize();
    Engine().Refuse(IntermecFunction::kGetBarcodeDataEx);
    EXPECT_EQ(EnableCalls(), kConnectCalls);
    EXPECT_EQ(BarcodeState(), 2);
}

// Stands for an engine that always has one more.
std::atomic<int> fetches = 0;

std::uint32_t FetchOneMore(std::uint8_t* buffer, std::uint32_t /*capacity*/, std::uint32_t* length) {
    ++fetches;
    buffer[0] = 1;
    *length = 1;
    return 0;
}

FARPROC WINAPI FindWithEndlessScans(HMODULE module, const char* name) {
    return std::string_view(name) == "GetBarcodeDataEx"
               ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&FetchOneMore))
               : GetProcAddress(module, name);
}

TEST_F(IntermecLife, DoesNotDropForEver) {
    {
        const ImportHook hook("kernel32.dll", "GetProcAddress", &FindWithEndlessScans);
        Initialize();
    }
    fetches = 0;
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(BarcodeState(), 2);
    // As many as no engine keeps.
    EXPECT_EQ(fetches, 1000);
}

// The engine may know from elsewhere where it is: it is Connect that tells.
TEST_F(IntermecLife, ConnectsWhateverTheDialogAnswers) {
    Initialize();
    EXPECT_EQ(EnableCalls(), kConnectCalls);
    EXPECT_EQ(DisableCalls(), kDisconnectCalls);
    Engine().Refuse(IntermecFunction::kConfigurationDialog);
    EXPECT_EQ(EnableCalls(), kConnectCalls);
}

TEST_F(IntermecLife, KeepsCallbackAndSettingsWhileDisabled) {
    Enable();
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, "<"));
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Enable());
    machine_.ScanIntermec("text");
    EXPECT_EQ(log_.AwaitCount(1).text, "<text");
    EXPECT_SUCCESS(QLBCR_StartScanning());
}

TEST_F(IntermecLife, ForgetsTheCallbackAtTheEnd) {
    Enable();
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    ASSERT_SUCCESS(QLBCR_Initialize());
    ASSERT_SUCCESS(QLBCR_Enable());
    EXPECT_FAILURE(QLBCR_StartScanning(), QLERR_INVALID_STATE, "CallBack is not set.");
    EXPECT_FAILURE(QLBCR_StopScanning(), QLERR_INVALID_STATE, "CallBack is not set.");
    // Nobody is there to receive it.
    machine_.ScanIntermec("lost");
    Engine().AwaitCalls("GetBarcodeDataEx", 2);
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
    machine_.ScanIntermec("found");
    EXPECT_EQ(log_.AwaitCount(1).text, "found");
}

}  // namespace
}  // namespace quarlin::test
