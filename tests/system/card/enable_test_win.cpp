// SPDX-License-Identifier: Apache-2.0
// Enabling and disabling, unplugging in between, and the end of the family with readers enabled.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <functional>
#include <ostream>
#include <string>
#include <thread>

#include "card/card_session_win.h"
#include "support/last_error.h"
#include "support/lock_watch_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNotEnabled = "fail device enabled.";

TEST(CardEnable, SucceedsTwiceAndDisableTooWithoutIt) {
    OneReader one;
    EXPECT_FALSE(IsEnabled());
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_SUCCESS(QLMSR_Enable());
    EXPECT_TRUE(IsEnabled());
    EXPECT_SUCCESS(QLMSR_Enable());
    EXPECT_TRUE(IsEnabled());
    const Report report = one.Reader().Swipe();
    EXPECT_EQ(one.Log().AwaitCount(1).raw, report);
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_FALSE(IsEnabled());
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_FALSE(IsEnabled());
}

TEST(CardEnable, StartsAThreadThatDisableEnds) {
    OneReader one;
    const std::size_t threads = CountThreads();
    Enable();
    EXPECT_EQ(CountThreads(), threads + 1);
    Disable();
    EXPECT_EQ(CountThreads(), threads);
}

// The device gets a pause between its last transfer and its closing.
TEST(CardDisable, TakesAFifthOfASecondWhenTheReaderWasEnabled) {
    OneReader one;
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    const auto milliseconds = [&] {
        LARGE_INTEGER now{};
        QueryPerformanceCounter(&now);
        return now.QuadPart * 1000 / frequency.QuadPart;
    };
    const LONGLONG begin = milliseconds();
    Disable();
    EXPECT_LT(milliseconds() - begin, 150);
    Enable();
    const LONGLONG middle = milliseconds();
    Disable();
    EXPECT_GE(milliseconds() - middle, 199);
    EXPECT_LT(milliseconds() - middle, 1500);
}

TEST(CardEnable, ConcernsTheSelectedReaderAlone) {
    const CardReaderTurn turn;
    SwipeLog log;
    const CardSession session;
    TestReader a(WithSerial("A"));
    ListReaders();
    TestReader b(WithSerial("B"));
    ASSERT_EQ(ListSerials(), (std::map<int, std::string>{{0, "A"}, {1, "B"}}));
    AddCallback();
    Select(1);
    Enable();
    Select(0);
    EXPECT_FALSE(IsEnabled());
    a.Swipe();
    const Report report = b.Swipe();
    EXPECT_EQ(log.AwaitCount(1).raw, report);
    EXPECT_SUCCESS(QLMSR_Disable());
    Select(1);
    EXPECT_TRUE(IsEnabled());
    Select(-1);
    EXPECT_FAILURE(QLMSR_Disable(), QLERR_INTERNAL_ERROR, kNotEnabled);
    b.Swipe();
    log.AwaitCount(2);
}

TEST(CardEnable, FailsForAReaderThatWasUnpluggedSinceTheLastLook) {
    OneReader one;
    const std::size_t threads = CountThreads();
    one.Reader().Unplug();
    CountOpenHandles();
    const std::size_t handles = CountOpenHandles();
    for (int i = 0; i < 3; ++i) {
        EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, kNotEnabled);
        EXPECT_FALSE(IsEnabled());
    }
    EXPECT_EQ(CountOpenHandles(), handles);
    EXPECT_EQ(CountThreads(), threads - 1);  // the socket's own has ended
    EXPECT_SUCCESS(QLMSR_Disable());
}

TEST(CardUnplug, WhileEnabledEndsTheReadingAndEnableFailsUntilDisable) {
    ReaderSettings settings;
    settings.instance = "6&2f9a1b0c&0&0000";
    EnabledReader enabled(settings);
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(1);
    enabled.Reader().Unplug();
    EXPECT_TRUE(WaitUntil([] { return !IsEnabled(); }));
    enabled.Reader().Plug();
    for (int i = 0; i < 3; ++i) {
        EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, kNotEnabled);
        EXPECT_FALSE(IsEnabled());
    }
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_SUCCESS(QLMSR_Enable());
    EXPECT_TRUE(IsEnabled());
    const Report report = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(2).raw, report);
}

TEST(CardUnplug, WhileEnabledIsFollowedByDisableWithTheReaderGone) {
    EnabledReader enabled;
    enabled.Reader().Unplug();
    EXPECT_TRUE(WaitUntil([] { return !IsEnabled(); }));
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, kNotEnabled);
}

// Calls that end the delivery: each returns only after a callback in progress has ended, and none begins afterwards.
struct Ending {
    const char* name;
    std::function<QLerr(unsigned int callback)> call;
};

std::ostream& operator<<(std::ostream& out, const Ending& ending) {
    return out << ending.name;
}

class CardEnding : public ::testing::TestWithParam<Ending> {};
INSTANTIATE_TEST_SUITE_P(By, CardEnding,
                         ::testing::Values(Ending{"Disable", [](unsigned int) { return QLMSR_Disable(); }},
                                           Ending{"RemoveCallback", QLMSR_RemoveCallback},
                                           Ending{"ClearCallbacks",
                                                  [](unsigned int) { return QLMSR_ClearCallbacks(); }},
                                           Ending{"Uninitialize", [](unsigned int) { return QLMSR_Uninitialize(); }},
                                           Ending{"Initialize", [](unsigned int) { return QLMSR_Initialize(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(CardEnding, WaitsForTheCallbackInProgress) {
    const LockWatch watch;
    EnabledReader enabled;
    const UniqueHandle begun(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    bool callerWaited = false;
    enabled.Log().DoFirst([&](int, const MagStripeData*) {
        SetEvent(begun.Get());
        callerWaited = LockWatch::AwaitWaiters(1);
    });
    enabled.Reader().Swipe();
    ASSERT_EQ(WaitForSingleObject(begun.Get(), kDeadline), WAIT_OBJECT_0);
    EXPECT_SUCCESS(GetParam().call(enabled.Callback()));
    EXPECT_TRUE(callerWaited);
    EXPECT_EQ(enabled.Log().Count(), 1U);
    enabled.Reader().Swipe();
    QLMSR_Uninitialize();
    EXPECT_EQ(enabled.Log().Count(), 1U);
}

TEST(CardUninitialize, WithAReaderEnabledEndsItsThreadAndForgetsEverything) {
    OneReader one;
    const std::size_t threads = CountThreads();
    ASSERT_EQ(ListReaders().size(), 1U);
    Enable();
    EXPECT_SUCCESS(QLMSR_Uninitialize());
    EXPECT_EQ(CountThreads(), threads);
    one.Reader().Swipe();
    ASSERT_SUCCESS(QLMSR_Initialize());
    EXPECT_FAILURE(QLMSR_SelectDevice(0), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    ASSERT_EQ(ListReaders().size(), 1U);
    EXPECT_FALSE(IsEnabled());
    EXPECT_FAILURE(QLMSR_RemoveCallback(one.Callback()), QLERR_INVALID_ARGUMENT,
                   "Fail remove callback.Check parameter and usage.");
    EXPECT_EQ(one.Log().Count(), 0U);
}

TEST(CardUninitialize, SelectsIndexZeroAgain) {
    OneReader one;
    ASSERT_SUCCESS(QLMSR_SelectDevice(-1));
    ASSERT_SUCCESS(QLMSR_Uninitialize());
    ASSERT_SUCCESS(QLMSR_Initialize());
    ASSERT_EQ(ListReaders().size(), 1U);
    EXPECT_SUCCESS(QLMSR_Enable());
}

TEST(CardInitialize, ASecondTimeStartsFromScratchAndDropsTheCallbacks) {
    EnabledReader enabled;
    const std::size_t threads = CountThreads();
    ASSERT_SUCCESS(QLMSR_SelectDevice(-1));
    EXPECT_SUCCESS(QLMSR_Initialize());
    EXPECT_EQ(CountThreads(), threads - 1);
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, kNotEnabled);
    ASSERT_EQ(ListReaders().size(), 1U);
    AddCallback(1);
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = enabled.Reader().Swipe();
    const LoggedSwipe swipe = enabled.Log().AwaitCount(1);
    EXPECT_EQ(swipe.raw, report);
    EXPECT_EQ(swipe.callback, 1);
}

}  // namespace
}  // namespace quarlin::test
