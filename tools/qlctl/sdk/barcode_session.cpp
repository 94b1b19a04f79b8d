// SPDX-License-Identifier: Apache-2.0
#include "sdk/barcode_session.h"

#include "quarlin/barcode.h"
#include "sdk/check.h"

#include <array>
#include <deque>
#include <mutex>

namespace quarlin::qlctl {
namespace {

constexpr int kMostScanners = 16;
// More than an engine's answer holds.
constexpr size_t kTextRoom = 8192;

// From the library's thread to the main thread. Process-wide, because the callback gets no argument.
class ScanQueue {
  public:
    void Put(BarcodeScan scan) {
        const std::lock_guard lock(mutex_);
        scans_.push_back(std::move(scan));
    }
    std::optional<BarcodeScan> Take() {
        const std::lock_guard lock(mutex_);
        if (scans_.empty()) {
            return std::nullopt;
        }
        BarcodeScan scan = std::move(scans_.front());
        scans_.pop_front();
        return scan;
    }
    void Clear() {
        const std::lock_guard lock(mutex_);
        scans_.clear();
    }

  private:
    std::mutex mutex_;
    std::deque<BarcodeScan> scans_;
};

ScanQueue scanQueue;

std::vector<std::uint8_t> CopyOf(const std::uint8_t* bytes, std::int32_t length) {
    return bytes != nullptr && length > 0 ? std::vector(bytes, bytes + length) : std::vector<std::uint8_t>();
}

void OnScan(const QLBCR_BARCODE_DATA* scan) noexcept {
    scanQueue.Put(
        {scan->deviceIndex, CopyOf(scan->symbologyId, scan->symbologyIdLength), CopyOf(scan->data, scan->dataLength)});
}

std::string Text(QLerr (*getter)(char*, unsigned int*)) {
    std::vector<char> text(kTextRoom);
    auto size = static_cast<unsigned int>(text.size());
    Check(getter(text.data(), &size));
    return text.data();
}

template <typename Value>
bool IsOn(QLerr (*getter)(Value*)) {
    Value value{};
    Check(getter(&value));
    return value != 0;
}

}  // namespace

std::vector<BarcodeScanner> FindScanners(Scanners which) {
    Check(QLBCR_SetAllowExternalBarcodeDevice(which == Scanners::kExternal ? 1 : 0));
    std::array<QLBCR_DEVICE_INFO, kMostScanners> infos{};
    int count = kMostScanners;
    Check(QLBCR_GetBarcodeDevices(infos.data(), &count));
    std::vector<BarcodeScanner> scanners;
    for (size_t at = 0; at < static_cast<size_t>(count); ++at) {
        const QLBCR_DEVICE_INFO& info = infos.at(at);
        scanners.push_back({info.index, info.deviceName, info.iDeviceType == 1, info.linkKind, info.linkFlag});
    }
    return scanners;
}

BarcodeSession::Initialized::Initialized(Scanners which) {
    if (FindScanners(which).empty()) {
        throw Failure(ExitStatus::kNoDevice, "no barcode scanner is there");
    }
    Check(QLBCR_Initialize());
}

BarcodeSession::Initialized::~Initialized() {
    QLBCR_Uninitialize();
}

BarcodeSession::Enabled::Enabled() {
    Check(QLBCR_Enable());
}

BarcodeSession::Enabled::~Enabled() {
    QLBCR_Disable();
}

BarcodeSession::BarcodeSession(Scanners which) : initialized_(which), enabled_() {
    // What an earlier session left; nothing is added until the callback is set.
    scanQueue.Clear();
    Check(QLBCR_SetCallback(OnScan));
}

std::string BarcodeSession::Name() const {
    return Text(QLBCR_GetDeviceName);
}

std::string BarcodeSession::FirmwareVersion() const {
    return Text(QLBCR_GetDeviceFirmwareVersion);
}

bool BarcodeSession::IsEnabled() const {
    return IsOn(QLBCR_IsEnabled);
}

void BarcodeSession::Apply(const ScanSettings& settings) {
    const unsigned asTop = settings.isInside ? 0 : 1;
    const EditRule& edit = settings.edit;
    Check(QLBCR_SetPrefixData(asTop, settings.prefix.c_str()));
    Check(QLBCR_SetSuffixData(asTop, settings.suffix.c_str()));
    Check(QLBCR_SetDataEditingMode(edit.mode, edit.target.c_str(), edit.content.c_str(), edit.start, edit.end));
    if (!settings.soundFile.empty()) {
        Check(QLBCR_SetReadSuccessSoundFile(ToWide(settings.soundFile).c_str()));
    }
    Check(QLBCR_SetSoundEnabled(settings.hasSound ? 1 : 0));
}

void BarcodeSession::StartScanning() {
    Check(QLBCR_StartScanning());
}

void BarcodeSession::StopScanning() {
    Check(QLBCR_StopScanning());
}

std::optional<BarcodeScan> BarcodeSession::TakeScan() {
    return scanQueue.Take();
}

void BarcodeSession::EnableSymbology(const Symbology& symbology, bool enable) {
    Check(QLBCR_EnableSymbologies(enable ? 1 : 0, symbology.value));
}

void BarcodeSession::SetTriggerMode(unsigned mode) {
    Check(QLBCR_SetTriggerMode(mode));
}

void BarcodeSession::SetHardwareTrigger(bool on) {
    Check(QLBCR_SetHardwareTriggerEnabled(on ? 1 : 0));
}

bool BarcodeSession::IsHardwareTriggerOn() const {
    return IsOn(QLBCR_IsHardwareTriggerEnabled);
}

}  // namespace quarlin::qlctl
