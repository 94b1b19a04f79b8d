// SPDX-License-Identifier: Apache-2.0
#include "core/interruptible_lock_win.h"

namespace quarlin {

bool InterruptibleLock::EnterUnless(const std::atomic<bool>& stopping) {
    if (stopping) {
        return false;
    }
    if (lock_.TryEnter()) {
        return true;
    }
    // Counted before the next try: whoever leaves the lock after that try has failed sees a waiter.
    ++waiters_;
    bool entered = false;
    AcquireSRWLockExclusive(&noticeLock_);
    while (!stopping && !(entered = lock_.TryEnter())) {
        const std::uint64_t seen = notices_;
        while (notices_ == seen) {
            SleepConditionVariableSRW(&noticed_, &noticeLock_, INFINITE, 0);
        }
    }
    ReleaseSRWLockExclusive(&noticeLock_);
    --waiters_;
    return entered;
}

void InterruptibleLock::Leave() {
    lock_.Leave();
    if (waiters_ > 0) {
        Notify();
    }
}

void InterruptibleLock::EndWaits() {
    Notify();
}

void InterruptibleLock::Notify() {
    AcquireSRWLockExclusive(&noticeLock_);
    ++notices_;
    ReleaseSRWLockExclusive(&noticeLock_);
    WakeAllConditionVariable(&noticed_);
}

}  // namespace quarlin
