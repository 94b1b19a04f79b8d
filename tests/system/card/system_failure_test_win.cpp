// SPDX-License-Identifier: Apache-2.0
// The system denies what the family asks for: locks, ports, threads, handles.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

extern "C" {
#include <hidsdi.h>
}

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "card/read_count_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

// The calls of one function that fail: those numbered from first on, counted from 1, `many` of them.
struct Failing {
    int calls = 0;
    int first = 0;
    int many = 1;

    bool Fails() {
        ++calls;
        return first > 0 && calls >= first && calls < first + many;
    }
};
Failing failing;

void FailFrom(int first, int many = 1) {
    failing = {.calls = 0, .first = first, .many = many};
}

BOOL WINAPI FailingLock(CRITICAL_SECTION* section, DWORD spin, DWORD flags) {
    EXPECT_EQ(spin, 0U);
    EXPECT_EQ(flags, DWORD{CRITICAL_SECTION_NO_DEBUG_INFO});
    return failing.Fails() ? FALSE : InitializeCriticalSectionEx(section, spin, flags);
}

HANDLE WINAPI FailingPort(HANDLE file, HANDLE existing, ULONG_PTR key, DWORD threads) {
    EXPECT_EQ(key, 0U);
    EXPECT_EQ(threads, 0U);
    return failing.Fails() ? nullptr : CreateIoCompletionPort(file, existing, key, threads);
}

HANDLE WINAPI FailingFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                          DWORD flags, HANDLE pattern) {
    return failing.Fails() ? INVALID_HANDLE_VALUE
                           : CreateFileW(path, access, share, security, disposition, flags, pattern);
}

BOOLEAN WINAPI FailingPreparsedData(HANDLE file, PHIDP_PREPARSED_DATA* data) {
    return failing.Fails() ? FALSE : HidD_GetPreparsedData(file, data);
}

NTSTATUS WINAPI FailingCaps(PHIDP_PREPARSED_DATA data, PHIDP_CAPS caps) {
    return failing.Fails() ? HIDP_STATUS_INVALID_PREPARSED_DATA : HidP_GetCaps(data, caps);
}

BOOL WINAPI FailingRead(HANDLE file, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
    if (failing.Fails()) {
        SetLastError(ERROR_DEVICE_NOT_CONNECTED);
        return FALSE;
    }
    return ReadFile(file, buffer, size, read, overlapped);
}

BOOL WINAPI FailingModule(DWORD flags, LPCWSTR name, HMODULE* module) {
    return failing.Fails() ? FALSE : GetModuleHandleExW(flags, name, module);
}

std::uintptr_t FailingThread(void* security, unsigned stack, unsigned(__stdcall* body)(void*), void* argument,
                             unsigned flags, unsigned* id) {
    EXPECT_EQ(security, nullptr);
    EXPECT_EQ(stack, 0U);
    using Begin = std::uintptr_t(void*, unsigned, unsigned(__stdcall*)(void*), void*, unsigned, unsigned*);
    return failing.Fails()
               ? 0
               : SystemFunction<Begin>("msvcrt.dll", "_beginthreadex")(security, stack, body, argument, flags, id);
}

// One function of the system, in the library's imports.
struct Import {
    const char* dll;
    const char* function;
    void* replacement;
};

template <typename Function>
Import MakeImport(const char* dll, const char* function, Function* replacement) {
    return {dll, function, reinterpret_cast<void*>(replacement)};
}

struct Denial {
    const char* name;
    Import import;
    int call;  // the one that fails
};

std::ostream& operator<<(std::ostream& out, const Denial& denial) {
    return out << denial.name;
}

std::unique_ptr<ImportHook> Hook(const Denial& denial) {
    using Any = void();
    return std::make_unique<ImportHook>(denial.import.dll, denial.import.function,
                                        reinterpret_cast<Any*>(denial.import.replacement));
}

std::string NameOfDenial(const ::testing::TestParamInfo<Denial>& info) {
    return info.param.name;
}

const Import kPort = MakeImport("KERNEL32.dll", "CreateIoCompletionPort", &FailingPort);
const std::vector<Denial> kOpening{
    {"Port", kPort, 1},
    {"File", MakeImport("KERNEL32.dll", "CreateFileW", &FailingFile), 1},
    {"Binding", kPort, 2},
    {"PreparsedData", MakeImport("HID.DLL", "HidD_GetPreparsedData", &FailingPreparsedData), 1},
    {"Caps", MakeImport("HID.DLL", "HidP_GetCaps", &FailingCaps), 1},
};

class CardOpening : public ::testing::TestWithParam<Denial> {};
INSTANTIATE_TEST_SUITE_P(Without, CardOpening, ::testing::ValuesIn(kOpening), NameOfDenial);

// The same steps open a reader to ask for its identity and to read swipes.
TEST_P(CardOpening, FailsTheScanAndEnableAndLeavesNothingBehind) {
    const CardReaderTurn turn;
    SwipeLog log;
    const CardSession session;
    TestReader reader;
    const auto hook = Hook(GetParam());
    MagStripeReaderInfo info{};
    int count = 1;
    const auto scan = [&] {
        FailFrom(GetParam().call);
        EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, "fail MSR devices scan.");
    };
    scan();
    CountOpenHandles();
    const std::size_t handles = CountOpenHandles();
    scan();
    EXPECT_EQ(CountOpenHandles(), handles);
    EXPECT_TRUE(reader.TakeFeatureRequests().empty());

    FailFrom(0);
    ASSERT_EQ(ListReaders().size(), 1U);
    AddCallback();
    const std::size_t threads = CountThreads();
    const std::size_t handlesWhenListed = CountOpenHandles();
    for (int i = 0; i < 2; ++i) {
        FailFrom(GetParam().call);
        EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
        EXPECT_FALSE(IsEnabled());
    }
    EXPECT_EQ(CountOpenHandles(), handlesWhenListed);
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = reader.Swipe();
    EXPECT_EQ(log.AwaitCount(1).raw, report);
}

const std::vector<Denial> kStarting{
    {"Thread", MakeImport("msvcrt.dll", "_beginthreadex", &FailingThread), 1},
    {"Module", MakeImport("KERNEL32.dll", "GetModuleHandleExW", &FailingModule), 1},
};

class CardStarting : public ::testing::TestWithParam<Denial> {};
INSTANTIATE_TEST_SUITE_P(Without, CardStarting, ::testing::ValuesIn(kStarting), NameOfDenial);

TEST_P(CardStarting, FailsEnableAndClosesTheReader) {
    OneReader one;
    const auto hook = Hook(GetParam());
    FailFrom(GetParam().call);
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
    EXPECT_EQ(failing.calls, 1);
    EXPECT_FALSE(IsEnabled());
    CountOpenHandles();
    const std::size_t handles = CountOpenHandles();
    FailFrom(GetParam().call);
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
    EXPECT_EQ(CountOpenHandles(), handles);
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = one.Reader().Swipe();
    EXPECT_EQ(one.Log().AwaitCount(1).raw, report);
}

TEST(CardReading, ThatCannotBeginEndsAtOnceAndNeedsDisable) {
    OneReader one;
    const ImportHook hook("KERNEL32.dll", "ReadFile", &FailingRead);
    FailFrom(1);
    EXPECT_SUCCESS(QLMSR_Enable());
    EXPECT_TRUE(WaitUntil([] { return !IsEnabled(); }));
    EXPECT_EQ(failing.calls, 1);
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = one.Reader().Swipe();
    EXPECT_EQ(one.Log().AwaitCount(1).raw, report);
}

TEST(CardInitialize, WithoutALockForItsManagerFailsAndKeepsTheManager) {
    const CardReaderTurn turn;
    const ImportHook hook("KERNEL32.dll", "InitializeCriticalSectionEx", &FailingLock);
    FailFrom(1);
    EXPECT_FAILURE(QLMSR_Initialize(), QLERR_INTERNAL_ERROR, "fail initialize IQlMagStripeMgr.");
    // The manager works unlocked.
    unsigned int id = 0;
    EXPECT_SUCCESS(QLMSR_AddCallback(SwipeLog::Callback(0), &id));
    EXPECT_SUCCESS(QLMSR_RemoveCallback(id));
    const TestReader reader;
    EXPECT_EQ(ListReaders().size(), 1U);
    EXPECT_SUCCESS(QLMSR_Enable());
    EXPECT_SUCCESS(QLMSR_Initialize());
    EXPECT_SUCCESS(QLMSR_Uninitialize());
}

// A look for readers makes three locks: of the object that lists paths, of the reader, and of its device.
TEST(CardScan, WithoutALockFailsAndForgetsTheReaders) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    const ImportHook hook("KERNEL32.dll", "InitializeCriticalSectionEx", &FailingLock);
    for (const int call : {1, 2, 3}) {
        SCOPED_TRACE(call);
        FailFrom(call);
        MagStripeReaderInfo info{};
        int count = 1;
        EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, "fail MSR devices scan.");
        EXPECT_EQ(failing.calls, call == 1 ? 1 : 3);
        EXPECT_FAILURE(QLMSR_SelectDevice(0), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    }
    FailFrom(0);
    EXPECT_EQ(ListReaders().size(), 1U);
    EXPECT_EQ(failing.calls, 3);
    EXPECT_EQ(reader.TakeFeatureRequests().size(), 6U);
}

}  // namespace
}  // namespace quarlin::test
