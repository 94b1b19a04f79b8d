// SPDX-License-Identifier: Apache-2.0
// Callbacks that take long, that call the library, and what other threads may do meanwhile.
#include <array>
#include <atomic>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "barcode/intermec_test_win.h"
#include "support/import_hook_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kOff = "ControlCommand 20 40 00";

// Room for what functions write; callbacks and other threads do not share one.
struct Room {
    std::array<QLBCR_DEVICE_INFO, 1> devices{};
    int count = 1;
    unsigned int number = 0;
    unsigned int size = 128;
    unsigned char flag = 0;
    int start = 0;
    int end = 0;
    std::array<char, 128> text{};
    std::array<char, 128> other{};
};

struct Call {
    const char* name;
    std::function<QLerr(Room&)> call;
};

// Every function that leaves the device enabled.
const std::vector<Call> kCalls = {
    {"GetBarcodeDevices", [](Room& room) { return QLBCR_GetBarcodeDevices(room.devices.data(), &room.count); }},
    {"dotNet_GetNoOfDevices", [](Room& room) { return QLBCR_dotNet_GetNoOfDevices(&room.count); }},
    {"SelectDevice", [](Room&) { return QLBCR_SelectDevice(0); }},
    {"SetAllowExternalBarcodeDevice", [](Room&) { return QLBCR_SetAllowExternalBarcodeDevice(0); }},
    {"Initialize", [](Room&) { return QLBCR_Initialize(); }},
    {"IsEnabled", [](Room& room) { return QLBCR_IsEnabled(&room.number); }},
    {"GetDeviceType", [](Room& room) { return QLBCR_GetDeviceType(&room.number); }},
    {"GetDeviceName", [](Room& room) { return QLBCR_GetDeviceName(room.text.data(), &room.size); }},
    {"GetDeviceFirmwareVersion",
     [](Room& room) { return QLBCR_GetDeviceFirmwareVersion(room.text.data(), &room.size); }},
    {"SetCallback", [](Room&) { return QLBCR_SetCallback(ScanLog::Callback()); }},
    {"StartScanning", [](Room&) { return QLBCR_StartScanning(); }},
    {"StopScanning", [](Room&) { return QLBCR_StopScanning(); }},
    {"EnableSymbology", [](Room&) { return QLBCR_EnableSymbology(1, L"QR"); }},
    {"EnableSymbologies", [](Room&) { return QLBCR_EnableSymbologies(0, BARCODE_SYMBOLOGY_QR); }},
    {"SetTriggerMode", [](Room&) { return QLBCR_SetTriggerMode(1); }},
    {"SetHardwareTriggerEnabled", [](Room&) { return QLBCR_SetHardwareTriggerEnabled(1); }},
    {"IsHardwareTriggerEnabled", [](Room& room) { return QLBCR_IsHardwareTriggerEnabled(&room.flag); }},
    {"SetSoundEnabled", [](Room&) { return QLBCR_SetSoundEnabled(0); }},
    {"IsSoundEnabled", [](Room& room) { return QLBCR_IsSoundEnabled(&room.flag); }},
    {"SetReadSuccessSoundFile", [](Room&) { return QLBCR_SetReadSuccessSoundFile(L"C:\\windows"); }},
    {"SetPrefixData", [](Room&) { return QLBCR_SetPrefixData(1, "<"); }},
    {"SetSuffixData", [](Room&) { return QLBCR_SetSuffixData(1, ">"); }},
    {"GetPrefixData", [](Room& room) { return QLBCR_GetPrefixData(&room.number, room.text.data()); }},
    {"GetSuffixData", [](Room& room) { return QLBCR_GetSuffixData(&room.number, room.text.data()); }},
    {"SetDataEditingMode", [](Room&) { return QLBCR_SetDataEditingMode(1, "a", "b", 0, 0); }},
    {"GetDataEditingMode",
     [](Room& room) {
         return QLBCR_GetDataEditingMode(&room.number, room.text.data(), room.other.data(), &room.start, &room.end);
     }},
};

std::ostream& operator<<(std::ostream& out, const Call& call) {
    return out << call.name;
}

std::string NameOfCall(const ::testing::TestParamInfo<Call>& info) {
    return info.param.name;
}

// Told when the library asks its window to go: from then on it waits for the callback in progress.
HANDLE closing = nullptr;

BOOL WINAPI WatchedPost(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const BOOL posted = PostMessageW(window, message, wParam, lParam);
    if (message == WM_CLOSE) {
        SetEvent(closing);
    }
    return posted;
}

class ClosingWatch {
  public:
    ClosingWatch() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) { closing = event_.Get(); }
    ClosingWatch(const ClosingWatch&) = delete;
    ClosingWatch& operator=(const ClosingWatch&) = delete;
    ~ClosingWatch() = default;

    bool AwaitClosing() const { return WaitForSingleObject(event_.Get(), kDeadline) == WAIT_OBJECT_0; }

  private:
    UniqueHandle event_;
    ImportHook hook_{"user32.dll", "PostMessageW", &WatchedPost};
};

class IntermecCallback : public EnabledIntermec {};
class IntermecCall : public IntermecCallback, public ::testing::WithParamInterface<Call> {};

TEST_P(IntermecCall, IsAllowedInsideTheCallback) {
    QLerr result = QLERR_INTERNAL_ERROR;
    Failure record;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        Room room;
        result = GetParam().call(room);
        record = FetchLastError();
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    EXPECT_EQ(result, QLERR_OK);
    EXPECT_EQ(record, Failure{});
    log_.DoInside({});
    machine_.ScanIntermec("next");
    log_.AwaitCount(2);
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_P(IntermecCall, IsAnsweredWhileACallbackTakesItsTime) {
    HeldCallback callback(log_);
    machine_.ScanIntermec("text");
    callback.AwaitHeld();
    Room room;
    EXPECT_SUCCESS(GetParam().call(room));
    EXPECT_EQ(log_.Running(), 1);
    callback.LetGo();
    log_.AwaitQuiet();
}

INSTANTIATE_TEST_SUITE_P(Functions, IntermecCall, ::testing::ValuesIn(kCalls), NameOfCall);

TEST_F(IntermecCallback, MayNeitherDisableNorUninitialize) {
    std::vector<Failure> failures;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        for (const auto call : {&QLBCR_Disable, &QLBCR_Uninitialize}) {
            EXPECT_EQ(call(), QLERR_INVALID_STATE);
            failures.push_back(FetchLastError());
        }
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    EXPECT_EQ(failures, (std::vector<Failure>(2, Failure{QLERR_INVALID_STATE, kInsideCallback})));
    // Nor is anybody else blamed for it.
    EXPECT_EQ(FetchLastError(), Failure{});
    EXPECT_EQ(BarcodeState(), 2);
    log_.DoInside({});
    machine_.ScanIntermec("next");
    log_.AwaitCount(2);
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Uninitialize());
}

TEST_F(IntermecCallback, MayUninitializeOnceItsScanIsDelivered) {
    std::thread other;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        other = std::thread([] {
            EXPECT_EQ(QLBCR_Disable(), QLERR_OK);
            EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        });
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    other.join();
    EXPECT_EQ(BarcodeState(), 0);
}

TEST_F(IntermecCallback, IsNotWaitedForByDisable) {
    ASSERT_SUCCESS(QLBCR_StartScanning());
    HeldCallback callback(log_);
    machine_.ScanIntermec("one");
    callback.AwaitHeld();
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_EQ(log_.Running(), 1);
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(log_.Running(), 1);
    Engine().TakeCalls();
    callback.LetGo();
    log_.AwaitQuiet();
    // Its scanning ended with being disabled; decoding is not turned off in the new connection.
    machine_.ScanIntermec("two");
    EXPECT_EQ(log_.AwaitCount(2).text, "two");
    EXPECT_EQ(Engine().TakeTexts(), Texts{"GetBarcodeDataEx"});
}

TEST_F(IntermecCallback, DoesNotTurnDecodingOffInADisabledEngine) {
    ASSERT_SUCCESS(QLBCR_StartScanning());
    HeldCallback callback(log_);
    machine_.ScanIntermec("one");
    callback.AwaitHeld();
    ASSERT_SUCCESS(QLBCR_Disable());
    Engine().TakeCalls();
    callback.LetGo();
    log_.AwaitQuiet();
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Deinitialize"});
}

TEST_F(IntermecCallback, IsWaitedForByUninitialize) {
    const ClosingWatch watch;
    std::atomic<bool> ended = false;
    std::atomic<bool> hadEnded = false;
    HeldCallback callback(log_);
    machine_.ScanIntermec("text");
    callback.AwaitHeld();
    ASSERT_SUCCESS(QLBCR_Disable());
    std::thread ending([&] {
        EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        hadEnded = log_.Running() == 0;
        ended = true;
    });
    EXPECT_TRUE(watch.AwaitClosing());
    EXPECT_FALSE(ended);
    EXPECT_EQ(log_.Running(), 1);
    // To everybody else it is over.
    EXPECT_EQ(BarcodeState(), 0);
    EXPECT_FAILURE(QLBCR_Enable(), QLERR_INVALID_STATE, kNotInitialized);
    EXPECT_FAILURE(QLBCR_Disable(), QLERR_INVALID_STATE, kNotInitialized);
    callback.LetGo();
    ending.join();
    EXPECT_TRUE(hadEnded);
    EXPECT_EQ(FindListenerWindow(), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), nullptr);
}

TEST_P(IntermecCall, InsideTheCallbackDoesNotHoldUpUninitialize) {
    const ClosingWatch watch;
    std::thread ending;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        ending = std::thread([] {
            EXPECT_EQ(QLBCR_Disable(), QLERR_OK);
            EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        });
        EXPECT_TRUE(watch.AwaitClosing());
        // Whatever it answers, it answers.
        Room room;
        if (GetParam().call(room) != QLERR_OK) {
            EXPECT_EQ(FetchLastError().code, QLERR_INVALID_STATE);
        }
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    ending.join();
    EXPECT_EQ(log_.Count(), 1U);
    EXPECT_EQ(BarcodeState(), 0);
    EXPECT_EQ(FindListenerWindow(), nullptr);
    EXPECT_SUCCESS(QLBCR_Initialize());
}

TEST_F(IntermecCallback, IsRunWithoutAnyLock) {
    // The callback waits for another thread that calls the library.
    std::atomic<int> answered = 0;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        std::thread other([&] {
            for (const Call& call : kCalls) {
                Room room;
                answered += call.call(room) == QLERR_OK ? 1 : 0;
            }
        });
        other.join();
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    EXPECT_EQ(answered, static_cast<int>(kCalls.size()));
}

TEST_F(IntermecCallback, MaySetAnotherCallback) {
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { EXPECT_EQ(QLBCR_SetCallback(ScanLog::Callback(1)), QLERR_OK); });
    machine_.ScanIntermec("one");
    EXPECT_EQ(log_.AwaitCount(1).callback, 0);
    log_.AwaitQuiet();
    machine_.ScanIntermec("two");
    EXPECT_EQ(log_.AwaitCount(2).callback, 1);
}

// The settings are those of the moment when the scan was taken up.
TEST_F(IntermecCallback, KeepsItsRecordWhileOthersChangeTheSettings) {
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, "before-"));
    std::string seen;
    log_.DoInside([&](const QLBCR_BARCODE_DATA& scan) {
        std::thread other([] {
            for (int i = 0; i < 50; ++i) {
                QLBCR_SetPrefixData(1, std::string(200, 'x').c_str());
                QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR);
            }
        });
        other.join();
        seen.assign(reinterpret_cast<const char*>(scan.data), static_cast<std::size_t>(scan.dataLength));
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    EXPECT_EQ(seen, "before-text");
}

TEST_F(IntermecCallback, ThatThrowsLosesNothing) {
    log_.DoInside([](const QLBCR_BARCODE_DATA& scan) {
        if (scan.dataLength % 2 == 0) {
            throw std::runtime_error("a callback's own");
        }
        throw &scan;
    });
    const Texts texts{"one", "two!", "three", "four", "five!!"};
    for (const std::string& text : texts) {
        machine_.ScanIntermec(text);
    }
    log_.AwaitCount(texts.size());
    log_.AwaitQuiet();
    EXPECT_EQ(log_.Texts(), texts);
    EXPECT_EQ(FetchLastError(), Failure{});
    EXPECT_EQ(BarcodeState(), 2);
    EXPECT_SUCCESS(QLBCR_StartScanning());
    machine_.ScanIntermec("last");
    Engine().AwaitCalls(kOff);
}

}  // namespace
}  // namespace quarlin::test
