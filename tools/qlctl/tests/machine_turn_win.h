// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "child_process_win.h"

#include <stdexcept>

namespace quarlin::qlctl {

// Something that all programs of the machine share, for this test alone: other test programs wait for the same mutex.
class MachineTurn {
  public:
    explicit MachineTurn(const wchar_t* mutexName) : mutex_(CreateMutexW(nullptr, FALSE, mutexName)) {
        constexpr DWORD kPatienceMs = 150000;
        const DWORD result = WaitForSingleObject(mutex_.get(), kPatienceMs);
        // Abandoned: another test program ended in the middle, and its devices went with it.
        if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) {
            throw std::runtime_error("other test programs did not end their turn");
        }
    }
    ~MachineTurn() { ReleaseMutex(mutex_.get()); }
    MachineTurn(const MachineTurn&) = delete;
    MachineTurn& operator=(const MachineTurn&) = delete;

  private:
    UniqueHandle mutex_;
};

}  // namespace quarlin::qlctl
