// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>
#include <cstdint>

namespace quarlin {

// One critical section. It may fail to come into being; whoever uses it asks IsInitialized.
class CSmartCritical {
  public:
    enum class Setup {
        kNoDebugInfo,  // what a family's lock is made with
        kPlain,        // with the system's debug information
        kUnchecked,    // counts as initialised whatever happens
    };

    explicit CSmartCritical(Setup setup = Setup::kNoDebugInfo);
    CSmartCritical(const CSmartCritical&) = delete;
    CSmartCritical& operator=(const CSmartCritical&) = delete;
    virtual ~CSmartCritical();

    bool IsInitialized() const { return initialized_ != 0; }
    // How many wrappers hold it now. Exact for the holder alone.
    std::int32_t LockCount() const { return lockCount_; }

    // For locks that are built on this one; others use a wrapper. Entering one that was not initialised does nothing
    // and succeeds.
    void Enter() {
        if (initialized_ != 0) {
            EnterCriticalSection(&section_);
            ++lockCount_;
        }
    }
    bool TryEnter() {
        if (initialized_ != 0) {
            if (!TryEnterCriticalSection(&section_)) {
                return false;
            }
            ++lockCount_;
        }
        return true;
    }
    void Leave() {
        if (initialized_ != 0) {
            --lockCount_;
            LeaveCriticalSection(&section_);
        }
    }

  private:
    CRITICAL_SECTION section_{};
    std::int32_t initialized_ = 0;
    std::int32_t lockCount_ = 0;
};

// Holds a critical section while it lives; does nothing for one that was not initialised.
class CSmartCriticalWrapper {
  public:
    explicit CSmartCriticalWrapper(CSmartCritical& guarded) : guarded_(&guarded) { guarded_->Enter(); }
    CSmartCriticalWrapper(const CSmartCriticalWrapper&) = delete;
    CSmartCriticalWrapper& operator=(const CSmartCriticalWrapper&) = delete;
    virtual ~CSmartCriticalWrapper() { guarded_->Leave(); }

  private:
    CSmartCritical* guarded_;
};

// Lets a critical section go while it lives, however often the thread that holds it has entered it; the thread then
// holds it as often again.
class CSmartCriticalRelease {
  public:
    explicit CSmartCriticalRelease(CSmartCritical& held) : held_(&held), levels_(held.LockCount()) {
        for (std::int32_t level = 0; level < levels_; ++level) {
            held_->Leave();
        }
    }
    CSmartCriticalRelease(const CSmartCriticalRelease&) = delete;
    CSmartCriticalRelease& operator=(const CSmartCriticalRelease&) = delete;
    ~CSmartCriticalRelease() {
        for (std::int32_t level = 0; level < levels_; ++level) {
            held_->Enter();
        }
    }

  private:
    CSmartCritical* held_;
    std::int32_t levels_;
};

}  // namespace quarlin
