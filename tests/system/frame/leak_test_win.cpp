// SPDX-License-Identifier: Apache-2.0
// Nothing is left behind: by loads and unloads in one process, and by threads that come, fail and go.
#include <gtest/gtest.h>

#include <windows.h>

#include "frame/leak_rounds_win.h"
#include "support/loaded_library_win.h"
#include "support/owners_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoCount = "The argument count cannot be NULL.";

TEST(ThousandLoads, LeaveNothing) {
    KeepImportsLoaded();
    ExpectNothingLeft(1000, [] { LoadedLibrary(); });
    EXPECT_EQ(GetModuleHandleW(L"qlsdk.dll"), nullptr);
}

TEST(ThousandLoads, LeaveNothingWhenEachFailsACall) {
    KeepImportsLoaded();
    ExpectNothingLeft(1000, [] {
        const LoadedLibrary library;
        ASSERT_EQ(library.QLLIB_GetSDKVersion(nullptr, nullptr), QLERR_INVALID_ARGUMENT);
        ASSERT_EQ(library.FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, kNoCount}));
    });
}

TEST(ThousandLoads, LeaveNothingWhenEachSucceedsAfterAFailure) {
    KeepImportsLoaded();
    ExpectNothingLeft(1000, [] {
        const LoadedLibrary library;
        wchar_t cut[4];
        int size = 0;
        ASSERT_EQ(library.QLSTR_StrCopy(cut, 4, L"abcd"), QLERR_INTERNAL_ERROR);
        ASSERT_EQ(library.QLLIB_GetSDKVersion(nullptr, &size), QLERR_OK);
    });
}

TEST(Loads, LeaveNothingWhenEachInitialisesTheGps) {
    KeepImportsLoaded();
    ExpectNothingLeft(100, [] {
        const LoadedLibrary library;
        ASSERT_EQ(library.QLGPS_Initialize(3), QLERR_OK);
        ASSERT_EQ(library.QLGPS_Uninitialize(), QLERR_OK);
    });
}

// An application that forgets to tidy up before it lets the library go.
TEST(Loads, LeaveNothingWhenTheGpsIsLeftInitialised) {
    KeepImportsLoaded();
    ExpectNothingLeft(100, [] {
        const LoadedLibrary library;
        ASSERT_EQ(library.QLGPS_Initialize(3), QLERR_OK);
    });
}

DWORD WINAPI FailAndFetch(void* context) {
    const auto& library = *static_cast<const LoadedLibrary*>(context);
    char text[64];
    const bool right = library.QLLIB_GetSDKVersion(nullptr, nullptr) == QLERR_INVALID_ARGUMENT &&
                       library.QLAPI_GetLastError(text, sizeof(text)) == QLERR_INVALID_ARGUMENT &&
                       strcmp(text, kNoCount) == 0;
    return right ? 0 : 1;
}

DWORD WINAPI FailAndSucceed(void* context) {
    const auto& library = *static_cast<const LoadedLibrary*>(context);
    int size = 0;
    const bool right = library.QLLIB_GetSDKVersion(nullptr, nullptr) == QLERR_INVALID_ARGUMENT &&
                       library.QLLIB_GetSDKVersion(nullptr, &size) == QLERR_OK;
    return right ? 0 : 1;
}

// No thread of the C++ runtime: it would take memory of its own.
void RunOneThread(LPTHREAD_START_ROUTINE body, const LoadedLibrary& library) {
    const UniqueHandle thread(CreateThread(nullptr, 0, body, const_cast<LoadedLibrary*>(&library), 0, nullptr));
    ASSERT_TRUE(thread.Valid());
    ASSERT_EQ(WaitForSingleObject(thread.Get(), 10000), WAIT_OBJECT_0);
    DWORD result = 1;
    GetExitCodeThread(thread.Get(), &result);
    ASSERT_EQ(result, 0U);
}

TEST(TenThousandThreads, LeaveNothingWhenEachFailsAndFetches) {
    const LoadedLibrary library;
    ExpectNothingLeft(10000, [&] { RunOneThread(&FailAndFetch, library); });
}

TEST(TenThousandThreads, LeaveNothingWhenEachFailsAndSucceeds) {
    const LoadedLibrary library;
    ExpectNothingLeft(10000, [&] { RunOneThread(&FailAndSucceed, library); });
}

}  // namespace
}  // namespace quarlin::test
