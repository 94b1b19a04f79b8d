// SPDX-License-Identifier: Apache-2.0
// What the family leaves behind: nothing.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <functional>
#include <ostream>

#include "card/card_session_win.h"
#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

struct Held {
    ResourceCount resources;
    std::size_t threads = 0;

    bool operator==(const Held&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Held& held) {
    return out << held.resources << ", " << held.threads << " threads";
}

Held Count() {
    Held held;
    held.threads = CountThreads();
    held.resources = CountResources();
    return held;
}

void ExpectSoundHeaps() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    for (DWORD i = 0; i < count; ++i) {
        EXPECT_TRUE(HeapValidate(heaps[i], 0, nullptr));
    }
}

// The rounds leave nothing beyond what a first few left. What other threads of the process are still giving up is given
// the time of some counts.
void ExpectNothingLeft(int rounds, const std::function<void()>& round) {
    for (int i = 0; i < 3; ++i) {
        ASSERT_NO_FATAL_FAILURE(round());
    }
    Count();
    const Held before = Count();
    for (int i = 0; i < rounds; ++i) {
        ASSERT_NO_FATAL_FAILURE(round());
    }
    Held after = Count();
    for (int i = 0; i < 10 && after != before; ++i) {
        after = Count();
    }
    EXPECT_EQ(after, before);
    ExpectSoundHeaps();
}

// 200 milliseconds of each round are the closing of the reader.
TEST(CardLeftovers, NoneStayAfter200RoundsOfEnableAndDisable) {
    OneReader one;
    ExpectNothingLeft(200, [] {
        ASSERT_SUCCESS(QLMSR_Enable());
        ASSERT_SUCCESS(QLMSR_Disable());
    });
}

TEST(CardLeftovers, NoneStayAfterRoundsOfEverything) {
    const CardReaderTurn turn;
    TestReader reader;
    ExpectNothingLeft(10, [&] {
        SwipeLog log;
        const CardSession session;
        ASSERT_EQ(ListReaders().size(), 1U);
        reader.TakeFeatureRequests();
        const unsigned int id = AddCallback();
        AddCallback();
        ASSERT_SUCCESS(QLMSR_Enable());
        reader.Swipe();
        log.AwaitCount(2);
        ASSERT_SUCCESS(QLMSR_RemoveCallback(id));
        reader.Swipe();
        log.AwaitCount(3);
    });
}

TEST(CardLeftovers, NoneStayAfterRoundsOfUnpluggingWhileEnabled) {
    ReaderSettings settings;
    settings.instance = "6&2f9a1b0c&0&0000";
    OneReader one(settings);
    ExpectNothingLeft(10, [&] {
        ASSERT_SUCCESS(QLMSR_Enable());
        one.Reader().Unplug();
        ASSERT_TRUE(WaitUntil([] { return !IsEnabled(); }));
        ASSERT_SUCCESS(QLMSR_Disable());
        one.Reader().Plug();
    });
}

TEST(CardLeftovers, NoneStayAfterRoundsOfReadersThatComeAndGo) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    ExpectNothingLeft(10, [&] {
        ASSERT_EQ(ListReaders().size(), 1U);
        reader.TakeFeatureRequests();
        reader.Unplug();
        ASSERT_EQ(ListReaders().size(), 0U);
        reader.Plug();
    });
}

TEST(CardLeftovers, NoneStayAfterScansThatFail) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    ExpectNothingLeft(10, [&] {
        reader.Device().AddFault(
            {.answer = sim::HidAnswer::kRefuse, .request = sim::HidRequest::kGetFeature, .start = {}, .skip = 2});
        MagStripeReaderInfo info{};
        int count = 1;
        ASSERT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, "fail MSR devices scan.");
        reader.TakeFeatureRequests();
    });
}

TEST(CardLeftovers, NoneStayAfterManySwipesAndLooks) {
    EnabledReader enabled;
    ASSERT_SUCCESS(QLMSR_RemoveCallback(enabled.Callback()));
    static std::atomic<int> swipes = 0;
    unsigned int id = 0;
    ASSERT_SUCCESS(QLMSR_AddCallback([](const MagStripeData*) { ++swipes; }, &id));
    ExpectNothingLeft(500, [&] {
        const int before = swipes;
        enabled.Reader().Swipe();
        Await("the swipe", [&] { return swipes > before; });
    });
    ExpectNothingLeft(5, [] { ASSERT_EQ(ListReaders().size(), 1U); });
}

}  // namespace
}  // namespace quarlin::test
