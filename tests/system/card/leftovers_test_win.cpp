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

// Many rounds leave nothing beyond what a few left. Each time they are a session of their own: a lock takes a handle of
// the system when two threads meet at it for the first time, and keeps it for its life. What other threads of the
// process are still giving up is given the time of some counts.
void ExpectNothingLeft(int rounds, const std::function<void(int rounds)>& session) {
    for (int i = 0; i < 2; ++i) {
        ASSERT_NO_FATAL_FAILURE(session(2));
    }
    Count();
    const Held before = Count();
    ASSERT_NO_FATAL_FAILURE(session(rounds));
    Held after = Count();
    for (int i = 0; i < 10 && after != before; ++i) {
        after = Count();
    }
    EXPECT_EQ(after, before);
    ExpectSoundHeaps();
}

ReaderSettings WithInstance() {
    ReaderSettings settings;
    settings.instance = "6&2f9a1b0c&0&0000";
    return settings;
}

class CardLeftovers : public ::testing::Test {
  protected:
    // Finds the reader; nothing of that stays in the reader itself.
    void List() {
        ASSERT_EQ(ListReaders().size(), 1U);
        reader_.TakeFeatureRequests();
    }

    const CardReaderTurn turn_;
    SwipeLog log_;
    TestReader reader_{WithInstance()};
};

// 200 milliseconds of each round are the closing of the reader.
TEST_F(CardLeftovers, NoneStayAfter200RoundsOfEnableAndDisable) {
    ExpectNothingLeft(200, [&](int rounds) {
        const CardSession session;
        List();
        for (int i = 0; i < rounds; ++i) {
            ASSERT_SUCCESS(QLMSR_Enable());
            ASSERT_SUCCESS(QLMSR_Disable());
        }
    });
}

TEST_F(CardLeftovers, NoneStayAfterSessionsOfEverything) {
    ExpectNothingLeft(5, [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            const CardSession session;
            List();
            std::atomic<int> called = 0;
            log_.DoFirst([&](int, const MagStripeData*) { ++called; });
            const unsigned int id = AddCallback();
            AddCallback();
            ASSERT_SUCCESS(QLMSR_Enable());
            reader_.Swipe();
            Await("both callbacks", [&] { return called == 2; });
            ASSERT_SUCCESS(QLMSR_RemoveCallback(id));
            reader_.Swipe();
            Await("one callback", [&] { return called == 3; });
            ASSERT_SUCCESS(QLMSR_Uninitialize());
            log_.Clear();
        }
    });
}

TEST_F(CardLeftovers, NoneStayAfterUnpluggingWhileEnabled) {
    ExpectNothingLeft(5, [&](int rounds) {
        const CardSession session;
        List();
        for (int i = 0; i < rounds; ++i) {
            ASSERT_SUCCESS(QLMSR_Enable());
            reader_.Unplug();
            ASSERT_TRUE(WaitUntil([] { return !IsEnabled(); }));
            ASSERT_SUCCESS(QLMSR_Disable());
            reader_.Plug();
        }
    });
}

TEST_F(CardLeftovers, NoneStayAfterReadersThatComeAndGo) {
    ExpectNothingLeft(5, [&](int rounds) {
        const CardSession session;
        for (int i = 0; i < rounds; ++i) {
            List();
            reader_.Unplug();
            ASSERT_EQ(ListReaders().size(), 0U);
            reader_.Plug();
        }
    });
}

TEST_F(CardLeftovers, NoneStayAfterScansThatFail) {
    ExpectNothingLeft(4, [&](int rounds) {
        const CardSession session;
        for (int i = 0; i < rounds; ++i) {
            reader_.Device().AddFault(
                {.answer = sim::HidAnswer::kRefuse, .request = sim::HidRequest::kGetFeature, .start = {}, .skip = 2});
            MagStripeReaderInfo info{};
            int count = 1;
            ASSERT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, "fail MSR devices scan.");
            reader_.TakeFeatureRequests();
        }
    });
}

TEST_F(CardLeftovers, NoneStayAfterManySwipes) {
    ExpectNothingLeft(500, [&](int rounds) {
        const CardSession session;
        List();
        AddCallback();
        ASSERT_SUCCESS(QLMSR_Enable());
        for (int i = 0; i < rounds; ++i) {
            reader_.Swipe();
            log_.AwaitCount(1);
            log_.Clear();
        }
    });
}

TEST_F(CardLeftovers, NoneStayAfterLooksAtAnEnabledReader) {
    ExpectNothingLeft(4, [&](int rounds) {
        const CardSession session;
        List();
        ASSERT_SUCCESS(QLMSR_Enable());
        for (int i = 0; i < rounds; ++i) {
            List();
        }
    });
}

}  // namespace
}  // namespace quarlin::test
