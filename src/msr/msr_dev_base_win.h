// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/smart_critical_win.h"
#include "msr/msr_dev.h"

#include <atomic>
#include <memory>

namespace quarlin::msr {

// What readers of every make share: the listener, the enabled flag and the lock. Locks are taken in the order family,
// manager, reader, HID device, on every path.
class CMSRDev : public IMSRDev {
  public:
    bool Initialize() override { return lock_.IsInitialized(); }
    bool Uninitialize() override { return true; }
    bool Enable(bool enable) override;
    bool IsEnabled() override;
    bool SetListener(IMSRDevListener* listener) override;
    bool ClearListener() override;

  protected:
    // Null when none is set, or when it is gone.
    std::shared_ptr<IMSRDevListener> Listener();
    CSmartCritical& ReaderLock() { return lock_; }

  private:
    std::weak_ptr<IMSRDevListener> listener_;
    // Cleared by the reading thread as well.
    std::atomic<bool> enabled_ = false;
    CSmartCritical lock_;
};

}  // namespace quarlin::msr
