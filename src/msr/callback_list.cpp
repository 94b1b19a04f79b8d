// SPDX-License-Identifier: Apache-2.0
#include "msr/callback_list.h"

#include <algorithm>

namespace quarlin::msr {

namespace {

// One count for the whole process, so that a number from before QLMSR_Uninitialize never names a newer function.
// Guarded by the family's lock, under which functions are added.
std::uint32_t lastCallbackId = 0;

}  // namespace

std::uint32_t NextCallbackId(std::uint32_t id) {
    ++id;
    return id != 0 ? id : 1;
}

bool CCallbackMgr::SetCallback(QLMSR_Callback callback) {
    if (callback == nullptr) {
        return false;
    }
    callback_ = callback;
    lastCallbackId = NextCallbackId(lastCallbackId);
    id_ = lastCallbackId;
    return true;
}

void CCallbackMgr::Clear() {
    callback_ = nullptr;
    id_ = 0;
}

void CCallbackMgr::Invoke(const MagStripeData& record) const {
    if (callback_ != nullptr) {
        const MagStripeData copy = record;
        callback_(&copy);
    }
}

std::uint32_t CallbackList::Add(QLMSR_Callback callback) {
    CCallbackMgr added;
    callbacks_.reserve(callbacks_.size() + 1);
    if (!added.SetCallback(callback)) {
        return 0;
    }
    callbacks_.push_back(added);
    return added.GetId();
}

bool CallbackList::Remove(std::uint32_t id) {
    const auto found = std::ranges::find(callbacks_, id, &CCallbackMgr::GetId);
    if (found == callbacks_.end()) {
        return false;
    }
    callbacks_.erase(found);
    return true;
}

void CallbackList::Invoke(const MagStripeData& record) const {
    const std::vector<CCallbackMgr> now = callbacks_;
    for (const CCallbackMgr& callback : now) {
        // A function that ran before may have removed it.
        if (std::ranges::find(callbacks_, callback.GetId(), &CCallbackMgr::GetId) != callbacks_.end()) {
            callback.Invoke(record);
        }
    }
}

}  // namespace quarlin::msr
