// SPDX-License-Identifier: Apache-2.0
// The life of a thread's error record, as an application sees it.
#include <quarlin/quarlin.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <climits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/rendezvous.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoCount = "The argument count cannot be NULL.";
// 30 characters.
constexpr const char* kNoModuleName = "module_name arg cannot be NULL";

QLerr FailWithNoCount() {
    return QLLIB_GetSDKVersion(nullptr, nullptr);
}
QLerr FailWithNoModuleName() {
    return QLGPS_GetDeviceFirmwareVersion(nullptr, 64);
}
QLerr FailWithPort() {
    return QLGPS_Initialize(0);
}

QLerr Succeed() {
    int size = 0;
    return QLLIB_GetSDKVersion(nullptr, &size);
}

// What leaves QLAPI_GetLastError when the text does not fit.
std::string ThrownByGetLastError(char* buffer, int size) {
    try {
        QLAPI_GetLastError(buffer, size);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "(nothing was thrown)";
}

TEST(LastError, IsEmptyInAThreadThatCalledNothing) {
    std::array<char, 256> buffer;
    buffer.fill('?');
    EXPECT_EQ(QLAPI_GetLastError(buffer.data(), 256), QLERR_OK);
    EXPECT_STREQ(buffer.data(), "");
    EXPECT_EQ(buffer[1], '?');
}

TEST(LastError, IsEmptyAfterASuccess) {
    std::array<char, 256> buffer;
    buffer.fill('?');
    EXPECT_EQ(Succeed(), QLERR_OK);
    EXPECT_EQ(QLAPI_GetLastError(buffer.data(), 256), QLERR_OK);
    EXPECT_STREQ(buffer.data(), "");
}

TEST(LastError, IsConsumedByFetchingIt) {
    EXPECT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, kNoCount}));
    EXPECT_EQ(FetchLastError(), Failure{});
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(LastError, OfALaterFailureReplacesTheOlder) {
    EXPECT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(FailWithNoModuleName(), QLERR_BUFFER_OVERFLOW);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_BUFFER_OVERFLOW, kNoModuleName}));
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(LastError, ShorterTextReplacesALongerOne) {
    std::array<wchar_t, 4> cut{};
    EXPECT_EQ(QLSTR_StrCopy(cut.data(), 4, L"abcd"), QLERR_INTERNAL_ERROR);
    EXPECT_FAILURE(FailWithNoCount(), QLERR_INVALID_ARGUMENT, kNoCount);
}

TEST(LastError, IsErasedByALaterSuccess) {
    EXPECT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(Succeed(), QLERR_OK);
    EXPECT_EQ(FetchLastError(), Failure{});
}

// Each family's successes erase what another family left.
TEST(LastError, IsErasedByASuccessOfAnotherFamily) {
    int count = 0;
    EXPECT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(QLGPS_GetGpsDevices(&count), QLERR_OK);
    EXPECT_EQ(FetchLastError(), Failure{});

    std::array<char, 8> copy{};
    EXPECT_EQ(FailWithNoModuleName(), QLERR_BUFFER_OVERFLOW);
    EXPECT_EQ(QLSTR_StrCopyAnsi(copy.data(), 8, "text"), QLERR_OK);
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(LastError, OfOneThreadIsInvisibleToAnother) {
    EXPECT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    std::thread([] {
        EXPECT_EQ(FetchLastError(), Failure{});
        EXPECT_EQ(FailWithNoModuleName(), QLERR_BUFFER_OVERFLOW);
        EXPECT_EQ(Succeed(), QLERR_OK);
        EXPECT_EQ(FailWithPort(), QLERR_INVALID_ARGUMENT);
    }).join();
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, kNoCount}));
}

TEST(LastError, OfEightThreadsAtOnceAreEightRecords) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 500;
    Rendezvous allFailed(kThreads);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&allFailed, thread] {
            for (int round = 0; round < kRounds; ++round) {
                switch (thread % 3) {
                    case 0:
                        FailWithNoCount();
                        break;
                    case 1:
                        FailWithNoModuleName();
                        break;
                    default:
                        FailWithPort();
                }
                // Every record exists before the first is fetched.
                allFailed.Arrive();
                const Failure expected = thread % 3 == 0 ? Failure{QLERR_INVALID_ARGUMENT, kNoCount}
                                         : thread % 3 == 1
                                             ? Failure{QLERR_BUFFER_OVERFLOW, kNoModuleName}
                                             : Failure{QLERR_INVALID_ARGUMENT, "COM port value is out of bounds"};
                EXPECT_EQ(FetchLastError(), expected);
                EXPECT_EQ(FetchLastError(), Failure{});
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(LastErrorBuffer, TenForThirtyCharactersCutsKeepsTheRecordAndThrows) {
    std::array<char, 12> buffer;
    buffer.fill('?');
    ASSERT_EQ(std::string(kNoModuleName).size(), 30U);
    ASSERT_EQ(FailWithNoModuleName(), QLERR_BUFFER_OVERFLOW);

    EXPECT_EQ(ThrownByGetLastError(buffer.data(), 10), Win32Message("Failed to copy string", 0x8007007A));
    EXPECT_STREQ(buffer.data(), "module_na");
    EXPECT_EQ(buffer[10], '?');
    // As often as it is tried.
    EXPECT_EQ(ThrownByGetLastError(buffer.data(), 10), Win32Message("Failed to copy string", 0x8007007A));

    EXPECT_EQ(FetchLastError(), (Failure{QLERR_BUFFER_OVERFLOW, kNoModuleName}));
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(LastErrorBuffer, OneTooSmallThrowsAndJustEnoughFetches) {
    std::array<char, 32> buffer;
    buffer.fill('?');
    ASSERT_EQ(FailWithNoModuleName(), QLERR_BUFFER_OVERFLOW);
    EXPECT_EQ(ThrownByGetLastError(buffer.data(), 30), Win32Message("Failed to copy string", 0x8007007A));
    EXPECT_STREQ(buffer.data(), "module_name arg cannot be NUL");
    EXPECT_EQ(QLAPI_GetLastError(buffer.data(), 31), QLERR_BUFFER_OVERFLOW);
    EXPECT_STREQ(buffer.data(), kNoModuleName);
    EXPECT_EQ(buffer[31], '?');
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(LastErrorBuffer, OfOneCharacterHoldsTheTerminator) {
    std::array<char, 2> buffer{'?', '?'};
    ASSERT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(ThrownByGetLastError(buffer.data(), 1), Win32Message("Failed to copy string", 0x8007007A));
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(buffer[1], '?');
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, kNoCount}));
}

TEST(LastErrorBuffer, OfSizeZeroIsLeftAloneAndThrows) {
    std::array<char, 2> buffer{'?', '?'};
    ASSERT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(ThrownByGetLastError(buffer.data(), 0), Win32Message("Failed to copy string", 0x80070057));
    EXPECT_EQ(buffer[0], '?');
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, kNoCount}));
}

TEST(LastErrorBuffer, OfNegativeSizeGetsATerminatorAndThrows) {
    for (const int size : {-1, -256, INT_MIN}) {
        std::array<char, 2> buffer{'?', '?'};
        ASSERT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
        EXPECT_EQ(ThrownByGetLastError(buffer.data(), size), Win32Message("Failed to copy string", 0x80070057));
        EXPECT_EQ(buffer[0], '\0');
        EXPECT_EQ(buffer[1], '?');
        EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, kNoCount}));
    }
}

TEST(LastErrorBuffer, OfTheLargestSizeIsLegal) {
    std::array<char, 64> buffer{};
    ASSERT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(QLAPI_GetLastError(buffer.data(), INT_MAX), QLERR_INVALID_ARGUMENT);
    EXPECT_STREQ(buffer.data(), kNoCount);
}

TEST(LastErrorBuffer, MayBeNullWhenThereIsNoErrorAndNoSize) {
    ASSERT_EQ(Succeed(), QLERR_OK);
    EXPECT_EQ(QLAPI_GetLastError(nullptr, 0), QLERR_OK);
    EXPECT_EQ(QLAPI_GetLastError(nullptr, -1), QLERR_OK);
}

TEST(LastErrorBuffer, IsLeftAloneWhenThereIsNoErrorAndNoSize) {
    std::array<char, 2> buffer{'?', '?'};
    ASSERT_EQ(Succeed(), QLERR_OK);
    EXPECT_EQ(QLAPI_GetLastError(buffer.data(), 0), QLERR_OK);
    EXPECT_EQ(QLAPI_GetLastError(buffer.data(), -1), QLERR_OK);
    EXPECT_EQ(buffer[0], '?');
    EXPECT_EQ(QLAPI_GetLastError(buffer.data(), 1), QLERR_OK);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(buffer[1], '?');
}

// With no system text for the copy's failure there is nothing to throw: the cut text counts as fetched.
DWORD WINAPI FormatNothing(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, va_list*) {
    SetLastError(ERROR_MR_MID_NOT_FOUND);
    return 0;
}

TEST(LastErrorBuffer, TooSmallWithoutASystemTextFetchesTheCutText) {
    std::array<char, 10> buffer{};
    ASSERT_EQ(FailWithNoModuleName(), QLERR_BUFFER_OVERFLOW);
    {
        const ImportHook hook("KERNEL32.dll", "FormatMessageW", &FormatNothing);
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(QLAPI_GetLastError(buffer.data(), 10), QLERR_BUFFER_OVERFLOW);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Error in FormatMessage: 13d\n");
    }
    EXPECT_STREQ(buffer.data(), "module_na");
    EXPECT_EQ(FetchLastError(), Failure{});
}

BOOL WINAPI StoreNothing(DWORD, LPVOID) {
    return FALSE;
}

// A record that cannot be stored must not cost the caller the code, nor let an exception out.
TEST(LastErrorSlot, ThatCannotBeWrittenStillGivesTheCode) {
    {
        const ImportHook hook("KERNEL32.dll", "TlsSetValue", &StoreNothing);
        EXPECT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    }
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(LastErrorSlot, ThatCannotBeEmptiedFailsTheSuccessfulCall) {
    ASSERT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    {
        const ImportHook hook("KERNEL32.dll", "TlsSetValue", &StoreNothing);
        EXPECT_EQ(Succeed(), QLERR_INTERNAL_ERROR);
    }
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INTERNAL_ERROR, "Failed to set TLS value"}));
}

TEST(DoNothingFunctions, AreOneFunctionThatLeavesTheRecordAlone) {
    HMODULE library = GetModuleHandleW(L"qlsdk.dll");
    ASSERT_NE(library, nullptr);
    const auto showConsole = GetProcAddress(library, "QLMISC_ShowConsole");
    EXPECT_NE(showConsole, nullptr);
    EXPECT_EQ(showConsole, GetProcAddress(library, "QLMISC_ThreadSleep"));
    EXPECT_EQ(showConsole, GetProcAddress(library, "QLMISC_WaitForDebugger"));

    ASSERT_EQ(FailWithNoCount(), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(QLMISC_ShowConsole(), QLERR_OK);
    EXPECT_EQ(QLMISC_ThreadSleep(), QLERR_OK);
    EXPECT_EQ(QLMISC_WaitForDebugger(), QLERR_OK);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, kNoCount}));

    EXPECT_EQ(QLMISC_ShowConsole(), QLERR_OK);
    EXPECT_EQ(FetchLastError(), Failure{});
}

// They were built against with arguments by some programs.
TEST(DoNothingFunctions, IgnoreWhatTheyArePassed) {
    const auto withArguments = reinterpret_cast<int (*)(int, const char*, void*)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"qlsdk.dll"), "QLMISC_ThreadSleep")));
    EXPECT_EQ(withArguments(INT_MAX, nullptr, nullptr), 0);
}

}  // namespace
}  // namespace quarlin::test
