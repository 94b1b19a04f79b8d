// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/smart_critical_win.h"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace quarlin {

// A recursive lock for which a thread may wait that is called back before it gets it. That is what keeps a thread that
// delivers and a call that waits for its end from waiting for each other.
class InterruptibleLock {
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
class InterruptibleLockHolder {
  public:
    explicit InterruptibleLockHolder(InterruptibleLock& lock) : lock_(&lock) { lock_->Enter(); }
    // The thread has entered it already.
    InterruptibleLockHolder(InterruptibleLock& lock, std::adopt_lock_t) : lock_(&lock) {}
    InterruptibleLockHolder(const InterruptibleLockHolder&) = delete;
    InterruptibleLockHolder& operator=(const InterruptibleLockHolder&) = delete;
    ~InterruptibleLockHolder() { lock_->Leave(); }

  private:
    InterruptibleLock* lock_;
};

}  // namespace quarlin
