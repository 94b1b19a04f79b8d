// SPDX-License-Identifier: Apache-2.0
#include "support/resource_count_win.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <stdexcept>

namespace quarlin::test {
// Asks for each number that a handle may have. The system's own table of all handles is not used: the server of Wine 8
// crashes over it now and then when another process of the machine starts or ends meanwhile.
size_t CountOpenHandles() {
    constexpr uintptr_t kStep = 4;
    // A handle gets the lowest number that is free: behind a gap like this there are none.
    constexpr uintptr_t kGap = kStep * 1024;
    size_t count = 0;
    uintptr_t last = 0;
    for (uintptr_t number = kStep; number <= last + kGap; number += kStep) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags)) {
            ++count;
            last = number;
        }
    }
    return count;
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
