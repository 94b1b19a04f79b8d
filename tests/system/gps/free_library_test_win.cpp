// SPDX-License-Identifier: Apache-2.0
// An application that frees the library while the receiver is enabled, or ends without a word: its process lives on, or
// ends in order.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <string>

#include "gps/sentences.h"
#include "gps/serial_pair_win.h"
#include "support/child_process_win.h"
#include "support/loaded_library_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

bool IsLoaded() {
    return GetModuleHandleW(L"qlsdk.dll") != nullptr;
}

double SpeedBy(const LoadedLibrary& library) {
    double speed = -1;
    return library.QLGPS_GetSpeed(&speed) == QLERR_OK ? speed : -1;
}

bool EnableOn(const LoadedLibrary& library, int port) {
    return library.QLGPS_Initialize(port) == QLERR_OK && library.QLGPS_Enable() == QLERR_OK;
}

// The reader keeps the library in memory; loading it again finds the receiver as it was.
TEST(GpsFreedLibrary, GoesOnReadingUntilItIsDisabled) {
    SerialPair cable;
    LoadedLibrary library;
    ASSERT_TRUE(EnableOn(library, cable.Port()));
    cable.Send(SpeedOnly(1));
    ASSERT_TRUE(WaitUntil([&] { return SpeedBy(library) == 1; }));
    library.Unload();
    EXPECT_TRUE(IsLoaded());

    cable.Send(SpeedOnly(2));
    LoadedLibrary again;
    EXPECT_TRUE(WaitUntil([&] { return SpeedBy(again) == 2; }));
    EXPECT_SUCCESS_IN(again, QLGPS_Uninitialize());
    again.Unload();
    EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
}

TEST(GpsFreedLibrary, IsGoneWhenTheReceiverWasDisabled) {
    const SerialPair cable;
    LoadedLibrary library;
    const size_t threads = CountThreads();
    ASSERT_TRUE(EnableOn(library, cable.Port()));
    EXPECT_EQ(CountThreads(), threads + 1);
    EXPECT_SUCCESS_IN(library, QLGPS_Disable());
    library.Unload();
    EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
    EXPECT_EQ(CountThreads(), threads);
}

// Frees the library, or does not, and ends while the reader takes sentences.
int EndWhileReading(bool freeing) {
    SerialPair cable;
    LoadedLibrary library;
    if (!EnableOn(library, cable.Port())) {
        return 1;
    }
    cable.Send(SpeedOnly(1));
    if (!WaitUntil([&] { return SpeedBy(library) == 1; })) {
        return 2;
    }
    if (freeing) {
        library.Unload();
    }
    for (int i = 0; i < 100; ++i) {
        cable.Send(FullReport());
    }
    std::puts("ends");
    std::fflush(stdout);
    // Without a return, so that nothing is released before the process ends.
    ExitProcess(7);
}

QUARLIN_CHILD_MODE(free_while_reading) {
    return EndWhileReading(true);
}

QUARLIN_CHILD_MODE(end_while_reading) {
    return EndWhileReading(false);
}

TEST(GpsProcessEnd, IsInOrderAfterTheLibraryWasFreedWhileReading) {
    const ChildResult child = RunChild("free_while_reading");
    EXPECT_EQ(child.exitCode, 7U);
    EXPECT_EQ(child.out, "ends\n");
    EXPECT_EQ(child.err, "");
}

TEST(GpsProcessEnd, IsInOrderWhileReading) {
    const ChildResult child = RunChild("end_while_reading");
    EXPECT_EQ(child.exitCode, 7U);
    EXPECT_EQ(child.out, "ends\n");
    EXPECT_EQ(child.err, "");
}

}  // namespace
}  // namespace quarlin::test
