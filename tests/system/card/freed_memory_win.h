// SPDX-License-Identifier: Apache-2.0
// Keeps what the library frees, to see whether anybody still writes there.
#pragma once

#include <cstddef>
#include <memory>

#include "support/import_hook_win.h"

namespace quarlin::test {

// While it lives, no block that the library frees goes back to the heap: it is filled with a pattern and kept. One at a
// time; begin and end it while no reader is enabled.
class FreedMemory {
  public:
    FreedMemory();
    FreedMemory(const FreedMemory&) = delete;
    FreedMemory& operator=(const FreedMemory&) = delete;
    // Gives the blocks back.
    ~FreedMemory();

    std::size_t Blocks() const;
    // How many of the blocks are no longer as they were left.
    std::size_t WrittenBlocks() const;
    // Whether the address is in one of them.
    bool Contains(const void* address) const;

  private:
    ImportHook hook_;
};

}  // namespace quarlin::test
