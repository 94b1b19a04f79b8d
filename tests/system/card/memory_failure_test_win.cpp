// SPDX-License-Identifier: Apache-2.0
// Memory runs out in the middle: each allocation of a call fails once, one after the other.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "card/read_count_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

std::atomic<DWORD> failingThread = 0;
std::atomic<DWORD> sparedThread = 0;
std::atomic<int> allocations = 0;
std::atomic<int> failingAllocation = 0;

void* FailingMalloc(std::size_t size) {
    const DWORD thread = GetCurrentThreadId();
    if ((thread == failingThread || (sparedThread != 0 && thread != sparedThread)) &&
        ++allocations == failingAllocation) {
        return nullptr;
    }
    return SystemFunction<void*(std::size_t)>("msvcrt.dll", "malloc")(size);
}

// Fails the call's allocations one by one until there are no more; gives what came of it, as texts. Afterwards is
// called each time with whether the call has succeeded.
std::set<std::string> WithEachAllocationFailing(
    const std::function<QLerr()>& call, const std::function<void(bool)>& afterwards = [](bool) {}) {
    const ImportHook hook("msvcrt.dll", "malloc", &FailingMalloc);
    std::set<std::string> texts;
    for (int number = 1;; ++number) {
        failingAllocation = number;
        allocations = 0;
        failingThread = GetCurrentThreadId();
        const QLerr result = call();
        failingThread = 0;
        if (result != QLERR_OK) {
            const Failure failure = FetchLastError();
            EXPECT_EQ(result, QLERR_INTERNAL_ERROR);
            texts.insert(failure.text);
        }
        afterwards(result == QLERR_OK);
        if (allocations < number) {
            EXPECT_EQ(result, QLERR_OK);
            return texts;
        }
    }
}

using Texts = std::set<std::string>;

TEST(CardMemory, ThatIsShortFailsInitialize) {
    EXPECT_EQ(WithEachAllocationFailing(QLMSR_Initialize), (Texts{"Could not create IQlMagStripeMgr instance."}));
    EXPECT_SUCCESS(QLMSR_Uninitialize());
}

TEST(CardMemory, ThatIsShortFailsAddCallback) {
    const CardSession session;
    EXPECT_EQ(WithEachAllocationFailing([] {
                  unsigned int id = 77;
                  const QLerr result = QLMSR_AddCallback(SwipeLog::Callback(0), &id);
                  EXPECT_EQ(id == 0, result != QLERR_OK);
                  return result;
              }),
              (Texts{"Add callback failure."}));
}

// Finding a reader, which takes a while each time.
TEST(CardMemory, ThatIsShortFailsTheScanOrTheList) {
    const CardReaderTurn turn;
    const CardSession session;
    const TestReader reader;
    std::set<int> counts;
    const Texts texts = WithEachAllocationFailing([&] {
        // Without memory for the reader's path it is not found, and forgotten if it was known.
        MagStripeReaderInfo info{};
        int count = 1;
        const QLerr result = QLMSR_GetMagStripeDevices(&info, &count);
        if (result == QLERR_OK) {
            counts.insert(count);
        }
        return result;
    });
    EXPECT_EQ(texts, (Texts{"fail MSR devices scan.", "memory allocate error."}));
    EXPECT_EQ(counts, (std::set<int>{0, 1}));
    EXPECT_EQ(ListReaders().size(), 1U);
}

TEST(CardMemory, ThatIsShortFailsEnable) {
    OneReader one;
    const Texts texts =
        WithEachAllocationFailing(QLMSR_Enable, [](bool succeeded) { EXPECT_EQ(IsEnabled(), succeeded); });
    EXPECT_EQ(texts, (Texts{"fail device enabled."}));
    const Report report = one.Reader().Swipe();
    EXPECT_EQ(one.Log().AwaitCount(1).raw, report);
}

// Each allocation of the reading thread fails once. A swipe without memory is lost; a read without memory ends the
// reading as if the reader were gone.
TEST(CardMemory, ThatIsShortOnTheReadersThreadLosesASwipeAndNothingElse) {
    OneReader one;
    const ImportHook hook("msvcrt.dll", "malloc", &FailingMalloc);
    const ReadCount reads;
    sparedThread = GetCurrentThreadId();
    int lost = 0;
    int stuck = 0;
    for (int number = 1; number <= 24; ++number) {
        failingAllocation = number;
        allocations = 0;
        const int readsBefore = reads.Reads();
        const std::size_t before = one.Log().Count();
        ASSERT_SUCCESS(QLMSR_Enable());
        const bool canRead = WaitUntil([&] { return reads.Reads() > readsBefore || !IsEnabled(); });
        ASSERT_TRUE(canRead);
        if (IsEnabled()) {
            one.Reader().Swipe();
            ASSERT_TRUE(WaitUntil([&] { return reads.Reads() > readsBefore + 1 || !IsEnabled(); }));
            lost += one.Log().Count() == before ? 1 : 0;
        }
        stuck += IsEnabled() ? 0 : 1;
        ASSERT_SUCCESS(QLMSR_Disable());
        if (allocations < number) {
            break;
        }
        ASSERT_LT(number, 24) << "more allocations than there should be";
    }
    sparedThread = 0;
    EXPECT_GE(lost, 1);
    EXPECT_GE(stuck, 1);
}

}  // namespace
}  // namespace quarlin::test
