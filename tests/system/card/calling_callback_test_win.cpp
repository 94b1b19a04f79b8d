// SPDX-License-Identifier: Apache-2.0
// Callbacks that do more than they are asked to: throw, stop readers, take callbacks away, call while others call.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "card/card_session_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/lock_watch_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using Callbacks = std::vector<int>;

// Threads that wait for the family's lock with a swipe.
std::atomic<int> waitingSwipes = 0;

BOOL WINAPI WatchedSleep(PCONDITION_VARIABLE condition, PSRWLOCK lock, DWORD milliseconds, ULONG flags) {
    ++waitingSwipes;
    const BOOL result = SleepConditionVariableSRW(condition, lock, milliseconds, flags);
    --waitingSwipes;
    return result;
}

TEST(CardThrowingCallback, LosesNothingButItsSwipe) {
    EnabledReader enabled;
    std::atomic<int> thrown = 0;
    enabled.Log().DoFirst([&](int, const MagStripeData*) {
        switch (++thrown) {
            case 1:
                throw std::runtime_error("a callback's own");
            case 2:
                throw 5;
            default:
                break;
        }
    });
    const std::size_t threads = CountThreads();
    for (const int count : {1, 2}) {
        enabled.Reader().Swipe();
        ASSERT_TRUE(WaitUntil([&] { return thrown == count; }));
        // No lock is left taken.
        EXPECT_TRUE(IsEnabled());
    }
    const Report report = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(1).raw, report);
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_EQ(CountThreads(), threads - 1);
}

// Three callbacks, of which one does something with its first swipe.
class CardThreeCallbacks : public ::testing::Test {
  protected:
    CardThreeCallbacks() : ids_{enabled_.Callback(), AddCallback(1), AddCallback(2)} {}

    void WhenFirstCalled(int which, std::function<void()> action) {
        action_ = std::move(action);
        enabled_.Log().DoFirst([this, which](int callback, const MagStripeData*) {
            if (const auto now = callback == which ? std::exchange(action_, {}) : nullptr) {
                now();
            }
        });
    }
    // Who receives the next two swipes.
    void ExpectCalled(const Callbacks& first, const Callbacks& second) {
        enabled_.Reader().Swipe();
        enabled_.Log().AwaitCount(first.size());
        enabled_.Reader().Swipe();
        if (!second.empty()) {
            enabled_.Log().AwaitCount(first.size() + second.size());
        }
        Disable();
        Callbacks all = first;
        all.insert(all.end(), second.begin(), second.end());
        EXPECT_EQ(enabled_.Log().Callbacks(), all);
    }

    EnabledReader enabled_;
    std::array<unsigned int, 3> ids_;

  private:
    std::function<void()> action_;
};

TEST_F(CardThreeCallbacks, AreCalledAfterOneThatRemovesItself) {
    WhenFirstCalled(0, [this] { EXPECT_SUCCESS(QLMSR_RemoveCallback(ids_[0])); });
    ExpectCalled({0, 1, 2}, {1, 2});
}

TEST_F(CardThreeCallbacks, AreCalledAfterOneThatRemovesAnEarlierOne) {
    WhenFirstCalled(1, [this] { EXPECT_SUCCESS(QLMSR_RemoveCallback(ids_[0])); });
    ExpectCalled({0, 1, 2}, {1, 2});
}

TEST_F(CardThreeCallbacks, AreCalledAfterOneThatRemovesTheNextOne) {
    WhenFirstCalled(0, [this] { EXPECT_SUCCESS(QLMSR_RemoveCallback(ids_[1])); });
    ExpectCalled({0, 2}, {0, 2});
}

TEST_F(CardThreeCallbacks, AreNotCalledAfterOneThatRemovesAll) {
    WhenFirstCalled(0, [] { EXPECT_SUCCESS(QLMSR_ClearCallbacks()); });
    ExpectCalled({0}, {});
}

// A callback that switches its own reader more than once.
class CardSwitchingCallback : public ::testing::Test {
  protected:
    // Calls this in the callback of the next swipe; gives when it is through.
    void InCallback(std::function<void()> action) {
        action_ = std::move(action);
        enabled_.Log().DoFirst([this](int, const MagStripeData*) {
            if (const auto now = std::exchange(action_, {})) {
                now();
            }
        });
        const std::size_t count = enabled_.Log().Count();
        enabled_.Reader().Swipe();
        enabled_.Log().AwaitCount(count + 1);
    }
    void ExpectNextSwipeArrives() {
        const std::size_t count = enabled_.Log().Count();
        const Report report = enabled_.Reader().Swipe();
        EXPECT_EQ(enabled_.Log().AwaitCount(count + 1).raw, report);
    }

    EnabledReader enabled_;
    std::size_t threads_ = CountThreads();

  private:
    std::function<void()> action_;
};

TEST_F(CardSwitchingCallback, DisablesEnablesAndDisables) {
    InCallback([] {
        EXPECT_SUCCESS(QLMSR_Disable());
        EXPECT_SUCCESS(QLMSR_Enable());
        EXPECT_SUCCESS(QLMSR_Disable());
        EXPECT_FALSE(IsEnabled());
    });
    EXPECT_FALSE(IsEnabled());
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads_ - 1; }));
    enabled_.Reader().Swipe();
    EXPECT_SUCCESS(QLMSR_Enable());
    ExpectNextSwipeArrives();
    EXPECT_EQ(enabled_.Log().Count(), 2U);
}

TEST_F(CardSwitchingCallback, DisablesAndEnablesTwice) {
    InCallback([] {
        for (int i = 0; i < 2; ++i) {
            EXPECT_SUCCESS(QLMSR_Disable());
            EXPECT_SUCCESS(QLMSR_Enable());
        }
        EXPECT_TRUE(IsEnabled());
    });
    EXPECT_TRUE(IsEnabled());
    ExpectNextSwipeArrives();
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads_; }));
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_EQ(CountThreads(), threads_ - 1);
}

TEST_F(CardSwitchingCallback, EndsTheFamilyAndStartsItAgainAndEndsIt) {
    InCallback([] {
        EXPECT_SUCCESS(QLMSR_Uninitialize());
        EXPECT_SUCCESS(QLMSR_Initialize());
        EXPECT_EQ(ListReaders().size(), 1U);
        EXPECT_SUCCESS(QLMSR_Enable());
        EXPECT_SUCCESS(QLMSR_Uninitialize());
    });
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads_ - 1; }));
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INVALID_STATE, "No exist manager instance.");
    ASSERT_SUCCESS(QLMSR_Initialize());
    ASSERT_EQ(ListReaders().size(), 1U);
    AddCallback();
    EXPECT_SUCCESS(QLMSR_Enable());
    ExpectNextSwipeArrives();
}

// Two readers, enabled. A swipe of the first brings one of the second, which waits while the callback runs.
class CardCallbackWithTwoReaders : public ::testing::Test {
  protected:
    CardCallbackWithTwoReaders() {
        second_.Plug();
        EXPECT_EQ(ListReaders().size(), 2U);
        AddCallback();
        threads_ = CountThreads();
        for (const int index : {1, 0}) {
            Select(index);
            Enable();
        }
        EXPECT_EQ(CountThreads(), threads_ + 2);
    }

    void InCallbackOfTheFirst(std::function<void()> action) {
        action_ = std::move(action);
        log_.DoFirst([this](int, const MagStripeData*) {
            if (const auto now = std::exchange(action_, {})) {
                second_.Swipe();
                EXPECT_TRUE(WaitUntil([] { return waitingSwipes == 1; }));
                now();
            }
        });
        first_.Swipe();
        log_.AwaitCount(1);
    }

    const CardReaderTurn turn_;
    SwipeLog log_;
    TestReader first_{WithSerial("A")};
    TestReader second_{WithSerial("B"), TestReader::Start::kUnplugged};
    const CardSession session_;
    const std::size_t readers_ = ListReaders().size();
    const ImportHook hook_{"KERNEL32.dll", "SleepConditionVariableSRW", &WatchedSleep};
    std::size_t threads_ = 0;

  private:
    std::function<void()> action_;
};

TEST_F(CardCallbackWithTwoReaders, DisablesTheOtherAndItsSwipeIsDropped) {
    // Before, because every call that ends lets the waiting swipe look again.
    Select(1);
    InCallbackOfTheFirst([] {
        const ULONGLONG begin = GetTickCount64();
        EXPECT_SUCCESS(QLMSR_Disable());
        EXPECT_LT(GetTickCount64() - begin, 5000U) << "the other's thread has been waited for in vain";
        EXPECT_FALSE(IsEnabled());
    });
    EXPECT_EQ(CountThreads(), threads_ + 1);
    const Report report = first_.Swipe();
    EXPECT_EQ(log_.AwaitCount(2).raw, report);
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report second = second_.Swipe();
    EXPECT_EQ(log_.AwaitCount(3).raw, second);
    EXPECT_EQ(log_.Count(), 3U);
}

TEST_F(CardCallbackWithTwoReaders, UninitializesAndBothEnd) {
    InCallbackOfTheFirst([] { EXPECT_SUCCESS(QLMSR_Uninitialize()); });
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads_; }));
    first_.Swipe();
    second_.Swipe();
    EXPECT_FAILURE(QLMSR_Disable(), QLERR_INVALID_STATE, "No exist manager instance.");
    EXPECT_EQ(log_.Count(), 1U);
    ASSERT_SUCCESS(QLMSR_Initialize());
    EXPECT_EQ(ListReaders().size(), 2U);
}

TEST_F(CardCallbackWithTwoReaders, IsFollowedByTheSwipeThatWaited) {
    InCallbackOfTheFirst([] { EXPECT_TRUE(IsEnabled()); });
    EXPECT_EQ(log_.AwaitCount(2).raw.at(478), 'B');
    EXPECT_EQ(log_.MostAtOnce(), 1);
}

// The other thread holds or wants what the callback's call needs.
TEST(CardCallback, MayAskForExtrasWhileAnotherThreadIsInDisable) {
    const LockWatch watch;
    EnabledReader enabled;
    const UniqueHandle begun(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    bool otherWaits = false;
    MagTekExtras extras{};
    QLerr asked = QLERR_INTERNAL_ERROR;
    enabled.Log().DoFirst([&](int, const MagStripeData* record) {
        SetEvent(begun.Get());
        otherWaits = LockWatch::AwaitWaiters(1);
        asked = QLMSR_GetMagTekExtras(record, &extras);
    });
    const Report report = enabled.Reader().Swipe();
    ASSERT_EQ(WaitForSingleObject(begun.Get(), kDeadline), DWORD{WAIT_OBJECT_0});
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_TRUE(otherWaits);
    EXPECT_EQ(asked, QLERR_OK);
    EXPECT_EQ(Report(reinterpret_cast<std::uint8_t*>(&extras), reinterpret_cast<std::uint8_t*>(&extras + 1)),
              Report(report.begin() + 1, report.end()));
    EXPECT_EQ(enabled.Log().Count(), 1U);
}

// The same without a moment that is known: swipes, calls from their callbacks, and a reader that is switched.
TEST(CardCallback, MayAskForExtrasAndStateWhileItsReaderIsSwitched) {
    constexpr int kRounds = 12;
    EnabledReader enabled;
    std::atomic<int> failures = 0;
    std::atomic<bool> done = false;
    enabled.Log().DoFirst([&](int, const MagStripeData* record) {
        MagTekExtras extras{};
        bool isEnabled = false;
        failures += QLMSR_GetMagTekExtras(record, &extras) == QLERR_OK ? 0 : 1;
        failures += QLMSR_IsEnabled(&isEnabled) == QLERR_OK && isEnabled ? 0 : 1;
    });
    std::thread swipes([&] {
        while (!done) {
            enabled.Reader().Swipe();
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        EXPECT_EQ(QLMSR_Disable(), QLERR_OK);
        const std::size_t count = enabled.Log().Count();
        EXPECT_EQ(QLMSR_Enable(), QLERR_OK);
        EXPECT_TRUE(WaitUntil([&] { return enabled.Log().Count() > count; }));
    }
    done = true;
    swipes.join();
    EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace quarlin::test
