// SPDX-License-Identifier: Apache-2.0
#include "msr/magnesafe_reader_win.h"

#include "msr/feature_command.h"
#include "msr/swipe_report.h"

#include <optional>
#include <utility>

namespace quarlin::msr {

CMSRDevMagtekMagneSafeV5::~CMSRDevMagtekMagneSafeV5() {
    CMSRDevMagtekMagneSafeV5::Uninitialize();
}

bool CMSRDevMagtekMagneSafeV5::Initialize() {
    if (!CMSRDev::Initialize()) {
        return false;
    }
    const CSmartCriticalWrapper held(ReaderLock());
    if (!hid_.UpdateDeviceList()) {
        return false;
    }
    initialized_ = hid_.SetListener(this) && ReadIdentity();
    if (!initialized_) {
        Uninitialize();
    }
    return initialized_;
}

bool CMSRDevMagtekMagneSafeV5::ReadIdentity() {
    if (!OpenHid()) {
        return false;
    }
    const bool read = ReadSerialNumber() && ReadSoftwareId() && ReadSecurityMode();
    CloseHid();
    return read;
}

bool CMSRDevMagtekMagneSafeV5::Uninitialize() {
    const CSmartCriticalWrapper held(ReaderLock());
    Stop();
    CloseHid();
    hid_.ClearListener();
    hid_.Uninitialize();
    devicePath_.clear();
    serialNumber_.clear();
    softwareId_.clear();
    securityLevel_ = 0;
    encryptionEnabled_ = false;
    initialized_ = false;
    return true;
}

bool CMSRDevMagtekMagneSafeV5::GetName(std::wstring& name) {
    const CSmartCriticalWrapper held(ReaderLock());
    if (!initialized_) {
        return false;
    }
    name = L"MAGTEK(USB)";
    return true;
}

bool CMSRDevMagtekMagneSafeV5::GetSerialNumber(std::wstring& serialNumber) {
    const CSmartCriticalWrapper held(ReaderLock());
    if (!initialized_) {
        return false;
    }
    serialNumber = serialNumber_;
    return true;
}

// Without the lock: the text is written before the reader is known to anybody but its maker.
bool CMSRDevMagtekMagneSafeV5::GetSoftwareId(std::wstring& softwareId) {
    if (!initialized_) {
        return false;
    }
    softwareId = softwareId_;
    return true;
}

bool CMSRDevMagtekMagneSafeV5::GetVendor(MagStripeVendor& vendor) {
    const CSmartCriticalWrapper held(ReaderLock());
    if (!initialized_) {
        return false;
    }
    vendor = MAG_STRIPE_VENDOR_MAGTEK;
    return true;
}

bool CMSRDevMagtekMagneSafeV5::IsEncryptionEnabled() {
    const CSmartCriticalWrapper held(ReaderLock());
    return initialized_ && encryptionEnabled_;
}

bool CMSRDevMagtekMagneSafeV5::IsSameDevice(const IMSRDev& other) const {
    const auto* const reader = dynamic_cast<const CMSRDevMagtekMagneSafeV5*>(&other);
    return reader != nullptr && reader->devicePath_ == devicePath_;
}

bool CMSRDevMagtekMagneSafeV5::ReadSerialNumber() {
    return ReadProperty(kGetSerialNumber, serialNumber_);
}

bool CMSRDevMagtekMagneSafeV5::ReadSoftwareId() {
    return ReadProperty(kGetSoftwareId, softwareId_);
}

bool CMSRDevMagtekMagneSafeV5::ReadSecurityMode() {
    if (!hid_.IsOpen() || !ReadSecurityLevel()) {
        return false;
    }
    encryptionEnabled_ = securityLevel_ >= kEncryptingSecurityLevel;
    return true;
}

bool CMSRDevMagtekMagneSafeV5::ReadSecurityLevel() {
    std::vector<std::uint8_t> reply;
    if (!AskReader(kGetSecurityLevel, reply)) {
        return false;
    }
    const std::optional<std::uint8_t> level = SecurityLevel(reply);
    securityLevel_ = level.value_or(securityLevel_);
    return level.has_value();
}

bool CMSRDevMagtekMagneSafeV5::ReadProperty(std::span<const std::uint8_t> request, std::wstring& text) {
    std::vector<std::uint8_t> reply;
    if (!AskReader(request, reply)) {
        return false;
    }
    text = PropertyText(reply);
    return true;
}

bool CMSRDevMagtekMagneSafeV5::AskReader(std::span<const std::uint8_t> request, std::vector<std::uint8_t>& reply) {
    return hid_.SetFeatureReport(request.data(), static_cast<std::uint32_t>(request.size())) &&
           hid_.GetFeatureReport(reply);
}

bool CMSRDevMagtekMagneSafeV5::OpenHid() {
    return hid_.IsOpen() || hid_.Open(devicePath_);
}

bool CMSRDevMagtekMagneSafeV5::CloseHid() {
    return !hid_.IsOpen() || hid_.Close();
}

bool CMSRDevMagtekMagneSafeV5::Enable(bool enable) {
    const CSmartCriticalWrapper held(ReaderLock());
    if (!enable) {
        Stop();
        return true;
    }
    if (!initialized_) {
        return false;
    }
    if (IsEnabled()) {
        return true;
    }
    // A thread that ended by itself is still stored: callers rely on having to disable such a reader first.
    return !thread_.IsStored() && OpenHid() && Start();
}

bool CMSRDevMagtekMagneSafeV5::Start() {
    try {
        auto run = std::make_shared<Run>();
        if (thread_.Start([self = shared_from_this(), run] { self->ReadLoop(*run); })) {
            run_ = std::move(run);
            return CMSRDev::Enable(true);
        }
    } catch (const std::bad_alloc&) {
        // As if there were no thread.
    }
    CloseHid();
    return false;
}

void CMSRDevMagtekMagneSafeV5::Stop() {
    constexpr DWORD kLongestWait = 10000;  // milliseconds
    CMSRDev::Enable(false);
    if (!thread_.IsStored()) {
        return;
    }
    run_->stopping = true;
    hid_.CancelRead();
    if (run_->deliveringTo != nullptr) {
        run_->deliveringTo->EndWaits();
    }
    // A callback that disables its own reader cannot be waited for: its thread ends after it has returned. A thread
    // that is over need not be, and while the library is unloaded it cannot end before the unloading has.
    if (!thread_.IsCurrent() && !run_->over) {
        const CSmartCriticalRelease released(ReaderLock());
        thread_.Wait(kLongestWait);
    }
    CloseHid();
    thread_.Forget();
    run_.reset();
}

void CMSRDevMagtekMagneSafeV5::ReadLoop(Run& run) {
    {
        // Whoever started the thread holds the lock until the reader counts as enabled.
        const CSmartCriticalWrapper held(ReaderLock());
        if (!IsEnabled()) {
            return;
        }
    }
    while (!run.stopping) {
        bool read = false;
        try {
            read = hid_.ReadInputReport();
        } catch (const std::bad_alloc&) {
            // No room for a report: as good as no device.
        }
        if (!read) {
            const CSmartCriticalWrapper held(ReaderLock());
            run.over = true;
            if (run_.get() == &run) {
                CMSRDev::Enable(false);
            }
            return;
        }
    }
}

void CMSRDevMagtekMagneSafeV5::AroundInputReport(const std::function<void()>& deliver) {
    std::shared_ptr<Run> run;
    std::shared_ptr<IMSRDevListener> listener;
    {
        const CSmartCriticalWrapper held(ReaderLock());
        run = run_;
        listener = Listener();
        if (run == nullptr || run->stopping || listener == nullptr) {
            return;
        }
        run->deliveringTo = listener;
    }
    // The outer locks first. A caller that holds them and stops this reader ends the wait, and the swipe is dropped.
    auto withReaderLock = [&] {
        const CSmartCriticalWrapper held(ReaderLock());
        deliver();
    };
    listener->AroundSwipe(run->stopping, std::ref(withReaderLock));
    const CSmartCriticalWrapper held(ReaderLock());
    run->deliveringTo.reset();
}

void CMSRDevMagtekMagneSafeV5::OnInputReport(const std::vector<std::uint8_t>& report) {
    const CSmartCriticalWrapper held(ReaderLock());
    const std::shared_ptr<IMSRDevListener> listener = Listener();
    if (listener == nullptr || !IsEnabled() || report.size() != kSwipeReportSize) {
        return;
    }
    try {
        const SwipeRecord record(std::span<const std::uint8_t, kSwipeReportSize>(report.data(), report.size()));
        listener->OnCardSwiped(&record.Data());
    } catch (...) {
        // Without memory the swipe is lost. What a callback throws goes no further: there is nobody to catch it.
    }
}

}  // namespace quarlin::msr
