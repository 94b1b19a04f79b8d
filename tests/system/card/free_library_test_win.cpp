// SPDX-License-Identifier: Apache-2.0
// Loading the library without a lock for the family; freeing it, or ending, while a reader is enabled.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <string>

#include "card/swipe_log_win.h"
#include "card/test_reader_win.h"
#include "support/child_process_win.h"
#include "support/import_hook_win.h"
#include "support/loaded_library_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

BOOL WINAPI NoLock(CRITICAL_SECTION*, DWORD, DWORD) {
    return FALSE;
}

TEST(CardLoad, WithoutALockRefusesInitializeAndKnowsNoManager) {
    LoadTimeHooks hooks;
    hooks.Add("KERNEL32.dll", "InitializeCriticalSectionEx", &NoLock);
    const LoadedLibrary library;
    ASSERT_TRUE(hooks.Missing().empty());
    EXPECT_FAILURE_IN(library, QLMSR_Initialize(), QLERR_INTERNAL_ERROR, "Could not initialize critical section.");
    EXPECT_FAILURE_IN(library, QLMSR_Enable(), QLERR_INVALID_STATE, "No exist manager instance.");
    EXPECT_FAILURE_IN(library, QLMSR_GetMagStripeDevices(nullptr, nullptr), QLERR_INVALID_STATE,
                      "no exist IQlMagStripeMgr instance.");
    EXPECT_FAILURE_IN(library, QLMSR_IsEnabled(nullptr), QLERR_INVALID_ARGUMENT, "1st parameter is invalid.(NULL)");
    EXPECT_SUCCESS_IN(library, QLMSR_Uninitialize());
}

bool IsLoaded() {
    return GetModuleHandleW(L"qlsdk.dll") != nullptr;
}

bool EnableReader(const LoadedLibrary& library) {
    MagStripeReaderInfo info{};
    int count = 1;
    unsigned int id = 0;
    return library.QLMSR_Initialize() == QLERR_OK && library.QLMSR_GetMagStripeDevices(&info, &count) == QLERR_OK &&
           count == 1 && library.QLMSR_AddCallback(SwipeLog::Callback(0), &id) == QLERR_OK &&
           library.QLMSR_Enable() == QLERR_OK;
}

// The reader keeps the library in memory; loading it again finds the reader as it was.
TEST(CardFreedLibrary, GoesOnDeliveringUntilItIsDisabled) {
    const CardReaderTurn turn;
    SwipeLog log;
    TestReader reader;
    LoadedLibrary library;
    ASSERT_TRUE(EnableReader(library));
    reader.Swipe();
    log.AwaitCount(1);
    library.Unload();
    EXPECT_TRUE(IsLoaded());

    const Report report = reader.Swipe();
    EXPECT_EQ(log.AwaitCount(2).raw, report);
    LoadedLibrary again;
    bool enabled = false;
    EXPECT_SUCCESS_IN(again, QLMSR_IsEnabled(&enabled));
    EXPECT_TRUE(enabled);
    EXPECT_SUCCESS_IN(again, QLMSR_Uninitialize());
    again.Unload();
    EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
}

TEST(CardFreedLibrary, IsGoneWhenTheReaderWasDisabled) {
    const CardReaderTurn turn;
    const SwipeLog log;
    const TestReader reader;
    LoadedLibrary library;
    const std::size_t threads = CountThreads();
    ASSERT_TRUE(EnableReader(library));
    EXPECT_EQ(CountThreads(), threads + 1);
    EXPECT_SUCCESS_IN(library, QLMSR_Disable());
    library.Unload();
    EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
    EXPECT_EQ(CountThreads(), threads);
}

TEST(CardFreedLibrary, IsGoneAfterTheReaderIsUnplugged) {
    const CardReaderTurn turn;
    const SwipeLog log;
    TestReader reader;
    LoadedLibrary library;
    ASSERT_TRUE(EnableReader(library));
    library.Unload();
    EXPECT_TRUE(IsLoaded());
    reader.Unplug();
    EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
}

// Frees the library, or does not, and ends while swipes arrive.
int EndWhileReading(bool freeing) {
    SwipeLog log;
    TestReader reader;
    LoadedLibrary library;
    if (!EnableReader(library)) {
        return 1;
    }
    reader.Swipe();
    if (!WaitUntil([&] { return log.Count() == 1; })) {
        return 2;
    }
    if (freeing) {
        library.Unload();
    }
    for (int i = 0; i < 20; ++i) {
        reader.Swipe();
    }
    std::puts("ends");
    std::fflush(stdout);
    // Without a return, so that nothing is released before the process ends.
    ExitProcess(7);
}

QUARLIN_CHILD_MODE(free_while_swiping) {
    return EndWhileReading(true);
}

QUARLIN_CHILD_MODE(end_while_swiping) {
    return EndWhileReading(false);
}

TEST(CardProcessEnd, IsInOrderAfterTheLibraryWasFreedWhileReading) {
    const CardReaderTurn turn;
    const ChildResult child = RunChild("free_while_swiping");
    EXPECT_EQ(child.exitCode, 7U);
    EXPECT_EQ(child.out, "ends\n");
    EXPECT_EQ(child.err, "");
}

TEST(CardProcessEnd, IsInOrderWhileReading) {
    const CardReaderTurn turn;
    const ChildResult child = RunChild("end_while_swiping");
    EXPECT_EQ(child.exitCode, 7U);
    EXPECT_EQ(child.out, "ends\n");
    EXPECT_EQ(child.err, "");
}

}  // namespace
}  // namespace quarlin::test
