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

  private:
    friend class CSmartCriticalWrapper;

    CRITICAL_SECTION section_{};
    std::int32_t initialized_ = 0;
    std::int32_t lockCount_ = 0;
};

// Holds a critical section while it lives; does nothing for one that was not initialised.
class CSmartCriticalWrapper {
  public:
    explicit CSmartCriticalWrapper(CSmartCritical& guarded) : guarded_(&guarded) {
        if (guarded_->initialized_ != 0) {
            EnterCriticalSection(&guarded_->section_);
            ++guarded_->lockCount_;
        }
    }
    CSmartCriticalWrapper(const CSmartCriticalWrapper&) = delete;
    CSmartCriticalWrapper& operator=(const CSmartCriticalWrapper&) = delete;
    virtual ~CSmartCriticalWrapper() {
        if (guarded_->initialized_ != 0) {
            --guarded_->lockCount_;
            LeaveCriticalSection(&guarded_->section_);
        }
    }

  private:
    CSmartCritical* guarded_;
};

}  // namespace quarlin
