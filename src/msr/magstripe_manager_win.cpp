// SPDX-License-Identifier: Apache-2.0
#include "msr/magstripe_manager_win.h"

#include "core/bounded_text.h"
#include "msr/magnesafe_factory_win.h"
#include "msr/swipe_report.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <set>
#include <string>

namespace quarlin::msr {

namespace {

// Runs a step that may run out of memory; that counts as a failure.
template <typename Step>
bool Succeeds(Step step) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// What does not fit the field is cut.
template <std::size_t size>
void CopyText(wchar_t (&field)[size], const std::wstring& text) {
    static_cast<void>(BoundedCopy(field, static_cast<std::int32_t>(size), text.c_str()));
}

bool Describe(IMSRDev& reader, MagStripeReaderInfo& info) {
    std::wstring name;
    std::wstring serialNumber;
    std::wstring softwareId;
    if (!reader.GetVendor(info.vendor) || !reader.GetName(name) || !reader.GetSerialNumber(serialNumber) ||
        !reader.GetSoftwareId(softwareId)) {
        return false;
    }
    CopyText(info.name, name);
    CopyText(info.serialNumber, serialNumber);
    CopyText(info.softwareId, softwareId);
    info.encryptionEnabled = reader.IsEncryptionEnabled() ? 1 : 0;
    return true;
}

}  // namespace

IQlMagStripeMgr* CreateQlMagStripeMgr(InterruptibleLock& callersLock) {
    return CQlMagStripeMgr::Create(callersLock).get();
}

std::shared_ptr<CQlMagStripeMgr> CQlMagStripeMgr::Create(InterruptibleLock& callersLock) {
    try {
        auto manager = std::make_shared<CQlMagStripeMgr>(callersLock);
        manager->self_ = manager;
        return manager;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

CQlMagStripeMgr::~CQlMagStripeMgr() {
    CQlMagStripeMgr::ClearDevices();
}

bool CQlMagStripeMgr::Uninitialize() {
    const CSmartCriticalWrapper held(lock_);
    ClearDevices();
    return true;
}

void CQlMagStripeMgr::ClearDevices() {
    const CSmartCriticalWrapper held(lock_);
    while (!readers_.empty()) {
        const auto first = readers_.begin();
        first->second->Uninitialize();
        readers_.erase(first);
    }
}

bool CQlMagStripeMgr::ScanDevices() {
    const CSmartCriticalWrapper held(lock_);
    const bool scanned = Succeeds([&] { return Rescan(); });
    if (!scanned) {
        ClearDevices();
    }
    return scanned;
}

bool CQlMagStripeMgr::Rescan() {
    MSRDevs found;
    if (!CMSRDevFactoryMagtekSfV5().CreateDevices(found)) {
        return false;
    }
    if (found.empty()) {
        ClearDevices();
        return true;
    }
    const std::vector<std::int32_t> enabled = EnabledIndexes();
    if (!SetDevicesEnabled(enabled, false)) {
        return false;
    }
    std::set<std::int32_t> kept;
    for (const std::shared_ptr<IMSRDev>& fresh : found) {
        const std::int32_t index = Adopt(fresh);
        if (index < 0) {
            return false;
        }
        kept.insert(index);
    }
    for (auto reader = readers_.begin(); reader != readers_.end();) {
        if (kept.contains(reader->first)) {
            ++reader;
        } else {
            reader->second->Uninitialize();
            reader = readers_.erase(reader);
        }
    }
    return SetDevicesEnabled(enabled, true);
}

std::vector<std::int32_t> CQlMagStripeMgr::EnabledIndexes() const {
    std::vector<std::int32_t> indexes;
    for (const auto& [index, reader] : readers_) {
        if (reader->IsEnabled()) {
            indexes.push_back(index);
        }
    }
    return indexes;
}

std::int32_t CQlMagStripeMgr::Adopt(const std::shared_ptr<IMSRDev>& fresh) {
    const auto known =
        std::ranges::find_if(readers_, [&](const auto& entry) { return entry.second->IsSameDevice(*fresh); });
    if (known != readers_.end()) {
        return known->first;
    }
    // The map is in the order of its keys, so that the first gap is the smallest free index.
    std::int32_t index = 0;
    for (const auto& [taken, reader] : readers_) {
        if (taken != index) {
            break;
        }
        ++index;
    }
    if (!fresh->Initialize()) {
        return -1;
    }
    readers_.emplace(index, fresh);
    return index;
}

std::uint64_t CQlMagStripeMgr::GetDeviceCount() {
    const CSmartCriticalWrapper held(lock_);
    return readers_.size();
}

bool CQlMagStripeMgr::GetDevices(std::vector<MagStripeReaderInfo>& readers) {
    const CSmartCriticalWrapper held(lock_);
    readers.clear();
    for (const auto& [index, reader] : readers_) {
        MagStripeReaderInfo info{};
        info.index = index;
        if (!Describe(*reader, info)) {
            break;
        }
        readers.push_back(info);
    }
    return true;
}

bool CQlMagStripeMgr::EnableDevice(std::int32_t index, bool enable) {
    const CSmartCriticalWrapper held(lock_);
    // An index equal to the count is looked up: after an unplugged reader has left a gap it may well be known. A larger
    // one is refused even when it is.
    if (index < 0 || static_cast<std::uint64_t>(index) > readers_.size()) {
        return false;
    }
    IMSRDev* const reader = Find(index);
    if (reader == nullptr || !(enable ? reader->SetListener(this) : reader->ClearListener())) {
        return false;
    }
    if (!reader->Enable(enable)) {
        reader->ClearListener();
        return false;
    }
    return true;
}

bool CQlMagStripeMgr::IsDeviceEnabled(std::int32_t index, bool& enabled) {
    const CSmartCriticalWrapper held(lock_);
    IMSRDev* const reader = Find(index);
    if (reader == nullptr) {
        return false;
    }
    enabled = reader->IsEnabled();
    return true;
}

bool CQlMagStripeMgr::AddCallback(QLMSR_Callback callback, std::uint32_t& id) {
    const CSmartCriticalWrapper held(lock_);
    return Succeeds([&] {
        id = callbacks_.Add(callback);
        return id != 0;
    });
}

bool CQlMagStripeMgr::RemoveCallback(std::int32_t id) {
    const CSmartCriticalWrapper held(lock_);
    return callbacks_.Remove(static_cast<std::uint32_t>(id));
}

bool CQlMagStripeMgr::ClearCallbacks() {
    const CSmartCriticalWrapper held(lock_);
    callbacks_.Clear();
    return true;
}

bool CQlMagStripeMgr::GetMagTekExtras(const MagStripeData* record, MagTekExtras* extras) {
    const CSmartCriticalWrapper held(lock_);
    return ReadMagTekExtras(*record, *extras);
}

bool CQlMagStripeMgr::SetDevicesEnabled(const std::vector<std::int32_t>& indexes, bool enable) {
    const CSmartCriticalWrapper held(lock_);
    return std::ranges::all_of(indexes, [&](std::int32_t index) {
        IMSRDev* const reader = Find(index);
        return reader == nullptr || reader->Enable(enable);
    });
}

void CQlMagStripeMgr::Destroy() {
    // The swipe that is being delivered, if there is one, ends with the callback that gives the manager up.
    ClearCallbacks();
    self_.reset();
}

void CQlMagStripeMgr::DispatchSwipe(const MagStripeData* record) {
    const CSmartCriticalWrapper held(lock_);
    callbacks_.Invoke(*record);
}

void CQlMagStripeMgr::OnCardSwiped(const MagStripeData* record) {
    const CSmartCriticalWrapper held(lock_);
    DispatchSwipe(record);
}

void CQlMagStripeMgr::AroundSwipe(const std::atomic<bool>& stopping, const std::function<void()>& deliver) {
    if (callersLock_.EnterUnless(stopping)) {
        const InterruptibleLockHolder callersHeld(callersLock_, std::adopt_lock);
        const CSmartCriticalWrapper held(lock_);
        deliver();
    }
}

IMSRDev* CQlMagStripeMgr::Find(std::int32_t index) const {
    const auto found = readers_.find(index);
    return found != readers_.end() ? found->second.get() : nullptr;
}

}  // namespace quarlin::msr
