// SPDX-License-Identifier: Apache-2.0
// Who receives a swipe, in which order, and callbacks that call the library themselves.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <atomic>
#include <functional>
#include <set>
#include <vector>

#include "card/card_session_win.h"
#include "card/read_count_win.h"
#include "support/last_error.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using Callbacks = std::vector<int>;

TEST(CardCallbacks, AreCalledInTheOrderOfTheirAddition) {
    EnabledReader enabled;
    const unsigned int second = AddCallback(2);
    AddCallback(1);
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(3);
    EXPECT_EQ(enabled.Log().Callbacks(), (Callbacks{0, 2, 1}));
    EXPECT_SUCCESS(QLMSR_RemoveCallback(second));
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(5);
    AddCallback(2);
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(8);
    EXPECT_EQ(enabled.Log().Callbacks(), (Callbacks{0, 2, 1, 0, 1, 0, 1, 2}));
}

TEST(CardCallbacks, ThatAreAddedTwiceAreCalledTwiceAndRemovedOneByOne) {
    EnabledReader enabled;
    const unsigned int again = AddCallback(0);
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(2);
    EXPECT_SUCCESS(QLMSR_RemoveCallback(again));
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(3);
    EXPECT_SUCCESS(QLMSR_RemoveCallback(enabled.Callback()));
    EXPECT_FAILURE(QLMSR_RemoveCallback(again), QLERR_INVALID_ARGUMENT,
                   "Fail remove callback.Check parameter and usage.");
    Disable();
    EXPECT_EQ(enabled.Log().Count(), 3U);
}

TEST(CardCallbacks, StayWhenAnUnknownOneIsRemoved) {
    EnabledReader enabled;
    AddCallback(1);
    EXPECT_FAILURE(QLMSR_RemoveCallback(77), QLERR_INVALID_ARGUMENT, "Fail remove callback.Check parameter and usage.");
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(2);
    EXPECT_EQ(enabled.Log().Callbacks(), (Callbacks{0, 1}));
}

TEST(CardSwipe, WithoutCallbacksIsDropped) {
    const ReadCount reads;
    EnabledReader enabled;
    ASSERT_SUCCESS(QLMSR_ClearCallbacks());
    enabled.Reader().Swipe();
    reads.AwaitReads(2);
    AddCallback(1);
    const Report second = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(1).raw, second);
    EXPECT_EQ(enabled.Log().Count(), 1U);
}

TEST(CardSwipe, OfADisabledReaderIsDropped) {
    EnabledReader enabled;
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(1);
    Disable();
    enabled.Reader().Swipe();
    Enable();
    const Report third = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(2).raw, third);
}

TEST(CardSwipe, OfEveryEnabledReaderReachesAllCallbacksOnAThreadOfTheReader) {
    const CardReaderTurn turn;
    SwipeLog log;
    const CardSession session;
    std::array<TestReader, 2> readers;
    ASSERT_EQ(ListReaders().size(), 2U);
    AddCallback(0);
    AddCallback(1);
    for (const int index : {0, 1}) {
        Select(index);
        Enable();
    }
    std::size_t count = 0;
    for (int round = 0; round < 3; ++round) {
        for (TestReader& reader : readers) {
            const Report report = reader.Swipe();
            count += 2;
            EXPECT_EQ(log.AwaitCount(count).raw, report);
        }
    }
    std::array<std::set<DWORD>, 2> threads;
    const std::vector<LoggedSwipe> swipes = log.Swipes();
    for (std::size_t i = 0; i < swipes.size(); ++i) {
        EXPECT_EQ(swipes[i].callback, static_cast<int>(i % 2));
        threads[i / 2 % 2].insert(swipes[i].thread);
    }
    EXPECT_EQ(threads[0].size(), 1U);
    EXPECT_EQ(threads[1].size(), 1U);
    EXPECT_NE(threads[0], threads[1]);
    EXPECT_FALSE(threads[0].contains(GetCurrentThreadId()));
}

// Each callback gets a record of its own: what one does to its fields is nothing to the next.
TEST(CardSwipe, ThatACallbackSpoilsIsWholeForTheNext) {
    EnabledReader enabled;
    AddCallback(1);
    std::vector<const MagStripeData*> records;
    std::vector<std::uint64_t> lengths;
    enabled.Log().DoFirst([&](int, const MagStripeData* record) {
        records.push_back(record);
        lengths.push_back(record->rawLength);
        auto* const spoiled = const_cast<MagStripeData*>(record);
        *spoiled = {};
    });
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(2);
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(4);
    EXPECT_EQ(lengths, (std::vector<std::uint64_t>(4, 888)));
}

// The first callback removes the second, and adds another one.
TEST(CardCallbacks, MayComeAndGoWhileASwipeIsDelivered) {
    EnabledReader enabled;
    const unsigned int second = AddCallback(1);
    AddCallback(2);
    bool done = false;
    enabled.Log().DoFirst([&](int callback, const MagStripeData*) {
        if (callback == 0 && !done) {
            done = true;
            EXPECT_EQ(QLMSR_RemoveCallback(second), QLERR_OK);
            AddCallback(3);
        }
    });
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(2);
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(5);
    EXPECT_EQ(enabled.Log().Callbacks(), (Callbacks{0, 2, 0, 2, 3}));
}

// A callback that calls the library while nobody else does.
class CardCallingCallback : public ::testing::Test {
  protected:
    CardCallingCallback() {
        enabled_.Log().DoFirst([this](int, const MagStripeData*) {
            if (const auto action = std::exchange(action_, {})) {
                action();
            }
        });
    }

    // Runs the action in a callback; gives when the callback has ended.
    void InCallback(std::function<void()> action) {
        action_ = std::move(action);
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

  private:
    std::function<void()> action_;
};

TEST_F(CardCallingCallback, AsksForTheStateAndTheReaders) {
    InCallback([] {
        EXPECT_TRUE(IsEnabled());
        EXPECT_SUCCESS(QLMSR_SelectDevice(-1));
        EXPECT_SUCCESS(QLMSR_SelectDevice(0));
        EXPECT_FAILURE(QLMSR_SelectDevice(1), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    });
    ExpectNextSwipeArrives();
}

TEST_F(CardCallingCallback, LooksForReaders) {
    InCallback([] {
        EXPECT_EQ(ListReaders().size(), 1U);
        EXPECT_TRUE(IsEnabled());
    });
    ExpectNextSwipeArrives();
}

TEST_F(CardCallingCallback, DisablesItsReader) {
    const std::size_t threads = CountThreads();
    InCallback([] {
        EXPECT_SUCCESS(QLMSR_Disable());
        EXPECT_FALSE(IsEnabled());
    });
    EXPECT_FALSE(IsEnabled());
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads - 1; }));
    EXPECT_SUCCESS(QLMSR_Enable());
    ExpectNextSwipeArrives();
}

TEST_F(CardCallingCallback, DisablesAndEnablesItsReader) {
    const std::size_t threads = CountThreads();
    InCallback([] {
        EXPECT_SUCCESS(QLMSR_Disable());
        EXPECT_SUCCESS(QLMSR_Enable());
    });
    EXPECT_TRUE(IsEnabled());
    ExpectNextSwipeArrives();
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads; }));
}

TEST_F(CardCallingCallback, RemovesItself) {
    InCallback([this] { EXPECT_SUCCESS(QLMSR_RemoveCallback(enabled_.Callback())); });
    AddCallback(1);
    enabled_.Reader().Swipe();
    enabled_.Log().AwaitCount(2);
    EXPECT_EQ(enabled_.Log().Callbacks(), (Callbacks{0, 1}));
}

TEST_F(CardCallingCallback, UninitializesAndNoFurtherCallbackBegins) {
    const std::size_t threads = CountThreads();
    AddCallback(1);
    InCallback([] {
        EXPECT_SUCCESS(QLMSR_Uninitialize());
        EXPECT_FAILURE(QLMSR_Enable(), QLERR_INVALID_STATE, "No exist manager instance.");
    });
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INVALID_STATE, "No exist manager instance.");
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads - 1; }));
    EXPECT_EQ(enabled_.Log().Callbacks(), (Callbacks{0}));
}

TEST_F(CardCallingCallback, StartsFromScratch) {
    AddCallback(1);
    InCallback([] {
        EXPECT_SUCCESS(QLMSR_Initialize());
        EXPECT_EQ(ListReaders().size(), 1U);
        AddCallback(2);
        EXPECT_SUCCESS(QLMSR_Enable());
    });
    enabled_.Reader().Swipe();
    enabled_.Log().AwaitCount(2);
    EXPECT_EQ(enabled_.Log().Callbacks(), (Callbacks{0, 2}));
}

}  // namespace
}  // namespace quarlin::test
