// SPDX-License-Identifier: Apache-2.0
// The thread that reads: what it makes of reads that fail, and when it ends.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

#include "gps/gps_session_win.h"
#include "gps/port_watch_win.h"
#include "gps/read_watch_win.h"
#include "gps/sentences.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

TEST(GpsReader, TriesAgainAfterEveryErrorWithAPauseOfTenMilliseconds) {
    ReadWatch watch;
    watch.AnswerNext({{FALSE, ERROR_GEN_FAILURE},
                      {FALSE, ERROR_IO_DEVICE},
                      {FALSE, ERROR_OPERATION_ABORTED},
                      {FALSE, ERROR_BAD_COMMAND},
                      {FALSE, ERROR_ACCESS_DENIED},
                      {TRUE, ERROR_SUCCESS},
                      {FALSE, ERROR_FILE_NOT_FOUND}});
    ReadingGps gps;
    ASSERT_TRUE(WaitUntil([&] { return watch.EmptyReads() == 7; }));
    EXPECT_FALSE(IsEnabled());
    gps.SettleBySpeed(1);
    EXPECT_GE(watch.Pauses().size(), 7U);
    for (const DWORD pause : watch.Pauses()) {
        EXPECT_EQ(pause, 10U);
    }
}

// What the system's calls leave behind is not the answer of a read.
TEST(GpsReader, GoesOnWhenASilentReadFindsAnOldInvalidHandleError) {
    ReadWatch watch;
    watch.LeaveErrorInPauses(ERROR_INVALID_HANDLE);
    watch.AnswerNext({{TRUE, ERROR_SUCCESS}, {TRUE, ERROR_SUCCESS}, {TRUE, ERROR_SUCCESS}});
    ReadingGps gps;
    ASSERT_TRUE(WaitUntil([&] { return watch.EmptyReads() == 3; }));
    gps.SettleBySpeed(2);
}

TEST(GpsReader, EndsWithoutAPauseWhenTheHandleIsGone) {
    ReadWatch watch;
    PortWatch opening;
    watch.AnswerNext({{FALSE, ERROR_INVALID_HANDLE}});
    SerialPair cable;
    const GpsSession session(cable.Port());
    ASSERT_SUCCESS(QLGPS_Enable());
    ASSERT_EQ(opening.threads.size(), 1U);
    HANDLE thread = opening.threads[0].result;
    ASSERT_EQ(WaitForSingleObject(thread, kDeadline), WAIT_OBJECT_0);
    DWORD code = 99;
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 0U);
    EXPECT_EQ(watch.Pauses(), std::vector<DWORD>{});
    EXPECT_FALSE(IsEnabled());
    // Disabling finds it ended; enabling starts another one.
    EXPECT_SUCCESS(QLGPS_Disable());
    ASSERT_SUCCESS(QLGPS_Enable());
    cable.Send(SpeedOnly(3));
    EXPECT_TRUE(WaitUntil([] { return ReadSpeed() == 3; }));
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
    EXPECT_EQ(opening.threads.size(), 2U);
}

TEST(GpsReader, HasEndedWhenDisableReturns) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    PortWatch opening;
    ASSERT_SUCCESS(QLGPS_Enable());
    ASSERT_EQ(opening.threads.size(), 1U);
    HANDLE copy = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), opening.threads[0].result, GetCurrentProcess(), &copy, 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    const UniqueHandle thread(copy);
    EXPECT_EQ(WaitForSingleObject(thread.Get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    ASSERT_SUCCESS(DisableWithoutSilence(cable));
    EXPECT_EQ(WaitForSingleObject(thread.Get(), 0), WAIT_OBJECT_0);
    DWORD code = 99;
    EXPECT_TRUE(GetExitCodeThread(thread.Get(), &code));
    EXPECT_EQ(code, 0U);
}

}  // namespace
}  // namespace quarlin::test
