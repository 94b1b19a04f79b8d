// SPDX-License-Identifier: Apache-2.0
// The moments at which a notice of the manager's lock could get lost.
#include "core/interruptible_lock_win.h"
#include "lock_worker_win.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <mutex>

#include "support/import_hook_win.h"
#include "support/owners_win.h"
#include "support/rendezvous.h"
#include "support/wait_win.h"

namespace quarlin::msr {
namespace {

using test::Worker;

// A waiter that is held up between a try that has failed and what it does next, and the one who acts meanwhile.
int heldUpAtTry;
std::atomic<int> failedTries;
HANDLE waiterIsHeldUp;
HANDLE waiterGoesOn;
DWORD actor;

BOOL WINAPI HoldUpAfterTry(LPCRITICAL_SECTION section) {
    const BOOL entered =
        test::SystemFunction<decltype(TryEnterCriticalSection)>("kernel32.dll", "TryEnterCriticalSection")(section);
    if (!entered && ++failedTries == heldUpAtTry) {
        SetEvent(waiterIsHeldUp);
        WaitForSingleObject(waiterGoesOn, test::kDeadline);
    }
    return entered;
}

// Who acts has done all that it can when it comes to the waiter's own lock.
void WINAPI GoOnAtNoticeLock(PSRWLOCK lock) {
    if (GetCurrentThreadId() == actor) {
        SetEvent(waiterGoesOn);
    }
    test::SystemFunction<decltype(AcquireSRWLockExclusive)>("kernel32.dll", "AcquireSRWLockExclusive")(lock);
}

class InterruptibleLockMoment : public ::testing::TestWithParam<int> {
  protected:
    InterruptibleLockMoment() {
        heldUpAtTry = GetParam();
        failedTries = 0;
        waiterIsHeldUp = heldUp_.Get();
        waiterGoesOn = goesOn_.Get();
        actor = GetCurrentThreadId();
    }

    // What becomes of a waiter when this is done right after its try.
    template <typename Action>
    bool EntersWhen(Action action) {
        bool entered = false;
        lock_.Enter();
        ResetEvent(goesOn_.Get());
        Worker waiter([&] {
            entered = lock_.EnterUnless(stopping_);
            if (entered) {
                lock_.Leave();
            }
        });
        EXPECT_EQ(WaitForSingleObject(heldUp_.Get(), test::kDeadline), DWORD{WAIT_OBJECT_0});
        action();
        SetEvent(goesOn_.Get());
        waiter.Join();
        return entered;
    }

    InterruptibleLock lock_;
    std::atomic<bool> stopping_ = false;

  private:
    test::UniqueHandle heldUp_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    test::UniqueHandle goesOn_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    test::ImportHook try_{"KERNEL32.dll", "TryEnterCriticalSection", &HoldUpAfterTry, GetModuleHandleW(nullptr)};
    test::ImportHook noticeLock_{"KERNEL32.dll", "AcquireSRWLockExclusive", &GoOnAtNoticeLock,
                                 GetModuleHandleW(nullptr)};
};

TEST_P(InterruptibleLockMoment, OfAFailedTryMissesNoLeave) {
    EXPECT_TRUE(EntersWhen([&] { lock_.Leave(); }));
}

TEST_P(InterruptibleLockMoment, OfAFailedTryMissesNoStop) {
    EXPECT_FALSE(EntersWhen([&] {
        stopping_ = true;
        lock_.EndWaits();
    }));
    lock_.Leave();
}

INSTANTIATE_TEST_SUITE_P(Tries, InterruptibleLockMoment, ::testing::Values(1, 2),
                         [](const auto& test) { return test.param == 1 ? "First" : "BeforeSleep"; });

// Turns of the processor, so that what two threads do meets at ever other places.
void Idle(int turns) {
    volatile int left = turns;
    while (left > 0) {
        left = left - 1;
    }
}

// The same moment for the waiter's look and for what ends its wait, thousands of times.
TEST(InterruptibleLockThreads, NeitherLeaveNorStopIsMissed) {
    constexpr int kRounds = 3000;
    InterruptibleLock lock;
    test::Rendezvous start(2);
    test::Rendezvous end(2);
    std::atomic<bool> stopping = false;
    bool entered = false;
    Worker waiter([&] {
        for (int round = 0; round < kRounds; ++round) {
            start.Arrive();
            entered = lock.EnterUnless(stopping);
            if (entered) {
                lock.Leave();
            }
            end.Arrive();
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        stopping = false;
        lock.Enter();
        start.Arrive();
        Idle(round % 50);
        const bool stop = round % 3 != 0;
        const bool leave = round % 3 != 1;
        if (stop) {
            stopping = true;
            lock.EndWaits();
        }
        if (leave) {
            lock.Leave();
        }
        end.Arrive();
        // Both at once may end either way, but must end.
        if (!stop) {
            EXPECT_TRUE(entered) << round;
        }
        if (!leave) {
            EXPECT_FALSE(entered) << round;
            lock.Leave();
        }
    }
    waiter.Join();
}

// What stopping a reader is: its holder waits for the end of a thread that wants the lock all the time.
TEST(InterruptibleLockThreads, HolderMayWaitForTheEndOfAThreadThatItStops) {
    InterruptibleLock lock;
    int swipes = 0;
    for (int round = 0; round < 300; ++round) {
        std::atomic<bool> stopping = false;
        const test::UniqueHandle running(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        Worker reader([&] {
            SetEvent(running.Get());
            while (lock.EnterUnless(stopping)) {
                const InterruptibleLockHolder held(lock, std::adopt_lock);
                ++swipes;
            }
        });
        ASSERT_EQ(WaitForSingleObject(running.Get(), test::kDeadline), DWORD{WAIT_OBJECT_0});
        const InterruptibleLockHolder held(lock);
        stopping = true;
        lock.EndWaits();
        const int before = swipes;
        reader.Join();
        EXPECT_EQ(swipes, before);
    }
}

}  // namespace
}  // namespace quarlin::msr
