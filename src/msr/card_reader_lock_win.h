// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/smart_critical_win.h"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace quarlin::msr {

// The family's lock: recursive, and a thread that waits for it may be called back before it gets it. That is what
// keeps a swipe on its way to the manager and a call that stops the swipe's reader from waiting for each other.
class CardReaderLock {
  public:
    bool IsInitialized() const { return lock_.IsInitialized(); }

    void Enter() { lock_.Enter(); }
    // False, without the lock, when `stopping` is or becomes true.
    bool EnterUnless(const std::atomic<bool>& stopping);
    void Leave();
    // After a `stopping` was set: lets its waiter look.
    void EndWaits();

  private:
    void Notify();

    CSmartCritical lock_;
    // Guarded by noticeLock_: counts what a waiter waits for, so that no notice between its look and its sleep is lost.
    std::uint64_t notices_ = 0;
    SRWLOCK noticeLock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE noticed_ = CONDITION_VARIABLE_INIT;
    std::atomic<int> waiters_ = 0;
};

// Holds it while it lives.
class CardReaderLockHolder {
  public:
    explicit CardReaderLockHolder(CardReaderLock& lock) : lock_(&lock) { lock_->Enter(); }
    // The thread has entered it already.
    CardReaderLockHolder(CardReaderLock& lock, std::adopt_lock_t) : lock_(&lock) {}
    CardReaderLockHolder(const CardReaderLockHolder&) = delete;
    CardReaderLockHolder& operator=(const CardReaderLockHolder&) = delete;
    ~CardReaderLockHolder() { lock_->Leave(); }

  private:
    CardReaderLock* lock_;
};

}  // namespace quarlin::msr
