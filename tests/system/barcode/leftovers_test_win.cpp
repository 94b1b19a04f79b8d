// SPDX-License-Identifier: Apache-2.0
// Many rounds through all states leave the process as they found it.
#include <cstddef>

#include "barcode/intermec_test_win.h"
#include "barcode_support/process_view_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"

namespace quarlin::test {
namespace {

constexpr int kWarmUp = 40;
constexpr int kRounds = 500;

class IntermecLeftovers : public IntermecTest {
  protected:
    template <typename Round>
    void ExpectNone(int rounds, Round&& round) {
        for (int i = 0; i < kWarmUp; ++i) {
            round();
            ASSERT_FALSE(HasFatalFailure());
        }
        AwaitThreads();
        CountResources();
        const auto libraries = LoadedLibraries();
        const int windows = CountWindows();
        const std::size_t memory = WorkingSet();
        const ResourceCount resources = CountResources();
        for (int i = 0; i < rounds; ++i) {
            round();
            ASSERT_FALSE(HasFatalFailure());
        }
        AwaitThreads();
        ExpectSame(CountResources(), resources);
        EXPECT_EQ(LoadedLibraries(), libraries);
        EXPECT_EQ(CountWindows(), windows);
        // A page for each round would show; blocks and handles are counted to the last one.
        constexpr std::size_t kTolerance = 2 * 1024 * 1024;
        EXPECT_LE(WorkingSet(), memory + kTolerance);
    }

    // A round that left anything would show as hundreds.
    static void ExpectSame(const ResourceCount& after, const ResourceCount& before) {
        // A lock takes an event and its memory when a thread has to wait for it for the first time, whenever that is.
        constexpr std::size_t kOnce = 8;
        EXPECT_LE(after.handles, before.handles + kOnce) << after;
        EXPECT_LE(after.heapBlocks, before.heapBlocks + kOnce) << after;
        EXPECT_EQ(after.freeTlsSlots, before.freeTlsSlots) << after;
    }

  private:
    // The listener's thread may still be on its way out when its window is gone.
    void AwaitThreads() const {
        EXPECT_TRUE(WaitUntil([this] { return CountThreads() == threads_; }));
    }

    const std::size_t threads_ = CountThreads();
};

TEST_F(IntermecLeftovers, AreNoneAfterManyScans) {
    ExpectNone(kRounds, [this] {
        ASSERT_EQ(QLBCR_Initialize(), QLERR_OK);
        ASSERT_EQ(QLBCR_Enable(), QLERR_OK);
        ASSERT_EQ(QLBCR_SetCallback(ScanLog::Callback()), QLERR_OK);
        ASSERT_EQ(QLBCR_SetPrefixData(1, "a prefix that is longer than any small text"), QLERR_OK);
        ASSERT_EQ(QLBCR_StartScanning(), QLERR_OK);
        machine_.ScanIntermec("text", "]C000");
        log_.AwaitCount(1);
        log_.AwaitQuiet();
        ASSERT_EQ(QLBCR_Disable(), QLERR_OK);
        ASSERT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        log_.Clear();
        Engine().TakeCalls();
    });
}

TEST_F(IntermecLeftovers, AreNoneAfterManyFailures) {
    ExpectNone(100, [this] {
        Engine().Refuse(IntermecFunction::kInitialize, 1, 1);
        ASSERT_EQ(QLBCR_Initialize(), QLERR_INTERNAL_ERROR);
        ASSERT_EQ(QLBCR_Initialize(), QLERR_OK);
        Engine().Refuse(IntermecFunction::kMessageIdentify, 1, 1);
        ASSERT_EQ(QLBCR_Enable(), QLERR_INTERNAL_ERROR);
        ASSERT_EQ(QLBCR_Enable(), QLERR_OK);
        machine_.ScanIntermecRecord("bad");
        Engine().AwaitCalls("GetBarcodeDataEx", 2);
        ASSERT_EQ(QLBCR_EnableSymbologies(1, 47), QLERR_INTERNAL_ERROR);
        Engine().Refuse(IntermecFunction::kDisconnect, 1, 1);
        ASSERT_EQ(QLBCR_Disable(), QLERR_INTERNAL_ERROR);
        ASSERT_EQ(QLBCR_Disable(), QLERR_OK);
        ASSERT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        Engine().TakeCalls();
        FetchLastError();
    });
}

// Within one round: what a thread keeps would go with it.
TEST_F(IntermecLeftovers, AreNoneAfterManyThrowingCallbacks) {
    Enable();
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { throw 5; });
    const auto scan = [this](std::size_t scans) {
        for (std::size_t count = 1; count <= scans; ++count) {
            machine_.ScanIntermec("text");
            log_.AwaitCount(count);
        }
        log_.AwaitQuiet();
        log_.Clear();
    };
    constexpr std::size_t kScans = 400;
    scan(kScans);
    CountResources();
    const ResourceCount before = CountResources();
    scan(kScans);
    ExpectSame(CountResources(), before);
}

}  // namespace
}  // namespace quarlin::test
