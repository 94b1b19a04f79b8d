// SPDX-License-Identifier: Apache-2.0
// Scans that wait behind a long callback while the connection they came by ends, and another one begins.
#include <cstdint>
#include <string>
#include <thread>

#include "barcode_honeywell/honeywell_test_win.h"

namespace quarlin::test {
namespace {

class HoneywellLateScan : public EnabledHoneywell {
  protected:
    // A callback is held, with scans behind it whose messages wait in the window's queue.
    void ScanBehind(const HeldCallback& held, int scans) {
        Scan("first");
        held.AwaitHeld();
        for (int i = 0; i < scans; ++i) {
            Scan("late", "]A0");
        }
        // When the engine disconnects, nothing that it has fetched is on its way to the window any more.
        Engine().AwaitFetched();
    }
    void ExpectOnly(const Texts& texts) {
        Await("the last scan", [&] { return log_.Count() > 0 && log_.Texts().back() == texts.back(); });
        log_.AwaitQuiet();
        EXPECT_EQ(log_.Texts(), texts);
    }
};

TEST_F(HoneywellLateScan, IsNotTakenForOneOfTheNextConnection) {
    for (int round = 0; round < 5; ++round) {
        log_.Clear();
        HeldCallback held(log_);
        ScanBehind(held, 5);
        std::thread other([] {
            EXPECT_EQ(QLBCR_Disable(), QLERR_OK);
            EXPECT_EQ(QLBCR_Enable(), QLERR_OK);
        });
        other.join();
        Scan("next");
        Engine().AwaitFetched();
        held.LetGo();
        ExpectOnly({"first", "next"});
    }
}

TEST_F(HoneywellLateScan, IsNotTakenForOneOfAnyLaterConnection) {
    HeldCallback held(log_);
    ScanBehind(held, 2);
    for (int round = 0; round < 3; ++round) {
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_SUCCESS(QLBCR_Enable());
        Scan("of round " + std::to_string(round));
        Engine().AwaitFetched();
    }
    held.LetGo();
    ExpectOnly({"first", "of round 2"});
}

TEST_F(HoneywellLateScan, DoesNotEndTheScanningOfTheNextConnection) {
    HeldCallback held(log_);
    ScanBehind(held, 3);
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    held.LetGo();
    std::uint32_t wasReading = 0;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) { wasReading = Engine().Use()->reading; });
    Scan("shot");
    log_.AwaitCount(2);
    log_.AwaitQuiet();
    Engine().AwaitCalls("StopReadingSession 0 0");
    EXPECT_EQ(log_.Texts(), (Texts{"first", "shot"}));
    EXPECT_EQ(wasReading, 1U);
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StopReadingSession 0 0"});
}

TEST_F(HoneywellLateScan, IsDroppedWithUninitialize) {
    HeldCallback held(log_);
    ScanBehind(held, 3);
    EXPECT_SUCCESS(QLBCR_Disable());
    std::thread ending([] { EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK); });
    EXPECT_TRUE(WaitUntil([] { return BarcodeState() == 0; }));
    held.LetGo();
    ending.join();
    EXPECT_EQ(log_.Texts(), Texts{"first"});
    Enable();
    Scan("next");
    ExpectOnly({"first", "next"});
}

// The window's queue is new; the count of connections goes on.
TEST_F(HoneywellLateScan, LeavesTheFirstConnectionOfANewWindowAlone) {
    for (int round = 0; round < 5; ++round) {
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_SUCCESS(QLBCR_Enable());
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_SUCCESS(QLBCR_Uninitialize());
        Enable();
        log_.Clear();
        Scan("scan");
        EXPECT_EQ(log_.AwaitCount(1).text, "scan");
    }
}

}  // namespace
}  // namespace quarlin::test
