// SPDX-License-Identifier: Apache-2.0
// Freeing the library, or ending, with a reader open.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <functional>
#include <string>
#include <thread>

#include "rfid/rfid_reader_win.h"
#include "support/child_process_win.h"
#include "support/loaded_library_win.h"
#include "support/resource_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

bool IsLoaded() {
    return GetModuleHandleW(L"qlsdk.dll") != nullptr;
}

#define EXPECT_DONE_IN(library, call) EXPECT_FAILURE_IN(library, call, QLERR_OK, "QLERR_OK")

// Nothing of the family keeps the library. The handle is the caller's, and nobody else closes it.
TEST(RfidFreedLibrary, IsGoneAndLeavesTheReaderOpen) {
    const RfidReaderTurn turn;
    TestReader reader;
    void* handle = nullptr;
    {
        LoadedLibrary library;
        EXPECT_DONE_IN(library, QLUHFRFID_OpenReader(&handle));
        EXPECT_DONE_IN(library, QLUHFRFID_SetPower(handle, 5));
        library.Unload();
        EXPECT_FALSE(IsLoaded());
    }
    const UniqueHandle owner(handle);
    DWORD flags = 0;
    EXPECT_TRUE(GetHandleInformation(handle, &flags));

    // It begins anew.
    const LoadedLibrary again;
    EXPECT_FAILURE_IN(again, QLUHFRFID_SetPower(handle, 6), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
    EXPECT_FAILURE_IN(again, QLUHFRFID_CloseReader(handle), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
    void* second = nullptr;
    EXPECT_DONE_IN(again, QLUHFRFID_OpenReader(&second));
    EXPECT_DONE_IN(again, QLUHFRFID_SetPower(second, 7));
    EXPECT_DONE_IN(again, QLUHFRFID_CloseReader(second));
    EXPECT_EQ(reader.TakeReports(), (Reports{Report("C00305"), Report("C00307")}));
}

// What stays after rounds of loading, using and freeing the library.
ResourceCount GrowthBy(const std::function<void(const LoadedLibrary& library)>& use) {
    const auto rounds = [&](int count) {
        for (int i = 0; i < count; ++i) {
            use(LoadedLibrary());
        }
    };
    rounds(3);
    const ResourceCount before = CountResources();
    rounds(8);
    const ResourceCount after = CountResources();
    EXPECT_FALSE(IsLoaded());
    return {after.handles - before.handles, after.heapBlocks - before.heapBlocks,
            after.freeTlsSlots - before.freeTlsSlots};
}

// The lock of the family stays, as it is never deleted; it comes with the first opening, whatever becomes of that.
TEST(RfidFreedLibrary, LeavesItsLockAndNothingElse) {
    // The system's libraries would leave something of their own each time that they are freed.
    const UniqueModule setup(LoadLibraryW(L"setupapi.dll"));
    const UniqueModule hid(LoadLibraryW(L"hid.dll"));
    const RfidReaderTurn turn;
    TestReader reader;
    const auto refused = [](const LoadedLibrary& library) {
        EXPECT_FAILURE_IN(library, QLUHFRFID_OpenReader(nullptr), QLERR_INVALID_ARGUMENT, "QLERR_INVALID_ARGUMENT");
    };
    // The simulated reader makes a handle for good now and then, when its threads meet, and gives one back late.
    ResourceCount byLock = GrowthBy(refused);
    for (int retry = 0; retry < 3 && byLock.handles != 0; ++retry) {
        byLock = GrowthBy(refused);
    }
    EXPECT_EQ(byLock.handles, 0U);
    EXPECT_EQ(byLock.freeTlsSlots, 0U);
    const auto use = [&](const LoadedLibrary& library) {
        void* handle = nullptr;
        EXPECT_DONE_IN(library, QLUHFRFID_OpenReader(&handle));
        EXPECT_DONE_IN(library, QLUHFRFID_SetPower(handle, 5));
        EXPECT_DONE_IN(library, QLUHFRFID_CloseReader(handle));
        reader->ClearLog();
    };
    ResourceCount byUse = GrowthBy(use);
    for (int retry = 0; retry < 3 && byUse != byLock; ++retry) {
        byUse = GrowthBy(use);
    }
    EXPECT_EQ(byUse, byLock);
}

// Without a return from the blocked call, and without closing.
QUARLIN_CHILD_MODE(end_while_waiting) {
    TestReader reader;
    const LoadedLibrary library;
    void* handle = nullptr;
    if (library.QLUHFRFID_OpenReader(&handle) != QLERR_OK) {
        return 1;
    }
    reader->AddFault(UhfFault::Silence());
    std::thread([&] { library.QLUHFRFID_SetPower(handle, 5); }).detach();
    if (!reader->WaitForReceived(1)) {
        return 2;
    }
    std::puts("ends");
    std::fflush(stdout);
    ExitProcess(7);
}

TEST(RfidProcessEnd, IsInOrderWhileACallerWaitsForTheReader) {
    const RfidReaderTurn turn;
    const ChildResult child = RunChild("end_while_waiting");
    EXPECT_EQ(child.exitCode, 7U);
    EXPECT_EQ(child.out, "ends\n");
    EXPECT_EQ(child.err, "");
    // The reader went with the process.
    const LoadedLibrary library;
    void* handle = nullptr;
    EXPECT_FAILURE_IN(library, QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_DEVICENOTFOUND,
                      "QLERR_UHFRFID_DEVICENOTFOUND");
}

}  // namespace
}  // namespace quarlin::test
