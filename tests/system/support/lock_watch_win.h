// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <atomic>

#include "support/import_hook_win.h"
#include "support/wait_win.h"

namespace quarlin::test {

// Tells when threads wait for one of the library's locks. One watch at a time.
class LockWatch {
  public:
    // Waits until so many do at once; false when they do not.
    static bool AwaitWaiters(int count) {
        return WaitUntil([&] { return waiters_ >= count; });
    }

  private:
    static void WINAPI WatchedEnter(CRITICAL_SECTION* section) {
        if (!TryEnterCriticalSection(section)) {
            ++waiters_;
            EnterCriticalSection(section);
            --waiters_;
        }
    }

    inline static std::atomic<int> waiters_ = 0;
    ImportHook hook_{"KERNEL32.dll", "EnterCriticalSection", &WatchedEnter};
};

}  // namespace quarlin::test
