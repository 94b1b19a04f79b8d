// SPDX-License-Identifier: Apache-2.0
// What enabling and disabling leave behind: nothing.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "gps/gps_session_win.h"
#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

constexpr int kRounds = 200;

TEST(GpsLeftovers, NoHandleAndNoThreadStaysAfter200RoundsOfEnableAndDisable) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    // The receiver never stops, so that no round has to wait for silence to end.
    const Chatter chatter(cable);
    const auto round = [] {
        ASSERT_SUCCESS(QLGPS_Enable());
        ASSERT_SUCCESS(QLGPS_Disable());
    };
    round();
    const ResourceCount before = CountResources();
    const size_t threads = CountThreads();
    for (int i = 0; i < kRounds; ++i) {
        round();
    }
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_EQ(CountResources(), before);
}

TEST(GpsLeftovers, NoneStayAfter200RoundsThatReadALine) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    const Chatter chatter(cable);
    const auto round = [] {
        ASSERT_SUCCESS(QLGPS_Enable());
        Await("a line", [] { return IsEnabled(); });
        ASSERT_SUCCESS(QLGPS_Disable());
        ASSERT_FALSE(IsEnabled());
    };
    round();
    const ResourceCount before = CountResources();
    const size_t threads = CountThreads();
    for (int i = 0; i < kRounds; ++i) {
        round();
    }
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_EQ(CountResources(), before);
}

TEST(GpsLeftovers, NoneStayAfter200RoundsOfInitializeAndUninitialize) {
    SerialPair cable;
    const Chatter chatter(cable);
    const auto round = [&] {
        ASSERT_SUCCESS(QLGPS_Initialize(cable.Port()));
        ASSERT_SUCCESS(QLGPS_Enable());
        ASSERT_SUCCESS(QLGPS_Uninitialize());
    };
    round();
    const ResourceCount before = CountResources();
    const size_t threads = CountThreads();
    for (int i = 0; i < kRounds; ++i) {
        round();
    }
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_EQ(CountResources(), before);
}

// While the port cannot be opened there is nothing to leave behind either.
TEST(GpsLeftovers, NoneStayAfterFailuresToOpenThePort) {
    const GpsSession session(2);
    const auto round = [] { ASSERT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, "CreateFile failed"); };
    round();
    const ResourceCount before = CountResources();
    for (int i = 0; i < kRounds; ++i) {
        round();
    }
    EXPECT_EQ(CountResources(), before);
}

}  // namespace
}  // namespace quarlin::test
