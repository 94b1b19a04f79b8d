// SPDX-License-Identifier: Apache-2.0
// The lock between swipes and the calls that end them: what it promises to those who wait for it.
#include "core/interruptible_lock_win.h"
#include "lock_worker_win.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "support/import_hook_win.h"
#include "support/owners_win.h"
#include "support/wait_win.h"

namespace quarlin::msr {
namespace {

using test::Worker;

// Waiters of the lock, watched when they go to sleep.
HANDLE wentToSleep;
std::atomic<int> sleeps;
std::atomic<int> wakesWithoutReason;

BOOL WINAPI WatchSleep(PCONDITION_VARIABLE condition, PSRWLOCK lock, DWORD milliseconds, ULONG flags) {
    if (wakesWithoutReason > 0) {
        --wakesWithoutReason;
        return TRUE;
    }
    ++sleeps;
    // Who is told takes the lock that is held here before it can wake anybody, and this thread gives it up asleep.
    ReleaseSemaphore(wentToSleep, 1, nullptr);
    return test::SystemFunction<decltype(SleepConditionVariableSRW)>("kernel32.dll", "SleepConditionVariableSRW")(
        condition, lock, milliseconds, flags);
}

class InterruptibleLockTest : public ::testing::Test {
  protected:
    InterruptibleLockTest() {
        wentToSleep = asleep_.Get();
        sleeps = 0;
        wakesWithoutReason = 0;
    }

    void AwaitSleeper() { ASSERT_EQ(WaitForSingleObject(asleep_.Get(), test::kDeadline), DWORD{WAIT_OBJECT_0}); }
    bool HasNewSleeper() { return WaitForSingleObject(asleep_.Get(), 0) == WAIT_OBJECT_0; }

    // Whether another thread could enter now.
    bool IsFree() {
        std::atomic<bool> stopping = false;
        bool entered = false;
        Worker other([&] {
            entered = lock_.EnterUnless(stopping);
            if (entered) {
                lock_.Leave();
            }
        });
        const std::array<HANDLE, 2> either = {other.Ended(), asleep_.Get()};
        WaitForMultipleObjects(2, either.data(), FALSE, test::kDeadline);
        stopping = true;
        lock_.EndWaits();
        other.Join();
        return entered;
    }

    InterruptibleLock lock_;
    const std::atomic<bool> never_ = false;

  private:
    test::UniqueHandle asleep_{CreateSemaphoreW(nullptr, 0, 1000, nullptr)};
    test::ImportHook sleep_{"KERNEL32.dll", "SleepConditionVariableSRW", &WatchSleep, GetModuleHandleW(nullptr)};
};

TEST_F(InterruptibleLockTest, IsHeldFromEnterToLeave) {
    EXPECT_TRUE(lock_.IsInitialized());
    EXPECT_TRUE(IsFree());
    lock_.Enter();
    EXPECT_FALSE(IsFree());
    lock_.Leave();
    EXPECT_TRUE(IsFree());
}

TEST_F(InterruptibleLockTest, IsEnteredAtOnceWhenFree) {
    ASSERT_TRUE(lock_.EnterUnless(never_));
    EXPECT_FALSE(HasNewSleeper());
    EXPECT_FALSE(IsFree());
    lock_.Leave();
    EXPECT_TRUE(IsFree());
}

TEST_F(InterruptibleLockTest, MayBeEnteredAgainByItsThreadEitherWay) {
    lock_.Enter();
    ASSERT_TRUE(lock_.EnterUnless(never_));
    lock_.Enter();
    EXPECT_FALSE(IsFree());
    lock_.Leave();
    EXPECT_FALSE(IsFree());
    lock_.Leave();
    EXPECT_FALSE(IsFree());
    lock_.Leave();
    EXPECT_TRUE(IsFree());
}

TEST_F(InterruptibleLockTest, IsNotEnteredByAThreadThatIsToStop) {
    const std::atomic<bool> stopping = true;
    EXPECT_FALSE(lock_.EnterUnless(stopping));
    EXPECT_TRUE(IsFree());
    lock_.Enter();
    EXPECT_FALSE(lock_.EnterUnless(stopping));
    lock_.Leave();
    EXPECT_TRUE(IsFree());
}

TEST_F(InterruptibleLockTest, GoesToAWaiterWhenItIsLeft) {
    std::atomic<bool> entered = false;
    lock_.Enter();
    Worker waiter([&] {
        entered = lock_.EnterUnless(never_);
        lock_.Leave();
    });
    AwaitSleeper();
    EXPECT_FALSE(entered);
    lock_.Leave();
    waiter.Join();
    EXPECT_TRUE(entered);
    EXPECT_TRUE(IsFree());
}

TEST_F(InterruptibleLockTest, StaysWithItsHolderWhenItIsLeftLessOftenThanEntered) {
    std::atomic<bool> entered = false;
    lock_.Enter();
    lock_.Enter();
    Worker waiter([&] {
        entered = lock_.EnterUnless(never_);
        lock_.Leave();
    });
    AwaitSleeper();
    lock_.Leave();
    // Made to look, and asleep again.
    lock_.EndWaits();
    AwaitSleeper();
    EXPECT_FALSE(entered);
    lock_.Leave();
    waiter.Join();
    EXPECT_TRUE(entered);
}

TEST_F(InterruptibleLockTest, LetsAWaiterGoThatIsToStop) {
    std::atomic<bool> stopping = false;
    bool entered = true;
    lock_.Enter();
    Worker waiter([&] { entered = lock_.EnterUnless(stopping); });
    AwaitSleeper();
    stopping = true;
    lock_.EndWaits();
    waiter.Join();
    EXPECT_FALSE(entered);
    EXPECT_FALSE(IsFree());
    lock_.Leave();
    EXPECT_TRUE(IsFree());
}

TEST_F(InterruptibleLockTest, KeepsAWaiterThatIsNotMeant) {
    std::array<std::atomic<bool>, 3> stopping{};
    std::array<bool, 3> entered{true, true, true};
    std::vector<std::unique_ptr<Worker>> waiters;
    lock_.Enter();
    for (std::size_t i = 0; i < stopping.size(); ++i) {
        waiters.push_back(std::make_unique<Worker>([&, i] {
            entered[i] = lock_.EnterUnless(stopping[i]);
            if (entered[i]) {
                lock_.Leave();
            }
        }));
        AwaitSleeper();
    }
    stopping[1] = true;
    lock_.EndWaits();
    waiters[1]->Join();
    EXPECT_FALSE(entered[1]);
    // The others looked, and sleep again.
    AwaitSleeper();
    AwaitSleeper();
    lock_.Leave();
    waiters[0]->Join();
    waiters[2]->Join();
    EXPECT_TRUE(entered[0]);
    EXPECT_TRUE(entered[2]);
}

TEST_F(InterruptibleLockTest, IsNotEnteredByAWaiterThatWakesForNoReason) {
    std::atomic<bool> stopping = false;
    bool entered = true;
    lock_.Enter();
    wakesWithoutReason = 100;
    Worker waiter([&] { entered = lock_.EnterUnless(stopping); });
    AwaitSleeper();
    EXPECT_EQ(wakesWithoutReason, 0);
    stopping = true;
    lock_.EndWaits();
    waiter.Join();
    EXPECT_FALSE(entered);
    lock_.Leave();
}

TEST_F(InterruptibleLockTest, IsHeldByItsHolders) {
    {
        const InterruptibleLockHolder outer(lock_);
        {
            const InterruptibleLockHolder inner(lock_);
            EXPECT_FALSE(IsFree());
        }
        EXPECT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
    ASSERT_TRUE(lock_.EnterUnless(never_));
    {
        const InterruptibleLockHolder adopted(lock_, std::adopt_lock);
        EXPECT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
}

BOOL WINAPI RefuseSection(LPCRITICAL_SECTION, DWORD, DWORD) {
    return FALSE;
}

TEST(InterruptibleLockWithoutASection, HoldsNobodyUp) {
    const test::ImportHook hook("KERNEL32.dll", "InitializeCriticalSectionEx", &RefuseSection,
                                GetModuleHandleW(nullptr));
    InterruptibleLock lock;
    EXPECT_FALSE(lock.IsInitialized());
    const std::atomic<bool> never = false;
    const std::atomic<bool> stopping = true;
    lock.Enter();
    bool entered = false;
    Worker([&] {
        entered = lock.EnterUnless(never);
        lock.Leave();
    }).Join();
    EXPECT_TRUE(entered);
    EXPECT_FALSE(lock.EnterUnless(stopping));
    lock.Leave();
    lock.EndWaits();
}

TEST_F(InterruptibleLockTest, LetsOneInAtATimeAndForgetsNobody) {
    constexpr int kRounds = 2000;
    constexpr int kPairs = 3;
    int counter = 0;
    const auto count = [&] {
        const int before = counter;
        // In the middle of it, so that the others find the lock held.
        SwitchToThread();
        EXPECT_EQ(counter, before);
        counter = before + 1;
    };
    {
        std::vector<std::unique_ptr<Worker>> workers;
        for (int i = 0; i < kPairs; ++i) {
            workers.push_back(std::make_unique<Worker>([&] {
                for (int round = 0; round < kRounds; ++round) {
                    const InterruptibleLockHolder held(lock_);
                    const InterruptibleLockHolder again(lock_);
                    count();
                }
            }));
            workers.push_back(std::make_unique<Worker>([&] {
                for (int round = 0; round < kRounds; ++round) {
                    ASSERT_TRUE(lock_.EnterUnless(never_));
                    const InterruptibleLockHolder held(lock_, std::adopt_lock);
                    count();
                }
            }));
        }
    }
    EXPECT_EQ(counter, 2 * kPairs * kRounds);
    EXPECT_GT(sleeps, 0);
}

}  // namespace
}  // namespace quarlin::msr
