// SPDX-License-Identifier: Apache-2.0
// Loading and unloading when the system denies what the library asks for.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <string>

#include "support/child_process_win.h"
#include "support/import_hook_win.h"
#include "support/loaded_library_win.h"
#include "support/resource_count_win.h"

namespace quarlin::test {
namespace {

// Which of the calls of one kind fails; 0 for none, counted from 1.
struct CallCount {
    int calls = 0;
    int failing = 0;

    bool Fails() { return ++calls == failing; }
};
CallCount slots;
CallCount stores;
CallCount events;

DWORD WINAPI CountedSlot() {
    return slots.Fails() ? TLS_OUT_OF_INDEXES : TlsAlloc();
}
BOOL WINAPI CountedStore(DWORD index, LPVOID value) {
    return stores.Fails() ? FALSE : TlsSetValue(index, value);
}
HANDLE WINAPI CountedEvent(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL initial, LPCWSTR name) {
    if (events.Fails()) {
        SetLastError(ERROR_NO_SYSTEM_RESOURCES);
        return nullptr;
    }
    EXPECT_EQ(security, nullptr);
    EXPECT_FALSE(manual);
    EXPECT_FALSE(initial);
    EXPECT_EQ(name, nullptr);
    return CreateEventW(security, manual, initial, name);
}

void AddHooks(LoadTimeHooks& hooks) {
    hooks.Add("KERNEL32.dll", "TlsAlloc", &CountedSlot);
    hooks.Add("KERNEL32.dll", "TlsSetValue", &CountedStore);
    hooks.Add("KERNEL32.dll", "CreateEventW", &CountedEvent);
}

TEST(Load, AsksForTwoSlotsAndOneEvent) {
    LoadTimeHooks hooks;
    AddHooks(hooks);
    LoadedLibrary library;
    EXPECT_EQ(hooks.Loads(), 1);
    EXPECT_TRUE(hooks.Missing().empty());
    EXPECT_EQ(events.calls, 1);
    EXPECT_GE(slots.calls, 2);
    EXPECT_GE(stores.calls, 2);
}

TEST(Load, WithoutAnEventWorks) {
    // The system's own handles come with the first load.
    TryToLoad();
    size_t handles = 0;
    {
        const LoadedLibrary usual;
        handles = CountOpenHandles();
    }
    LoadTimeHooks hooks;
    AddHooks(hooks);
    events.failing = 1;
    LoadedLibrary library;
    EXPECT_EQ(CountOpenHandles(), handles - 1);
    EXPECT_FAILURE_IN(library, QLLIB_GetSDKVersion(nullptr, nullptr), QLERR_INVALID_ARGUMENT,
                      "The argument count cannot be NULL.");
    int size = 0;
    EXPECT_SUCCESS_IN(library, QLLIB_GetSDKVersion(nullptr, &size));
    library.Unload();
    EXPECT_EQ(CountOpenHandles(), handles - 1);
}

// Loads, loads with one call of a kind failing, and loads again; prints the system's error of each. Nobody in the child
// catches the exception that ends the second load. Arguments: which kind, and which call counted from the last.
QUARLIN_CHILD_MODE(load_with_failing_call) {
    LoadTimeHooks hooks;
    AddHooks(hooks);
    CallCount& counted = arguments[0] == "slot" ? slots : stores;
    std::printf("%lx\n", TryToLoad());
    counted = {.calls = 0, .failing = counted.calls - std::stoi(arguments[1])};
    std::printf("%lx\n", TryToLoad());
    counted = {};
    std::printf("%lx\n", TryToLoad());
    const LoadedLibrary library;
    const Failure left = library.FetchLastError();
    std::printf("%d \"%s\"\n", static_cast<int>(left.code), left.text.c_str());
    return 0;
}

// The initialisation ends with an exception of the C++ runtime, which the system turns into a library that does not
// load; no record is left.
const std::string kOnlyTheSecondLoadFailed = "0\n20474343\n0\n0 \"\"\n";

struct FailingCall {
    const char* name;
    const wchar_t* kind;
    // The two slots are the last that a load asks for; the first of them is the one in use.
    const wchar_t* fromTheLast;
};

void PrintTo(const FailingCall& call, std::ostream* stream) {
    *stream << call.name;
}
const FailingCall kFailingCalls[] = {
    {"FirstSlot", L"slot", L"1"},
    {"SecondSlot", L"slot", L"0"},
    {"FirstStore", L"store", L"1"},
    {"SecondStore", L"store", L"0"},
};

class LoadWithFailingCall : public ::testing::TestWithParam<FailingCall> {};

TEST_P(LoadWithFailingCall, FailsAndTheNextLoadWorks) {
    const ChildResult child = RunChild("load_with_failing_call", {}, {GetParam().kind, GetParam().fromTheLast}, 20000);
    EXPECT_EQ(child.out, kOnlyTheSecondLoadFailed);
    EXPECT_EQ(child.exitCode, 0U);
}

INSTANTIATE_TEST_SUITE_P(Calls, LoadWithFailingCall, ::testing::ValuesIn(kFailingCalls),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(LoadTwice, SharesOneLibraryAndOneRecord) {
    LoadedLibrary first;
    LoadedLibrary second;
    EXPECT_EQ(first.Module(), second.Module());
    EXPECT_EQ(first.QLLIB_GetSDKVersion(nullptr, nullptr), QLERR_INVALID_ARGUMENT);
    first.Unload();
    EXPECT_EQ(second.FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, "The argument count cannot be NULL."}));
}

TEST(LoadAgain, ForgetsTheRecord) {
    {
        LoadedLibrary library;
        EXPECT_EQ(library.QLLIB_GetSDKVersion(nullptr, nullptr), QLERR_INVALID_ARGUMENT);
    }
    EXPECT_EQ(GetModuleHandleW(L"qlsdk.dll"), nullptr);
    LoadedLibrary library;
    EXPECT_EQ(library.FetchLastError(), Failure{});
}

TEST(DecoratedNames, OfBothCompilersAreOneFunction) {
    LoadedLibrary library;
#define EXPECT_ONE_FUNCTION(name, gnuName, msvcName)                                                              \
    EXPECT_NE(GetProcAddress(library.Module(), gnuName), nullptr) << gnuName;                                     \
    EXPECT_EQ(GetProcAddress(library.Module(), gnuName), GetProcAddress(library.Module(), msvcName)) << msvcName; \
    EXPECT_EQ(GetProcAddress(library.Module(), #name), nullptr) << #name;
    QUARLIN_TEST_DECORATED_EXPORTS(EXPECT_ONE_FUNCTION)
#undef EXPECT_ONE_FUNCTION
}

// A program that ends with the library loaded, a record unfetched and a thread waiting ends with its own exit code.
QUARLIN_CHILD_MODE(end_without_unloading) {
    auto& library = *new LoadedLibrary;
    library.QLLIB_GetSDKVersion(nullptr, nullptr);
    return 7;
}

TEST(ProcessEnd, WithTheLibraryLoadedIsClean) {
    EXPECT_EQ(RunChild("end_without_unloading").exitCode, 7U);
}

}  // namespace
}  // namespace quarlin::test
