// SPDX-License-Identifier: Apache-2.0
#include "msr/msr_dev_base_win.h"

namespace quarlin::msr {

bool CMSRDev::Enable(bool enable) {
    enabled_ = enable;
    return true;
}

bool CMSRDev::IsEnabled() {
    return enabled_;
}

bool CMSRDev::SetListener(IMSRDevListener* listener) {
    const CSmartCriticalWrapper held(lock_);
    if (listener == nullptr) {
        return false;
    }
    listener_ = listener->weak_from_this();
    return true;
}

bool CMSRDev::ClearListener() {
    const CSmartCriticalWrapper held(lock_);
    listener_.reset();
    return true;
}

std::shared_ptr<IMSRDevListener> CMSRDev::Listener() {
    const CSmartCriticalWrapper held(lock_);
    return listener_.lock();
}

}  // namespace quarlin::msr
