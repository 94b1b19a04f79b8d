// SPDX-License-Identifier: Apache-2.0
#include "msr/card_reader_family.h"

#include "core/quarlin_exception.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace quarlin::msr {

CardReaderFamily cardReaderFamily;

void CardReaderFamily::Initialize() {
    Require(lock_.IsInitialized(), QLERR_INTERNAL_ERROR, "Could not initialize critical section.");
    if (manager_ != nullptr) {
        Uninitialize();
    }
    manager_ = CreateQlMagStripeMgr(lock_);
    Require(manager_ != nullptr, QLERR_INTERNAL_ERROR, "Could not create IQlMagStripeMgr instance.");
    // A manager that is not valid stays all the same: callers see the failure, and the next try replaces it.
    Require(manager_->IsValid(), QLERR_INTERNAL_ERROR, "fail initialize IQlMagStripeMgr.");
}

void CardReaderFamily::Uninitialize() {
    selectedIndex_ = 0;
    if (manager_ != nullptr) {
        manager_->Uninitialize();
        std::exchange(manager_, nullptr)->Destroy();
    }
}

IQlMagStripeMgr& CardReaderFamily::Manager(const char* missing) const {
    Require(manager_ != nullptr, QLERR_INVALID_STATE, missing);
    return *manager_;
}

void CardReaderFamily::ListReaders(MagStripeReaderInfo* readers, int& count) {
    try {
        Require(manager_->ScanDevices(), QLERR_INTERNAL_ERROR, "fail MSR devices scan.");
        std::vector<MagStripeReaderInfo> list;
        Require(manager_->GetDevices(list), QLERR_INTERNAL_ERROR, "fail query devices description.");
        const int capacity = std::exchange(count, static_cast<int>(list.size()));
        Require(list.empty() || capacity >= count, QLERR_INVALID_ARGUMENT, "readers buffer is too small.");
        std::ranges::copy(list, readers);
    } catch (const std::bad_alloc&) {
        Fail(QLERR_INTERNAL_ERROR, "memory allocate error.");
    }
}

void CardReaderFamily::Select(std::int32_t index) {
    const std::uint64_t readers = Manager().GetDeviceCount();
    // -1 passes and stands for no reader.
    const std::int64_t next = std::int64_t{index} + 1;
    Require(next >= 0 && static_cast<std::uint64_t>(next) <= readers, QLERR_INVALID_ARGUMENT,
            "Not valid device index.");
    selectedIndex_ = index;
}

void CardReaderFamily::EnableSelected(bool enable) {
    Require(Manager().EnableDevice(selectedIndex_, enable), QLERR_INTERNAL_ERROR, "fail device enabled.");
}

bool CardReaderFamily::IsSelectedEnabled() const {
    bool enabled = false;
    Require(Manager().IsDeviceEnabled(selectedIndex_, enabled), QLERR_INTERNAL_ERROR, "fail check enabled status.");
    return enabled;
}

}  // namespace quarlin::msr
