// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>

#include "support/import_hook_win.h"

namespace quarlin::test {

// Denies the library memory once: one of the allocations of the thread that made this object fails. One at a time.
class FailingAllocation {
  public:
    // The one with this number, counted from 1, among those of at least so many bytes.
    explicit FailingAllocation(int number, std::size_t bytes = 0) {
        failing_ = number;
        smallest_ = bytes;
        seen_ = 0;
        thread_ = GetCurrentThreadId();
    }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation() { thread_ = 0; }

    // Otherwise the library has asked for less.
    bool HasFailed() const { return seen_ >= failing_; }

  private:
    static void* Allocate(std::size_t size) {
        if (GetCurrentThreadId() == thread_ && size >= smallest_ && ++seen_ == failing_) {
            return nullptr;
        }
        return SystemFunction<void*(std::size_t)>("msvcrt.dll", "malloc")(size);
    }

    inline static std::atomic<int> failing_ = 0;
    inline static std::atomic<std::size_t> smallest_ = 0;
    inline static std::atomic<int> seen_ = 0;
    inline static std::atomic<DWORD> thread_ = 0;
    ImportHook hook_{"msvcrt.dll", "malloc", &Allocate};
};

}  // namespace quarlin::test
