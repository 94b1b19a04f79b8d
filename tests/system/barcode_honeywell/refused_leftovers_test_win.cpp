// SPDX-License-Identifier: Apache-2.0
// Calls that are refused inside a callback leave their record on the listener's thread, which nobody asks for it: it
// goes with the thread.
#include <functional>
#include <ostream>
#include <string>

#include "barcode_honeywell/honeywell_test_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"

namespace quarlin::test {
namespace {

struct Refused {
    const char* name;
    std::function<QLerr()> call;
    QLerr code;
};

std::ostream& operator<<(std::ostream& out, const Refused& refused) {
    return out << refused.name;
}

std::string NameOfRefused(const ::testing::TestParamInfo<Refused>& info) {
    return info.param.name;
}

class HoneywellRefused : public HoneywellTest, public ::testing::WithParamInterface<Refused> {
  protected:
    // A session with one scan, in whose callback the call is refused.
    void Round() {
        log_.Clear();
        QLerr result = QLERR_OK;
        log_.DoInside([&](const QLBCR_BARCODE_DATA&) { result = GetParam().call(); });
        ASSERT_EQ(QLBCR_Initialize(), QLERR_OK);
        ASSERT_EQ(QLBCR_Enable(), QLERR_OK);
        ASSERT_EQ(QLBCR_SetCallback(ScanLog::Callback()), QLERR_OK);
        Scan("text", "]A0");
        log_.AwaitCount(1);
        log_.AwaitQuiet();
        log_.DoInside({});
        ASSERT_EQ(result, GetParam().code);
        ASSERT_EQ(QLBCR_Disable(), QLERR_OK);
        ASSERT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        ASSERT_EQ(FetchLastError(), Failure{});
        log_.Clear();
        Engine().TakeCalls();
    }
    void Rounds(int count) {
        for (int i = 0; i < count && !HasFatalFailure(); ++i) {
            Round();
        }
        // The last of a listener's thread may still be there.
        EXPECT_TRUE(WaitUntil([this] { return CountThreads() <= threads_; }));
    }

  private:
    const std::size_t threads_ = CountThreads();
};

TEST_P(HoneywellRefused, LeavesNothingBehind) {
    // A block or a slot for each round would show.
    constexpr int kRounds = 40;
    constexpr std::size_t kOnce = 8;
    Rounds(20);
    CountResources();
    const ResourceCount before = CountResources();
    Rounds(kRounds);
    const ResourceCount after = CountResources();
    EXPECT_LE(after.heapBlocks, before.heapBlocks + kOnce) << before << ", then " << after;
    EXPECT_LE(after.handles, before.handles + kOnce) << before << ", then " << after;
    EXPECT_EQ(after.freeTlsSlots, before.freeTlsSlots);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, HoneywellRefused,
    ::testing::Values(Refused{"Disable", [] { return QLBCR_Disable(); }, QLERR_INVALID_STATE},
                      Refused{"Uninitialize", [] { return QLBCR_Uninitialize(); }, QLERR_INVALID_STATE},
                      Refused{"Enable", [] { return QLBCR_Enable(); }, QLERR_INVALID_STATE},
                      Refused{"IsEnabled", [] { return QLBCR_IsEnabled(nullptr); }, QLERR_INVALID_ARGUMENT}),
    NameOfRefused);

}  // namespace
}  // namespace quarlin::test
