// SPDX-License-Identifier: Apache-2.0
// The emulator program takes the scanner back while it is in use.
#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <string>
#include <utility>

#include "barcode_emulator/emulator_test_win.h"
#include "support/child_process_win.h"

namespace quarlin::test {
namespace {

// What the listener window answers to a notice; on any machine.
LRESULT Notify(HWND listener) {
    return SendMessageW(listener, RegisterWindowMessageW(L"WM_NORV_BCR_EMU_ON_CONNECT_STATE"), 0, 0);
}

// A call on a thread of its own.
std::future<QLerr> Begin(std::function<QLerr()> call) {
    return std::async(std::launch::async, std::move(call));
}

class EmulatorTakeBack : public EmulatorTest {
  protected:
    void SetUp() override {
        Start();
        Borrow();
    }
    void UseNotice(EmulatorNotice notice) {
        Set([&](EmulatorSettings& settings) { settings.notice = notice; });
    }
    static void AwaitTaken() {
        Await("the scanner to be given back", [] { return BarcodeState() == 1; });
    }
    // The emulator has it, and whoever wants it has to ask.
    void ExpectTaken() {
        EXPECT_EQ(BarcodeState(), 1);
        EXPECT_FAILURE(QLBCR_StartScanning(), QLERR_INVALID_STATE, kNotEnabled);
        EXPECT_FAILURE(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR), QLERR_INVALID_STATE, kNotEnabled);
        EXPECT_FAILURE(QLBCR_SetTriggerMode(1), QLERR_INVALID_STATE, "Not connected.");
        EXPECT_FAILURE(QLBCR_Disable(), QLERR_INVALID_STATE, "The device is already disabled");
        EXPECT_EQ(Engine().Use()->connected, 0U);
    }
};

class EmulatorTakeBackBy : public EmulatorTakeBack, public ::testing::WithParamInterface<EmulatorNotice> {};

TEST_P(EmulatorTakeBackBy, EndsTheConnection) {
    UseNotice(GetParam());
    emulator_.Give(EmulatorOrder::kTakeBack);
    AwaitTaken();
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Disconnect 0"});
    ExpectTaken();
    const Texts messages = TakeMessageTexts();
    EXPECT_EQ(messages.size(), 2U);
    EXPECT_EQ(std::count(messages.begin(), messages.end(), kPolled), 1);
    EXPECT_EQ(std::count(messages.begin(), messages.end(), kNoticed), 1);
}

TEST_P(EmulatorTakeBackBy, CanBeUndone) {
    UseNotice(GetParam());
    for (int round = 0; round < 5; ++round) {
        emulator_.Give(EmulatorOrder::kTakeBack);
        AwaitTaken();
        TakeMessages();
        Engine().TakeCalls();
        EXPECT_SUCCESS(QLBCR_Enable());
        EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled}));
        EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
        // The callback is still set.
        log_.Clear();
        Scan("again", "]A0");
        EXPECT_EQ(log_.AwaitCount(1).text, "again");
    }
}

TEST_P(EmulatorTakeBackBy, EndsAStartedScanning) {
    UseNotice(GetParam());
    ASSERT_SUCCESS(QLBCR_StartScanning());
    emulator_.Give(EmulatorOrder::kTakeBack);
    AwaitTaken();
    ASSERT_SUCCESS(QLBCR_Enable());
    Engine().TakeCalls();
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
}

TEST_P(EmulatorTakeBackBy, WaitsForACallback) {
    UseNotice(GetParam());
    HeldCallback held(log_);
    Scan("long");
    held.AwaitHeld();
    const std::uint64_t order = emulator_.Put(EmulatorOrder::kTakeBack);
    // The library answers meanwhile.
    EXPECT_SUCCESS(QLBCR_SetPrefixData(1, "p"));
    EXPECT_EQ(BarcodeState(), 2);
    held.LetGo();
    emulator_.WaitForOrder(order);
    AwaitTaken();
    ExpectTaken();
}

TEST_P(EmulatorTakeBackBy, WaitsForACallInProgress) {
    UseNotice(GetParam());
    Engine().HoldNext(HoneywellFunction::kSendMenuCommand);
    std::future<QLerr> call = Begin([] { return QLBCR_SetTriggerMode(1); });
    Engine().AwaitHeld();
    const std::uint64_t order = emulator_.Put(EmulatorOrder::kTakeBack);
    ASSERT_TRUE(emulator_.WaitUntil([](const EmulatorState& state) { return state.connectState == 1; }));
    Engine().LetGo();
    EXPECT_EQ(call.get(), QLERR_OK);
    emulator_.WaitForOrder(order);
    AwaitTaken();
    EXPECT_EQ(Engine().TakeTexts(), (Texts{"SendMenuCommand TRGMOD0", "Disconnect 0"}));
    ExpectTaken();
}

TEST_P(EmulatorTakeBackBy, FindsNothingToDoWhenDisabledMeanwhile) {
    UseNotice(GetParam());
    Engine().HoldNext(HoneywellFunction::kDisconnect);
    std::future<QLerr> call = Begin([] { return QLBCR_Disable(); });
    Engine().AwaitHeld();
    const std::uint64_t order = emulator_.Put(EmulatorOrder::kTakeBack);
    ASSERT_TRUE(emulator_.WaitUntil([](const EmulatorState& state) { return state.connectState == 1; }));
    Engine().LetGo();
    EXPECT_EQ(call.get(), QLERR_OK);
    emulator_.WaitForOrder(order);
    // What the listener is sent now comes behind the notice.
    EXPECT_EQ(Notify(FindListenerWindow()), 0);
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Disconnect 0"});
    ExpectTaken();
}

TEST_P(EmulatorTakeBackBy, ComesWhileManyThreadsCall) {
    UseNotice(GetParam());
    std::atomic<bool> ending = false;
    std::array<std::future<QLerr>, 4> callers;
    for (std::size_t i = 0; i < callers.size(); ++i) {
        callers[i] = Begin([&ending, i] {
            while (!ending) {
                const QLerr result = i % 2 == 0 ? QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR) : QLBCR_Enable();
                if (result != QLERR_OK && result != QLERR_INVALID_STATE) {
                    return result;
                }
            }
            return QLERR_OK;
        });
    }
    for (int round = 0; round < 10; ++round) {
        emulator_.Give(EmulatorOrder::kTakeBack);
        Await("the scanner to be lent again",
              [&] { return emulator_.Read().connectState == sim::kEmulatorHandedOver && BarcodeState() == 2; });
    }
    ending = true;
    for (std::future<QLerr>& caller : callers) {
        EXPECT_EQ(caller.get(), QLERR_OK);
    }
}

std::string NameOfNotice(const ::testing::TestParamInfo<EmulatorNotice>& info) {
    return info.param == EmulatorNotice::kSent ? "Sent" : "Posted";
}

INSTANTIATE_TEST_SUITE_P(Notices, EmulatorTakeBackBy, ::testing::Values(EmulatorNotice::kPosted, EmulatorNotice::kSent),
                         NameOfNotice);

TEST_F(EmulatorTakeBack, DoesNotHoldUpOtherCallsWhileItAsks) {
    Set([](EmulatorSettings& settings) { settings.stateDelay = 3000; });
    emulator_.Give(EmulatorOrder::kTakeBack);
    AwaitMessages(1);
    ASSERT_EQ(TakeMessageTexts(), Texts{kNoticed});
    for (int i = 0; i < 20; ++i) {
        EXPECT_SUCCESS(QLBCR_SetTriggerMode(1));
    }
    // The answer has not come yet.
    EXPECT_EQ(TakeMessageTexts(), Texts{});
    AwaitTaken();
    EXPECT_EQ(TakeMessageTexts(), Texts{kPolled});
}

// The engine keeps the connection; the next notice tries again.
TEST_F(EmulatorTakeBack, IsTriedAgainWhenTheEngineDoesNotLetGo) {
    UseNotice(EmulatorNotice::kSent);
    Engine().Refuse(HoneywellFunction::kDisconnect, 0x8000);
    emulator_.Give(EmulatorOrder::kTakeBack);
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Disconnect 0"});
    EXPECT_EQ(BarcodeState(), 2);
    Engine().Obey();
    emulator_.Give(EmulatorOrder::kNotify);
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Disconnect 0"});
    ExpectTaken();
}

using EmulatorNoticeIgnored = EmulatorTakeBack;

TEST_F(EmulatorNoticeIgnored, ForAnotherState) {
    for (const std::uint32_t state : {0U, 2U, 3U, 4U, 0xFFFFFFFFU}) {
        emulator_.Use([&](EmulatorState& emulator) { emulator.connectState = state; });
        EXPECT_EQ(Notify(FindListenerWindow()), 0);
        EXPECT_EQ(TakeMessageTexts(), Texts{kPolled}) << state;
        EXPECT_EQ(BarcodeState(), 2) << state;
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    Scan("still here");
    EXPECT_EQ(log_.AwaitCount(1).text, "still here");
}

TEST_F(EmulatorNoticeIgnored, WhileDisabled) {
    ASSERT_SUCCESS(QLBCR_Disable());
    UseNotice(EmulatorNotice::kSent);
    Engine().TakeCalls();
    emulator_.Give(EmulatorOrder::kTakeBack);
    EXPECT_EQ(TakeMessageTexts(), Texts{kNoticed});
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(EmulatorNoticeIgnored, BeforeTheFirstEnabling) {
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    ASSERT_SUCCESS(QLBCR_Initialize());
    AwaitMessages(1);
    TakeMessages();
    Engine().TakeCalls();
    EXPECT_EQ(Notify(FindListenerWindow()), 0);
    EXPECT_EQ(TakeMessageTexts(), Texts{});
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(EmulatorNoticeIgnored, WithoutAWindowToAsk) {
    emulator_.Give(EmulatorOrder::kCloseWindow);
    EXPECT_EQ(Notify(FindListenerWindow()), 0);
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(BarcodeState(), 2);
    emulator_.Kill();
    EXPECT_EQ(Notify(FindListenerWindow()), 0);
    EXPECT_EQ(BarcodeState(), 2);
}

QUARLIN_CHILD_MODE(use_intermec_scanner) {
    ScanLog log;
    ScannerMachine machine(ScannerSetup::IntermecBuiltIn());
    if (QLBCR_Initialize() != QLERR_OK || QLBCR_Enable() != QLERR_OK) {
        return 1;
    }
    machine.Intermec().TakeCalls();
    const LRESULT answer = Notify(FindListenerWindow());
    const bool isUntouched = machine.Intermec().TakeCalls().empty() && BarcodeState() == 2;
    if (QLBCR_Disable() != QLERR_OK || QLBCR_Uninitialize() != QLERR_OK) {
        return 2;
    }
    return answer == 0 && isUntouched ? 0 : 3;
}

TEST_F(EmulatorNoticeIgnored, ForAnIntermecScanner) {
    emulator_.Use([](EmulatorState& state) { state.connectState = sim::kEmulatorTookBack; });
    EXPECT_EQ(RunChild("use_intermec_scanner").exitCode, 0U);
    // Neither registered with nor asked.
    EXPECT_EQ(TakeMessageTexts(), Texts{});
}

}  // namespace
}  // namespace quarlin::test
