// SPDX-License-Identifier: Apache-2.0
#include "failing_allocation.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t leastToFail = SIZE_MAX;

}  // namespace

namespace quarlin::test {

FailingAllocation::FailingAllocation(std::size_t least) {
    leastToFail = least;
}

FailingAllocation::~FailingAllocation() {
    leastToFail = SIZE_MAX;
}

bool FailingAllocation::Happened() const {
    return leastToFail == SIZE_MAX;
}

}  // namespace quarlin::test

void* operator new(std::size_t size) {
    if (size >= leastToFail) {
        leastToFail = SIZE_MAX;
        throw std::bad_alloc();
    }
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
