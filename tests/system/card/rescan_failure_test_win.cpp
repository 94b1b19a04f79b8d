// SPDX-License-Identifier: Apache-2.0
// A look for readers that cannot enable again what it had to disable.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>

#include "card/card_session_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

// Which opening of a device from now on fails, counted from 1. A look that meets known readers alone opens none but
// those that it enables again.
std::atomic<int> openingsUntilFailure = 0;

HANDLE WINAPI FailingOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                          DWORD flags, HANDLE pattern) {
    if (openingsUntilFailure > 0 && --openingsUntilFailure == 0) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return CreateFileW(path, access, share, security, disposition, flags, pattern);
}

void ExpectScanFails(int opening) {
    openingsUntilFailure = opening;
    MagStripeReaderInfo info{};
    int count = 77;
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, "fail MSR devices scan.");
    EXPECT_EQ(openingsUntilFailure, 0);
    EXPECT_EQ(count, 77);
}

TEST(CardRescan, ThatCannotEnableAgainForgetsTheReaderAndKeepsTheCallbacks) {
    EnabledReader enabled;
    const std::size_t threads = CountThreads();
    const ImportHook hook("KERNEL32.dll", "CreateFileW", &FailingOpen);
    ExpectScanFails(1);
    EXPECT_EQ(CountThreads(), threads - 1);
    bool isEnabled = true;
    EXPECT_FAILURE(QLMSR_IsEnabled(&isEnabled), QLERR_INTERNAL_ERROR, "fail check enabled status.");
    EXPECT_FALSE(isEnabled);
    EXPECT_FAILURE(QLMSR_SelectDevice(0), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");

    ASSERT_EQ(ListReaders().size(), 1U);
    EXPECT_FALSE(IsEnabled());
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(1).raw, report);
    EXPECT_SUCCESS(QLMSR_RemoveCallback(enabled.Callback()));
}

// The first is enabled again when the second fails: both are forgotten, and the selected index stays.
TEST(CardRescan, ThatEnablesOnlyTheFirstAgainEndsThatToo) {
    const CardReaderTurn turn;
    SwipeLog log;
    const CardSession session;
    TestReader a(WithSerial("A"));
    ListReaders();
    TestReader b(WithSerial("B"));
    ASSERT_EQ(ListReaders().size(), 2U);
    AddCallback();
    const std::size_t threads = CountThreads();
    for (const int index : {0, 1}) {
        Select(index);
        Enable();
    }
    const ImportHook hook("KERNEL32.dll", "CreateFileW", &FailingOpen);
    ExpectScanFails(2);
    EXPECT_EQ(CountThreads(), threads);
    a.Swipe();
    b.Swipe();

    ASSERT_EQ(ListReaders().size(), 2U);
    EXPECT_SUCCESS(QLMSR_Enable());
    // Index 1 is selected still; which of the two has it is up to the system's list.
    const auto serials = ListSerials();
    const Report report = serials.at(1) == "B" ? b.Swipe() : a.Swipe();
    EXPECT_EQ(log.AwaitCount(1).raw, report);
    EXPECT_EQ(log.Count(), 1U);
}

TEST(CardRescan, ThatFailsAgainAndAgainLeavesNothing) {
    EnabledReader enabled;
    const ImportHook hook("KERNEL32.dll", "CreateFileW", &FailingOpen);
    const auto round = [] {
        ExpectScanFails(1);
        ASSERT_EQ(ListReaders().size(), 1U);
        ASSERT_SUCCESS(QLMSR_Enable());
    };
    round();
    CountOpenHandles();
    const std::size_t handles = CountOpenHandles();
    constexpr int kRounds = 3;
    for (int i = 0; i < kRounds; ++i) {
        round();
    }
    // What is left behind is so in each round; the system's own, such as a lock's first contention, once.
    EXPECT_LT(CountOpenHandles(), handles + kRounds);
}

}  // namespace
}  // namespace quarlin::test
