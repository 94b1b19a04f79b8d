// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>

namespace quarlin::test {

// While it is set, the heap has nothing for those who ask without wanting an exception.
extern std::atomic<bool> heapIsExhausted;

// Blocks that this program has taken from the heap since it began.
long AllocationsSoFar();

}  // namespace quarlin::test
