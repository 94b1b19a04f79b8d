// SPDX-License-Identifier: Apache-2.0
#include "support/resource_count_win.h"

#include <windows.h>
#include <winternl.h>

#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>

namespace quarlin::test {
namespace {

// The system's table of all handles; winternl.h does not have it.
struct HandleEntry {
    void* object;
    uintptr_t processId;
    uintptr_t handle;
    ULONG access;
    USHORT backTrace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};
struct HandleTable {
    uintptr_t count;
    uintptr_t reserved;
    HandleEntry entries[1];
};
constexpr ULONG kExtendedHandleInformation = 64;
constexpr NTSTATUS kLengthMismatch = static_cast<NTSTATUS>(0xC0000004);
using QueryFunction = NTSTATUS(NTAPI*)(ULONG informationClass, void*, ULONG, ULONG*);

// Pages of its own, so that the count leaves the heaps as they are.
struct PageDeleter {
    void operator()(void* pages) const { VirtualFree(pages, 0, MEM_RELEASE); }
};
using Pages = std::unique_ptr<void, PageDeleter>;

QueryFunction QuerySystemInformation() {
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    return reinterpret_cast<QueryFunction>(reinterpret_cast<void*>(address));
}

}  // namespace

size_t CountOpenHandles() {
    const QueryFunction query = QuerySystemInformation();
    for (ULONG size = 1U << 18; size <= 1U << 28; size *= 2) {
        const Pages pages(VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
        ULONG needed = 0;
        const NTSTATUS status = query(kExtendedHandleInformation, pages.get(), size, &needed);
        if (status == kLengthMismatch) {
            continue;
        }
        if (status != 0) {
            break;
        }
        const auto* const table = static_cast<const HandleTable*>(pages.get());
        const HandleEntry* const entries = table->entries;
        size_t own = 0;
        for (uintptr_t i = 0; i < table->count; ++i) {
            own += entries[i].processId == GetCurrentProcessId() ? 1 : 0;
        }
        return own;
    }
    throw std::runtime_error("the system does not list its handles");
}

size_t CountHeapBlocks() {
    std::array<HANDLE, 64> heaps{};
    const DWORD heapCount = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    if (heapCount == 0 || heapCount > heaps.size()) {
        throw std::runtime_error("the system does not list the heaps");
    }
    size_t blocks = 0;
    for (DWORD i = 0; i < heapCount; ++i) {
        HeapLock(heaps[i]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry)) {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        }
        HeapUnlock(heaps[i]);
    }
    return blocks;
}

size_t CountFreeTlsSlots() {
    std::array<DWORD, 1200> slots{};
    size_t count = 0;
    while (count < slots.size()) {
        slots[count] = TlsAlloc();
        if (slots[count] == TLS_OUT_OF_INDEXES) {
            break;
        }
        ++count;
    }
    for (size_t i = 0; i < count; ++i) {
        TlsFree(slots[i]);
    }
    return count;
}

std::ostream& operator<<(std::ostream& out, const ResourceCount& count) {
    return out << count.handles << " handles, " << count.heapBlocks << " heap blocks, " << count.freeTlsSlots
               << " free thread-local slots";
}

ResourceCount CountResources() {
    // The heap comes last: the others leave something on it when they are called for the first time.
    ResourceCount count;
    count.handles = CountOpenHandles();
    count.freeTlsSlots = CountFreeTlsSlots();
    count.heapBlocks = CountHeapBlocks();
    return count;
}

}  // namespace quarlin::test
