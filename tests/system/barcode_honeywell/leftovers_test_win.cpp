// SPDX-License-Identifier: Apache-2.0
// Many rounds through all states leave the process as they found it.
#include <cstddef>

#include "barcode_honeywell/honeywell_test_win.h"
#include "barcode_support/process_view_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"

namespace quarlin::test {
namespace {

constexpr int kWarmUp = 50;
constexpr int kRounds = 500;

class HoneywellLeftovers : public HoneywellTest {
  protected:
    template <typename Round>
    void ExpectNone(Round&& round) {
        for (int i = 0; i < kWarmUp; ++i) {
            round();
            ASSERT_FALSE(HasFatalFailure());
        }
        const std::size_t threads = CountThreads();
        CountResources();
        const auto libraries = LoadedLibraries();
        const int windows = CountWindows();
        const std::size_t memory = WorkingSet();
        const ResourceCount before = CountResources();
        for (int i = 0; i < kRounds; ++i) {
            round();
            ASSERT_FALSE(HasFatalFailure());
        }
        // The last of a listener's thread may still be there.
        EXPECT_TRUE(WaitUntil([&] { return CountThreads() <= threads; }));
        const ResourceCount after = CountResources();
        // A lock takes an event and its memory when a thread has to wait for it for the first time, whenever that is.
        constexpr std::size_t kOnce = 8;
        EXPECT_LE(after.handles, before.handles + kOnce);
        EXPECT_LE(after.heapBlocks, before.heapBlocks + kOnce);
        EXPECT_EQ(after.freeTlsSlots, before.freeTlsSlots);
        EXPECT_EQ(LoadedLibraries(), libraries);
        EXPECT_EQ(CountWindows(), windows);
        // A page for each round would show; blocks and handles are counted to the last one.
        constexpr std::size_t kTolerance = 2 * 1024 * 1024;
        EXPECT_LE(WorkingSet(), memory + kTolerance);
        EXPECT_EQ(GetModuleHandleW(kHoneywellLibrary), nullptr);
        EXPECT_EQ(FindListenerWindow(), nullptr);
    }
};

TEST_F(HoneywellLeftovers, AreNoneOfManySessions) {
    ExpectNone([this] {
        ASSERT_EQ(QLBCR_Initialize(), QLERR_OK);
        ASSERT_EQ(QLBCR_Enable(), QLERR_OK);
        ASSERT_EQ(QLBCR_SetCallback(ScanLog::Callback()), QLERR_OK);
        log_.Clear();
        ASSERT_EQ(QLBCR_StartScanning(), QLERR_OK);
        Scan("4006381333931", "]E0");
        log_.AwaitCount(1);
        ASSERT_EQ(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_EAN_ISSN), QLERR_OK);
        ASSERT_EQ(QLBCR_Disable(), QLERR_OK);
        ASSERT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        Engine().TakeCalls();
    });
}

TEST_F(HoneywellLeftovers, AreNoneOfManyFailures) {
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    Engine().Refuse(HoneywellFunction::kInitialize, 1);
    ExpectNone([this] {
        ASSERT_EQ(QLBCR_Initialize(), QLERR_INTERNAL_ERROR);
        ASSERT_EQ(FetchLastError().code, QLERR_INTERNAL_ERROR);
        Engine().TakeCalls();
    });
}

}  // namespace
}  // namespace quarlin::test
