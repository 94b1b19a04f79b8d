// SPDX-License-Identifier: Apache-2.0
// The instruments are tested too: a counter that sees no leak, or a hook that hooks nothing, would let every test pass.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "support/child_process_win.h"
#include "support/import_hook_win.h"
#include "support/machine_state_win.h"
#include "support/owners_win.h"
#include "support/resource_count_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

TEST(ResourceCount, SeesOneHandle) {
    CountOpenHandles();
    const size_t before = CountOpenHandles();
    UniqueHandle event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    EXPECT_EQ(CountOpenHandles(), before + 1);
    event.Reset();
    EXPECT_EQ(CountOpenHandles(), before);
}

TEST(ResourceCount, SeesOneHeapBlockOfAnySize) {
    // Volatile, because compilers leave out a block that nobody uses.
    void* volatile block = nullptr;
    for (const size_t size : {1U, 16U, 24U, 40U, 64U, 200U, 1000U, 70000U, 600000U}) {
        const size_t before = CountHeapBlocks();
        block = std::malloc(size);
        const size_t with = CountHeapBlocks();
        std::free(block);
        const size_t after = CountHeapBlocks();
        EXPECT_EQ(with, before + 1) << size;
        EXPECT_EQ(after, before) << size;
    }
}

TEST(ResourceCount, SeesOneThreadLocalSlot) {
    const size_t before = CountFreeTlsSlots();
    const DWORD slot = TlsAlloc();
    EXPECT_EQ(CountFreeTlsSlots(), before - 1);
    TlsFree(slot);
    EXPECT_EQ(CountFreeTlsSlots(), before);
}

DWORD WINAPI FixedTick() {
    return 4711;
}

// Not inlined: within one function a compiler may read the import table once for all calls.
[[gnu::noinline]] DWORD Tick() {
    return GetTickCount();
}

TEST(ImportHook, ReplacesOneEntryUntilTheEndOfItsScope) {
    HMODULE self = GetModuleHandleW(nullptr);
    {
        const ImportHook hook("kernel32.DLL", "GetTickCount", &FixedTick, self);
        EXPECT_EQ(Tick(), 4711U);
    }
    EXPECT_NE(Tick(), 4711U);
}

TEST(ImportHook, RefusesAFunctionThatIsNotImported) {
    HMODULE self = GetModuleHandleW(nullptr);
    EXPECT_THROW(ImportHook("kernel32.dll", "NoSuchFunction", &FixedTick, self), std::runtime_error);
}

QUARLIN_CHILD_MODE(echo) {
    for (const std::string& argument : arguments) {
        std::printf("%s\n", argument.c_str());
    }
    const char* const variable = std::getenv("QUARLIN_SUPPORT_TEST");
    std::fprintf(stderr, "%s", variable == nullptr ? "(none)" : variable);
    return 42;
}

TEST(ChildProcess, HasItsOwnArgumentsEnvironmentAndExitCode) {
    const EnvironmentGuard inherited(L"QUARLIN_SUPPORT_TEST", L"parent");
    const ChildResult child = RunChild("echo", {{L"QUARLIN_SUPPORT_TEST", L"child"}}, {L"a b", L"c\\", L"d\"e"});
    EXPECT_EQ(child.exitCode, 42U);
    EXPECT_EQ(child.out, "a b\nc\\\nd\"e\n");
    EXPECT_EQ(child.err, "child");
    EXPECT_EQ(RunChild("echo").err, "parent");
    EXPECT_EQ(RunChild("echo", {{L"QUARLIN_SUPPORT_TEST", std::nullopt}}).err, "(none)");
}

TEST(ChildProcess, UnknownModeIsToldApart) {
    const ChildResult child = RunChild("no_such_mode");
    EXPECT_EQ(child.exitCode, 125U);
    EXPECT_EQ(child.err, "unknown child mode no_such_mode\n");
}

TEST(RegistryValueGuard, RestoresValueAndKey) {
    const std::wstring path = L"Software\\QuarlinSupportTest";
    const auto read = [&]() -> std::wstring {
        wchar_t text[32] = L"";
        DWORD size = sizeof(text);
        const LSTATUS status =
            RegGetValueW(HKEY_CURRENT_USER, path.c_str(), L"Value", RRF_RT_REG_SZ, nullptr, text, &size);
        return status == ERROR_SUCCESS ? text : L"error " + std::to_wstring(status);
    };
    {
        RegistryValueGuard outer(HKEY_CURRENT_USER, path, L"Value");
        outer.SetText(L"outer");
        {
            RegistryValueGuard inner(HKEY_CURRENT_USER, path, L"Value");
            inner.SetText(L"inner");
            EXPECT_EQ(read(), L"inner");
        }
        EXPECT_EQ(read(), L"outer");
    }
    EXPECT_EQ(read(), L"error 2");
}

TEST(SystemText, IsThatOfTheSystem) {
    EXPECT_EQ(Win32Message("Context", ERROR_ACCESS_DENIED).substr(0, 32), "Context\nWin32 Error 0x00000005: ");
    EXPECT_EQ(HResultMessage("Context", E_OUTOFMEMORY), "Context\nWin32 HRESULT: 8007000e");
    EXPECT_FALSE(HasSystemText(0xE0001234));
    EXPECT_THROW(SystemText(0xE0001234), std::runtime_error);
}

}  // namespace
}  // namespace quarlin::test
