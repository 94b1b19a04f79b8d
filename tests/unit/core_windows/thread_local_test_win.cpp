// SPDX-License-Identifier: Apache-2.0
#include "core/thread_local_win.h"

#include "core/quarlin_exception.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <new>
#include <string>
#include <thread>

#include "support/import_hook_win.h"
#include "support/resource_count_win.h"

namespace {

bool failNothrowNew = false;

}  // namespace

// The program's allocation that answers null, made to do so.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return failNothrowNew ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}

namespace quarlin {
namespace {

DWORD WINAPI NoSlot() {
    return TLS_OUT_OF_INDEXES;
}
BOOL WINAPI NoStore(DWORD, LPVOID) {
    return FALSE;
}

// The code and the text with which a slot fails to come into being.
std::string FailureOfMaking() {
    try {
        const ThreadLocal slot;
    } catch (const QuarlinException& failure) {
        EXPECT_EQ(failure.code, QLERR_INTERNAL_ERROR);
        return failure.what();
    }
    return "(none)";
}

TEST(ThreadLocal, HoldsAPointerForEachThread) {
    ThreadLocal slot;
    int mine = 0;
    EXPECT_EQ(slot.Get(), nullptr);
    slot.Set(&mine);
    EXPECT_EQ(slot.Get(), &mine);
    std::thread([&] {
        int others = 0;
        EXPECT_EQ(slot.Get(), nullptr);
        slot.Set(&others);
        EXPECT_EQ(slot.Get(), &others);
    }).join();
    EXPECT_EQ(slot.Get(), &mine);
    slot.Set(nullptr);
    EXPECT_EQ(slot.Get(), nullptr);
}

TEST(ThreadLocal, GivesItsSlotBack) {
    const size_t before = test::CountFreeTlsSlots();
    {
        const ThreadLocal first;
        const ThreadLocal second;
        EXPECT_EQ(test::CountFreeTlsSlots(), before - 2);
    }
    EXPECT_EQ(test::CountFreeTlsSlots(), before);
}

// A slot that another owner used before begins empty.
TEST(ThreadLocal, BeginsEmpty) {
    int value = 0;
    {
        ThreadLocal slot;
        slot.Set(&value);
    }
    const ThreadLocal slot;
    EXPECT_EQ(slot.Get(), nullptr);
}

TEST(ThreadLocalFailure, WithoutAFreeSlot) {
    const test::ImportHook hook("KERNEL32.dll", "TlsAlloc", &NoSlot, GetModuleHandleW(nullptr));
    EXPECT_EQ(FailureOfMaking(), "Out of TLS indices");
}

TEST(ThreadLocalFailure, WithoutMemoryForTheIndexGivesTheSlotBack) {
    const size_t before = test::CountFreeTlsSlots();
    failNothrowNew = true;
    const std::string text = FailureOfMaking();
    failNothrowNew = false;
    EXPECT_EQ(text, "ThreadLocal is not valid");
    EXPECT_EQ(test::CountFreeTlsSlots(), before);
}

TEST(ThreadLocalFailure, WithoutAFirstStoreGivesTheSlotBack) {
    const size_t before = test::CountFreeTlsSlots();
    std::string text;
    {
        const test::ImportHook hook("KERNEL32.dll", "TlsSetValue", &NoStore, GetModuleHandleW(nullptr));
        text = FailureOfMaking();
    }
    EXPECT_EQ(text, "Failed to set TLS value");
    EXPECT_EQ(test::CountFreeTlsSlots(), before);
}

TEST(ThreadLocalFailure, OfALaterStoreKeepsTheOlderPointer) {
    ThreadLocal slot;
    int older = 0;
    int later = 0;
    slot.Set(&older);
    std::string text;
    {
        const test::ImportHook hook("KERNEL32.dll", "TlsSetValue", &NoStore, GetModuleHandleW(nullptr));
        try {
            slot.Set(&later);
        } catch (const QuarlinException& failure) {
            text = failure.what();
            EXPECT_EQ(failure.code, QLERR_INTERNAL_ERROR);
        }
    }
    EXPECT_EQ(text, "Failed to set TLS value");
    EXPECT_EQ(slot.Get(), &older);
}

}  // namespace
}  // namespace quarlin
