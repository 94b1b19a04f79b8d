// SPDX-License-Identifier: Apache-2.0
#include "core/smart_critical_win.h"

#include <gtest/gtest.h>

#include <thread>
#include <type_traits>

#include "support/import_hook_win.h"

namespace quarlin {
namespace {

static_assert(std::has_virtual_destructor_v<CSmartCritical>);
static_assert(std::has_virtual_destructor_v<CSmartCriticalWrapper>);

// The system's calls on critical sections, watched.
struct Calls {
    DWORD spin;
    DWORD flags;
    int initializedEx;
    int initialized;
    int entered;
    int triedToEnter;
    int left;
    int deleted;
    bool refuse;
};
Calls calls;

template <typename Function>
Function* Real(const char* name) {
    return test::SystemFunction<Function>("kernel32.dll", name);
}

BOOL WINAPI WatchInitializeEx(LPCRITICAL_SECTION section, DWORD spin, DWORD flags) {
    calls.spin = spin;
    calls.flags = flags;
    ++calls.initializedEx;
    return calls.refuse
               ? FALSE
               : Real<decltype(InitializeCriticalSectionEx)>("InitializeCriticalSectionEx")(section, spin, flags);
}
void WINAPI WatchInitialize(LPCRITICAL_SECTION section) {
    ++calls.initialized;
    Real<decltype(InitializeCriticalSection)>("InitializeCriticalSection")(section);
}
void WINAPI WatchEnter(LPCRITICAL_SECTION section) {
    ++calls.entered;
    Real<decltype(EnterCriticalSection)>("EnterCriticalSection")(section);
}
BOOL WINAPI WatchTryEnter(LPCRITICAL_SECTION section) {
    ++calls.triedToEnter;
    return Real<decltype(TryEnterCriticalSection)>("TryEnterCriticalSection")(section);
}
void WINAPI WatchLeave(LPCRITICAL_SECTION section) {
    ++calls.left;
    Real<decltype(LeaveCriticalSection)>("LeaveCriticalSection")(section);
}
void WINAPI WatchDelete(LPCRITICAL_SECTION section) {
    ++calls.deleted;
    Real<decltype(DeleteCriticalSection)>("DeleteCriticalSection")(section);
}

class SmartCritical : public ::testing::Test {
  protected:
    SmartCritical() { calls = {}; }

  private:
    HMODULE self_ = GetModuleHandleW(nullptr);
    test::ImportHook initializeEx_{"KERNEL32.dll", "InitializeCriticalSectionEx", &WatchInitializeEx, self_};
    test::ImportHook initialize_{"KERNEL32.dll", "InitializeCriticalSection", &WatchInitialize, self_};
    test::ImportHook enter_{"KERNEL32.dll", "EnterCriticalSection", &WatchEnter, self_};
    test::ImportHook tryEnter_{"KERNEL32.dll", "TryEnterCriticalSection", &WatchTryEnter, self_};
    test::ImportHook leave_{"KERNEL32.dll", "LeaveCriticalSection", &WatchLeave, self_};
    test::ImportHook delete_{"KERNEL32.dll", "DeleteCriticalSection", &WatchDelete, self_};
};

TEST_F(SmartCritical, IsMadeWithoutDebugInformation) {
    {
        const CSmartCritical lock;
        EXPECT_TRUE(lock.IsInitialized());
        EXPECT_EQ(lock.LockCount(), 0);
        EXPECT_EQ(calls.initializedEx, 1);
        EXPECT_EQ(calls.spin, 0U);
        EXPECT_EQ(calls.flags, DWORD{CRITICAL_SECTION_NO_DEBUG_INFO});
    }
    EXPECT_EQ(calls.deleted, 1);
}

TEST_F(SmartCritical, PlainOneIsMadeWithoutFlags) {
    const CSmartCritical lock(CSmartCritical::Setup::kPlain);
    EXPECT_TRUE(lock.IsInitialized());
    EXPECT_EQ(calls.initializedEx, 1);
    EXPECT_EQ(calls.spin, 0U);
    EXPECT_EQ(calls.flags, 0U);
}

TEST_F(SmartCritical, UncheckedOneIsMadeTheOldWay) {
    const CSmartCritical lock(CSmartCritical::Setup::kUnchecked);
    EXPECT_TRUE(lock.IsInitialized());
    EXPECT_EQ(calls.initializedEx, 0);
    EXPECT_EQ(calls.initialized, 1);
}

TEST_F(SmartCritical, ThatWasRefusedIsNeitherEnteredNorDeleted) {
    for (const auto setup : {CSmartCritical::Setup::kNoDebugInfo, CSmartCritical::Setup::kPlain}) {
        calls = {};
        calls.refuse = true;
        {
            CSmartCritical lock(setup);
            EXPECT_FALSE(lock.IsInitialized());
            {
                const CSmartCriticalWrapper held(lock);
                EXPECT_EQ(lock.LockCount(), 0);
            }
            EXPECT_EQ(lock.LockCount(), 0);
            lock.Enter();
            EXPECT_TRUE(lock.TryEnter());
            EXPECT_EQ(lock.LockCount(), 0);
            { const CSmartCriticalRelease released(lock); }
            lock.Leave();
            lock.Leave();
            EXPECT_EQ(lock.LockCount(), 0);
        }
        EXPECT_EQ(calls.entered, 0);
        EXPECT_EQ(calls.triedToEnter, 0);
        EXPECT_EQ(calls.left, 0);
        EXPECT_EQ(calls.deleted, 0);
    }
}

TEST_F(SmartCritical, CountsItsWrappers) {
    CSmartCritical lock;
    {
        const CSmartCriticalWrapper outer(lock);
        EXPECT_EQ(lock.LockCount(), 1);
        {
            const CSmartCriticalWrapper inner(lock);
            EXPECT_EQ(lock.LockCount(), 2);
        }
        EXPECT_EQ(lock.LockCount(), 1);
    }
    EXPECT_EQ(lock.LockCount(), 0);
    EXPECT_EQ(calls.entered, 2);
    EXPECT_EQ(calls.left, 2);
}

TEST_F(SmartCritical, CountsEnterAndLeaveAsItsWrappers) {
    CSmartCritical lock;
    lock.Enter();
    EXPECT_EQ(lock.LockCount(), 1);
    {
        const CSmartCriticalWrapper inner(lock);
        EXPECT_EQ(lock.LockCount(), 2);
    }
    ASSERT_TRUE(lock.TryEnter());
    EXPECT_EQ(lock.LockCount(), 2);
    EXPECT_EQ(calls.entered, 2);
    EXPECT_EQ(calls.triedToEnter, 1);
    lock.Leave();
    EXPECT_EQ(lock.LockCount(), 1);
    lock.Leave();
    EXPECT_EQ(lock.LockCount(), 0);
    EXPECT_EQ(calls.left, 3);
}

// Whether another thread could enter now.
bool IsFree(CSmartCritical& lock) {
    bool entered = false;
    std::thread([&] {
        entered = lock.TryEnter();
        if (entered) {
            lock.Leave();
        }
    }).join();
    return entered;
}

TEST(SmartCriticalTryEnter, SucceedsWhenFreeAndForItsHolder) {
    CSmartCritical lock;
    EXPECT_TRUE(IsFree(lock));
    ASSERT_TRUE(lock.TryEnter());
    EXPECT_FALSE(IsFree(lock));
    ASSERT_TRUE(lock.TryEnter());
    lock.Leave();
    EXPECT_FALSE(IsFree(lock));
    lock.Leave();
    EXPECT_TRUE(IsFree(lock));
}

TEST(SmartCriticalTryEnter, OfAnotherThreadLeavesTheCountAlone) {
    CSmartCritical lock;
    lock.Enter();
    lock.Enter();
    EXPECT_FALSE(IsFree(lock));
    EXPECT_EQ(lock.LockCount(), 2);
    lock.Leave();
    EXPECT_FALSE(IsFree(lock));
    EXPECT_EQ(lock.LockCount(), 1);
    lock.Leave();
}

TEST(SmartCriticalReleaseTest, LetsGoOfEveryLevelAndTakesAsManyAgain) {
    for (const int levels : {1, 2, 5}) {
        CSmartCritical lock;
        for (int level = 0; level < levels; ++level) {
            lock.Enter();
        }
        EXPECT_FALSE(IsFree(lock));
        {
            const CSmartCriticalRelease released(lock);
            EXPECT_EQ(lock.LockCount(), 0);
            EXPECT_TRUE(IsFree(lock));
        }
        EXPECT_EQ(lock.LockCount(), levels);
        for (int level = 0; level < levels; ++level) {
            EXPECT_FALSE(IsFree(lock));
            lock.Leave();
        }
        EXPECT_TRUE(IsFree(lock));
    }
}

TEST(SmartCriticalReleaseTest, OfALockThatIsNotHeldDoesNothing) {
    CSmartCritical lock;
    {
        const CSmartCriticalRelease released(lock);
        EXPECT_TRUE(IsFree(lock));
    }
    EXPECT_EQ(lock.LockCount(), 0);
    EXPECT_TRUE(IsFree(lock));
}

// A level that is taken and left while the others are let go changes none of them.
TEST(SmartCriticalReleaseTest, MayBeFollowedByLevelsOfItsOwn) {
    CSmartCritical lock;
    const CSmartCriticalWrapper outer(lock);
    const CSmartCriticalWrapper inner(lock);
    {
        const CSmartCriticalRelease released(lock);
        {
            const CSmartCriticalWrapper held(lock);
            EXPECT_EQ(lock.LockCount(), 1);
            {
                const CSmartCriticalRelease again(lock);
                EXPECT_TRUE(IsFree(lock));
            }
            EXPECT_EQ(lock.LockCount(), 1);
            EXPECT_FALSE(IsFree(lock));
        }
        EXPECT_TRUE(IsFree(lock));
    }
    EXPECT_EQ(lock.LockCount(), 2);
    EXPECT_FALSE(IsFree(lock));
}

// Whoever waits for another thread under its own lock: the other gets in, and the lock comes back.
TEST(SmartCriticalReleaseTest, LetsTheThreadThroughThatIsWaitedFor) {
    CSmartCritical lock;
    int done = 0;
    for (int round = 0; round < 500; ++round) {
        const CSmartCriticalWrapper outer(lock);
        const CSmartCriticalWrapper inner(lock);
        std::thread other([&] {
            const CSmartCriticalWrapper held(lock);
            EXPECT_EQ(lock.LockCount(), 1);
            ++done;
        });
        EXPECT_EQ(done, round);
        {
            const CSmartCriticalRelease released(lock);
            other.join();
        }
        EXPECT_EQ(lock.LockCount(), 2);
        EXPECT_EQ(done, round + 1);
    }
}

TEST(SmartCriticalThreads, OneAtATime) {
    CSmartCritical lock;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 20000; ++i) {
            const CSmartCriticalWrapper held(lock);
            EXPECT_EQ(lock.LockCount(), 1);
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 40000);
}

}  // namespace
}  // namespace quarlin
