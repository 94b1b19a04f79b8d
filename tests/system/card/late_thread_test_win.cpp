// SPDX-License-Identifier: Apache-2.0
// A reader's thread that does not end in the time that disabling allows it, and comes back when its reader has a new
// one or is gone.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <set>

#include "card/card_session_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

constexpr DWORD kLongestWait = 10000;  // milliseconds that a thread gets

// Which packet the reader's thread is held up with, once.
enum class HoldUp {
    kNever,
    kWithCancel,
    kWithSwipe,
};
std::atomic<HoldUp> holdUp = HoldUp::kNever;
HANDLE heldUp;
HANDLE goesOn;

// The read that the library began last, and how many it has begun.
std::atomic<const OVERLAPPED*> lastRead = nullptr;
std::atomic<int> reads = 0;

BOOL WINAPI NotedRead(HANDLE file, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
    lastRead = overlapped;
    const BOOL result = ReadFile(file, buffer, size, read, overlapped);
    const DWORD error = GetLastError();
    ++reads;
    SetLastError(error);
    return result;
}

BOOL WINAPI HeldUpWait(HANDLE port, LPDWORD bytes, PULONG_PTR key, LPOVERLAPPED* overlapped, DWORD milliseconds) {
    const BOOL result = GetQueuedCompletionStatus(port, bytes, key, overlapped, milliseconds);
    HoldUp now = *overlapped == nullptr    ? HoldUp::kWithCancel
                 : *overlapped == lastRead ? HoldUp::kWithSwipe
                                           : HoldUp::kNever;
    if (milliseconds == INFINITE && now != HoldUp::kNever && holdUp.compare_exchange_strong(now, HoldUp::kNever)) {
        SetEvent(heldUp);
        WaitForSingleObject(goesOn, kDeadline);
    }
    return result;
}

// The first ten seconds are over as soon as the thread is held up.
std::atomic<bool> isImpatient = true;

DWORD WINAPI WaitWithoutPatience(HANDLE object, DWORD milliseconds) {
    if (milliseconds != kLongestWait || !isImpatient.exchange(false)) {
        return WaitForSingleObject(object, milliseconds);
    }
    EXPECT_EQ(WaitForSingleObject(heldUp, kDeadline), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(WaitForSingleObject(object, 0), DWORD{WAIT_TIMEOUT}) << "the thread still runs";
    return WAIT_TIMEOUT;
}

class CardLateThread : public ::testing::Test {
  protected:
    CardLateThread() {
        heldUp = heldUp_.Get();
        goesOn = goesOn_.Get();
        Enable();
        Await("the first read", [] { return reads == 1; });
        threads_ = CountThreads();
    }
    ~CardLateThread() override { LetGo(); }

    void AwaitHeldUp() const { ASSERT_EQ(WaitForSingleObject(heldUp_.Get(), kDeadline), DWORD{WAIT_OBJECT_0}); }
    void LetGo() const { SetEvent(goesOn_.Get()); }

    // The reader has a new thread, on which swipes arrive, and the late one has changed nothing about that.
    void ExpectNewThreadAlone(std::size_t swipesBefore) {
        EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads_; }));
        EXPECT_TRUE(IsEnabled());
        for (int i = 0; i < 2; ++i) {
            const Report report = enabled_.Reader().Swipe();
            EXPECT_EQ(enabled_.Log().AwaitCount(++swipesBefore).raw, report);
        }
        EXPECT_SUCCESS(QLMSR_Disable());
        EXPECT_EQ(CountThreads(), threads_ - 1);
        EXPECT_EQ(enabled_.Log().Count(), swipesBefore);
    }

    OneReader enabled_;
    std::size_t threads_ = 0;

  private:
    UniqueHandle heldUp_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    UniqueHandle goesOn_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    ImportHook read_{"KERNEL32.dll", "ReadFile", &NotedRead};
    ImportHook packets_{"KERNEL32.dll", "GetQueuedCompletionStatus", &HeldUpWait};
    ImportHook wait_{"KERNEL32.dll", "WaitForSingleObject", &WaitWithoutPatience};
};

TEST_F(CardLateThread, IsNotWaitedForLongerThanTenSeconds) {
    holdUp = HoldUp::kWithCancel;
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_FALSE(isImpatient);
    EXPECT_FALSE(IsEnabled());
    EXPECT_EQ(CountThreads(), threads_);
    enabled_.Reader().Swipe();
    LetGo();
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads_ - 1; }));
    EXPECT_FALSE(IsEnabled());
    EXPECT_EQ(enabled_.Log().Count(), 0U);
}

TEST_F(CardLateThread, LeavesTheNextOneAlone) {
    holdUp = HoldUp::kWithCancel;
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_SUCCESS(QLMSR_Enable());
    EXPECT_EQ(CountThreads(), threads_ + 1);
    const Report report = enabled_.Reader().Swipe();
    EXPECT_EQ(enabled_.Log().AwaitCount(1).raw, report);
    LetGo();
    ExpectNewThreadAlone(1);
    std::set<DWORD> threads;
    for (const LoggedSwipe& swipe : enabled_.Log().Swipes()) {
        threads.insert(swipe.thread);
    }
    EXPECT_EQ(threads.size(), 1U);
}

// The swipe that it holds is nobody's any more: its read was given up with the reader's handle.
TEST_F(CardLateThread, DropsTheSwipeThatItHolds) {
    holdUp = HoldUp::kWithSwipe;
    enabled_.Reader().Swipe();
    AwaitHeldUp();
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_FALSE(isImpatient);
    EXPECT_SUCCESS(QLMSR_Enable());
    LetGo();
    ExpectNewThreadAlone(0);
}

TEST_F(CardLateThread, OutlivesTheFamilyAndItsReader) {
    holdUp = HoldUp::kWithCancel;
    EXPECT_SUCCESS(QLMSR_Uninitialize());
    EXPECT_FALSE(isImpatient);
    EXPECT_EQ(CountThreads(), threads_);
    ASSERT_SUCCESS(QLMSR_Initialize());
    ASSERT_EQ(ListReaders().size(), 1U);
    AddCallback(1);
    EXPECT_SUCCESS(QLMSR_Enable());
    LetGo();
    ExpectNewThreadAlone(0);
}

// A look for readers stops the thread and starts a new one.
TEST_F(CardLateThread, IsLeftBehindByALookForReaders) {
    holdUp = HoldUp::kWithCancel;
    EXPECT_EQ(ListReaders().size(), 1U);
    EXPECT_FALSE(isImpatient);
    EXPECT_TRUE(IsEnabled());
    EXPECT_EQ(CountThreads(), threads_ + 1);
    LetGo();
    ExpectNewThreadAlone(0);
}

}  // namespace
}  // namespace quarlin::test
