// SPDX-License-Identifier: Apache-2.0
// Scans that arrive while the device is being disabled, enabled or uninitialised.
#include <atomic>
#include <string>
#include <thread>

#include "barcode/intermec_test_win.h"
#include "support/lock_watch_win.h"

namespace quarlin::test {
namespace {

class IntermecLateScan : public EnabledIntermec {
  protected:
    void ScanWhileDisconnecting(const char* text) {
        machine_.ScanIntermecRecord(IntermecScan::Of(text).Bytes(), {}, IntermecState::kScanType,
                                    sim::kScanWhileDisconnecting);
        Engine().AwaitFetched();
    }
};

// The engine announces it from inside Disconnect: it comes too late, or just in time, but it does no harm.
TEST_F(IntermecLateScan, WhileDisablingIsDroppedOrDelivered) {
    for (int round = 0; round < 20; ++round) {
        log_.Clear();
        ScanWhileDisconnecting("late");
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_EQ(BarcodeState(), 1);
        EXPECT_SUCCESS(QLBCR_Enable());
        machine_.ScanIntermec("next");
        Await("the next scan", [&] {
            const Texts texts = log_.Texts();
            return !texts.empty() && texts.back() == "next";
        });
        EXPECT_TRUE(log_.Texts() == Texts{"next"} || log_.Texts() == (Texts{"late", "next"}));
    }
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST_F(IntermecLateScan, WhileDisablingDoesNotOutliveUninitializing) {
    for (int round = 0; round < 20; ++round) {
        ScanWhileDisconnecting("late");
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_SUCCESS(QLBCR_Uninitialize());
        EXPECT_EQ(log_.Running(), 0);
        const std::size_t count = log_.Count();
        EXPECT_EQ(FindListenerWindow(), nullptr);
        Enable();
        EXPECT_EQ(log_.Count(), count);
    }
}

// Its message waits behind a long callback while the device goes and comes back.
TEST_F(IntermecLateScan, BehindALongCallbackIsNotTakenForOneOfTheNextConnection) {
    HeldCallback callback(log_);
    machine_.ScanIntermec("one");
    callback.AwaitHeld();
    machine_.ScanIntermec("two");
    Engine().AwaitFetched();
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Enable());
    callback.LetGo();
    machine_.ScanIntermec("three");
    Await("the third scan", [&] {
        const Texts texts = log_.Texts();
        return !texts.empty() && texts.back() == "three";
    });
    EXPECT_EQ(log_.Texts(), (Texts{"one", "three"})) << "what came before was dropped with connecting";
}

TEST_F(IntermecLateScan, BehindALongCallbackIsDroppedByUninitialize) {
    HeldCallback callback(log_);
    machine_.ScanIntermec("one");
    callback.AwaitHeld();
    machine_.ScanIntermec("two");
    Engine().AwaitFetched();
    EXPECT_SUCCESS(QLBCR_Disable());
    std::thread ending([] { EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK); });
    EXPECT_TRUE(WaitUntil([] { return BarcodeState() == 0; }));
    callback.LetGo();
    ending.join();
    EXPECT_EQ(log_.Texts(), Texts{"one"});
}

// While the listener is inside the engine's library.
TEST_F(IntermecLateScan, ThatIsBeingFetchedHoldsUpDisable) {
    Engine().HoldNext(IntermecFunction::kGetBarcodeDataEx);
    machine_.ScanIntermec("text");
    Engine().AwaitHeld();
    {
        const LockWatch watch;
        std::thread disabling([] { EXPECT_EQ(QLBCR_Disable(), QLERR_OK); });
        // The engine is used by one thread at a time.
        EXPECT_TRUE(watch.AwaitWaiters(1));
        Engine().LetGo();
        disabling.join();
    }
    EXPECT_EQ(log_.AwaitCount(1).text, "text");
    const Texts calls = Engine().TakeTexts();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.front(), "GetBarcodeDataEx");
    EXPECT_EQ(BarcodeState(), 1);
}

// Announced while the engine disconnects: there is nothing left to fetch it from.
TEST_F(IntermecLateScan, ThatIsAnnouncedDuringDisableIsNotFetchedAnyMore) {
    Engine().HoldNext(IntermecFunction::kDisconnect);
    std::thread disabling([] { EXPECT_EQ(QLBCR_Disable(), QLERR_OK); });
    Engine().AwaitHeld();
    {
        const LockWatch watch;
        PostMessageW(FindListenerWindow(), RegisterWindowMessageW(L"WM_ISCP_FRAME"), IntermecState::kScanType, 0);
        EXPECT_TRUE(watch.AwaitWaiters(1));
        Engine().LetGo();
        disabling.join();
        // The listener handles one message after the other.
        SendMessageTimeoutW(FindListenerWindow(), WM_NULL, 0, 0, SMTO_NORMAL, kDeadline, nullptr);
    }
    EXPECT_EQ(Engine().TakeTexts(), kDisconnectCalls);
    EXPECT_EQ(log_.Count(), 0U);
}

// A thread that scans all the time, while another goes through the states.
TEST_F(IntermecLateScan, ComesAtAnyTime) {
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    std::atomic<bool> done = false;
    std::atomic<int> shown = 0;
    std::thread scanning([&] {
        while (!done) {
            if (Engine().Use()->inbox.IsEmpty()) {
                machine_.ScanIntermec(std::to_string(++shown));
            }
            SwitchToThread();
        }
    });
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(QLBCR_Initialize(), QLERR_OK);
        ASSERT_EQ(QLBCR_Enable(), QLERR_OK);
        ASSERT_EQ(QLBCR_SetCallback(ScanLog::Callback()), QLERR_OK);
        const std::size_t before = log_.Count();
        if (round % 2 == 0) {
            log_.AwaitCount(before + 1);
        }
        ASSERT_EQ(QLBCR_Disable(), QLERR_OK);
        ASSERT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        ASSERT_EQ(log_.Running(), 0);
    }
    done = true;
    scanning.join();
    // None came twice, and none overtook another.
    int last = 0;
    for (const std::string& text : log_.Texts()) {
        EXPECT_GT(std::stoi(text), last);
        last = std::stoi(text);
    }
    EXPECT_GE(log_.Count(), 50U);
}

}  // namespace
}  // namespace quarlin::test
