// SPDX-License-Identifier: Apache-2.0
// What a process holds, for tests that show that nothing is left behind. Take a count, do the work, take it again;
// warm up before the first count, because the system itself keeps things from a first call.
#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

namespace quarlin::test {

// Open handles of this process, of every kind.
size_t CountOpenHandles();

// Blocks in use in all heaps of this process.
size_t CountHeapBlocks();

// Thread-local slots that this process could still get.
size_t CountFreeTlsSlots();

struct ResourceCount {
    size_t handles = 0;
    size_t heapBlocks = 0;
    size_t freeTlsSlots = 0;

    bool operator==(const ResourceCount&) const = default;
};

std::ostream& operator<<(std::ostream& out, const ResourceCount& count);

ResourceCount CountResources();

}  // namespace quarlin::test
