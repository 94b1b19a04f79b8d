// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace quarlin::test {

// While it lives, the first operator new of the calling thread for this many bytes or more throws std::bad_alloc.
class FailingAllocation {
  public:
    explicit FailingAllocation(std::size_t least);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    bool Happened() const;
};

}  // namespace quarlin::test
