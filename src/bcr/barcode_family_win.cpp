// SPDX-License-Identifier: Apache-2.0
#include "bcr/barcode_family_win.h"

#include "bcr/settings_change.h"
#include "bcr/window_messages_win.h"
#include "core/quarlin_exception.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace quarlin::bcr {
namespace {

// Of the Intermec library's message and the Honeywell library's events: a scan.
constexpr WPARAM kIntermecScan = 100;
constexpr std::uint32_t kHoneywellScan = 1;

std::int32_t OnEvent(std::uint32_t eventType, std::uint32_t, std::uint32_t, void* data, std::uint32_t length) {
    barcodeFamily.OnHoneywellEvent(eventType, data, length);
    return 0;
}

// Has a value in a variable for a scope.
template <typename Variable, typename Value>
class ScopedValue {
  public:
    ScopedValue(Variable& variable, Value value) : variable_(variable), before_(variable) { variable_ = value; }
    ScopedValue(const ScopedValue&) = delete;
    ScopedValue& operator=(const ScopedValue&) = delete;
    ~ScopedValue() { variable_ = before_; }

  private:
    Variable& variable_;
    Value before_;
};

}  // namespace

BarcodeFamily barcodeFamily;

BarcodeFamily::BarcodeFamily()
    : lock_(CSmartCritical::Setup::kUnchecked),
      share_(system_.engines),
      devices_({systemLibraries, share_, system_.emulator, system_.attached, system_.machine, &OnEvent}),
      listener_(*this) {
}

void BarcodeFamily::ListDevices(QLBCR_DEVICE_INFO* devices, int& count) {
    const auto list = MakeList();
    const int number = static_cast<int>(list.size());
    Require(count == 0 || count >= number, QLERR_BUFFER_OVERFLOW, "Buffer size too small");
    if (devices != nullptr && count != 0) {
        std::ranges::transform(list, devices, [](const auto& device) { return device->info; });
    }
    count = number;
}

std::span<const std::unique_ptr<ScannerDevice>> BarcodeFamily::MakeList() {
    const auto list = devices_.Make();
    if (current_ == nullptr && !list.empty()) {
        current_ = list.front().get();
    }
    return list;
}

void BarcodeFamily::Initialize() {
    MakeList();
    Require(current_ != nullptr, QLERR_OP_UNSUPPORTED, "The barcode device is not found.");
    InitializeEngine(*current_);
}

void BarcodeFamily::Select(int index) {
    const auto list = MakeList();
    Require(!list.empty(), QLERR_INVALID_STATE, "The device is not initialized");
    Require(index >= 0 && static_cast<std::size_t>(index) < list.size(), QLERR_INVALID_ARGUMENT,
            "Given device index is out of range");
    current_ = list[static_cast<std::size_t>(index)].get();
    InitializeEngine(*current_);
}

void BarcodeFamily::InitializeEngine(ScannerDevice& device) {
    if (listener_.IsRunning() || device.IsInitialized() || device.info.index < 0) {
        return;
    }
    device.scanning = false;
    device.engine = devices_.MakeEngine(device);
    try {
        device.state = DeviceState::kLoadFailed;
        device.engine->Load();
        device.state = DeviceState::kNotInitialized;
        device.engine->Start();
        ResetSettings(device, DefaultSoundFile());
        listener_.Start();
    } catch (...) {
        device.engine->ShutDown();
        throw;
    }
    device.engine->ListenerRuns(listener_.Window());
    device.state = DeviceState::kInitialized;
}

void BarcodeFamily::Uninitialize() {
    ScannerDevice* const device = current_;
    Require(device != nullptr && device->IsInitialized(), QLERR_INVALID_STATE, "The device is already un-initialized");
    Require(device->state != DeviceState::kEnabled, QLERR_INVALID_STATE,
            "The device is not disabled. Please disable before further use");
    // From here on every other call finds no device, and a callback that calls in need not wait.
    device->state = DeviceState::kNotInitialized;
    ending_ = true;
    turn_.EndWaits();
    {
        const CSmartCriticalRelease released(lock_);
        listener_.Stop();
    }
    ending_ = false;
    device->engine->ShutDown();
    current_ = nullptr;
    devices_.Free();
}

void BarcodeFamily::Enable() {
    ScannerDevice& device = InitializedDevice();
    Require(device.state != DeviceState::kEnabled, QLERR_INVALID_STATE, "The device is already enabled");
    const ScopedValue enabling(enabling_, GetCurrentThreadId());
    device.engine->Connect(listener_.Window());
    // A scan that is announced meanwhile waits for the engines: it is not one of those that are dropped.
    const EngineHold hold(system_.engines);
    listener_.BeginConnection();
    device.state = DeviceState::kEnabled;
    receiving_ = &device;
    device.engine->DropPendingScans();
}

void BarcodeFamily::Disable() {
    ScannerDevice& device = InitializedDevice();
    Require(device.state == DeviceState::kEnabled, QLERR_INVALID_STATE, "The device is already disabled");
    LetGo(device);
}

void BarcodeFamily::LetGo(ScannerDevice& device) {
    const EngineHold hold(system_.engines);
    device.engine->Disconnect();
    receiving_ = nullptr;
    device.scanning = false;
    device.state = DeviceState::kInitialized;
}

ScannerDevice& BarcodeFamily::InitializedDevice() const {
    ScannerDevice* const device = current_;
    Require(device != nullptr && device->IsInitialized(), QLERR_INVALID_STATE, "The device is not initialized");
    return *device;
}

ScannerDevice& BarcodeFamily::EnabledDevice() const {
    ScannerDevice& device = InitializedDevice();
    Require(device.state == DeviceState::kEnabled, QLERR_INVALID_STATE, "The device is not enabled");
    return device;
}

void BarcodeFamily::StartScanning() {
    ScannerDevice& device = EnabledDevice();
    RequireCallback(device);
    // Held until the flag is set: the scan may come at once.
    const EngineHold hold(system_.engines);
    if (!device.scanning) {
        Require(device.engine->SetDecoding(true), QLERR_INTERNAL_ERROR, "Unable turn on barcode decoding.");
        device.scanning = true;
    }
}

void BarcodeFamily::StopScanning() {
    ScannerDevice& device = EnabledDevice();
    RequireCallback(device);
    const EngineHold hold(system_.engines);
    device.scanning = false;
    Require(device.engine->SetDecoding(false), QLERR_INTERNAL_ERROR, "Unable turn off barcode decoding.");
}

void BarcodeFamily::OnHoneywellEvent(std::uint32_t eventType, const void* data, std::uint32_t length) {
    auto* const window = listener_.Window();
    if (eventType == kHoneywellScan && receiving_ != nullptr && window != nullptr) {
        system_.engines.Announce(data, length);
        PostMessageW(window, windowMessages.rawData, length, reinterpret_cast<LPARAM>(data));
    }
}

bool BarcodeFamily::OnIntermecFrame(WPARAM code) {
    ScannerDevice* const device = receiving_;
    if (device == nullptr || device->IsHoneywell()) {
        return true;
    }
    if (code != kIntermecScan) {
        return false;
    }
    Deliver(*device, 0, nullptr);
    return true;
}

void BarcodeFamily::OnRawData(WPARAM length, LPARAM data) {
    ScannerDevice* const device = receiving_;
    if (device != nullptr && device->IsHoneywell() && listener_.IsConnectionCurrent()) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): what messages carry
        Deliver(*device, length, reinterpret_cast<const void*>(data));
    }
}

void BarcodeFamily::Deliver(ScannerDevice& device, std::uintptr_t length, const void* data) {
    const std::shared_ptr<const DeliverySettings> settings = device.settings.load();
    ReceivedScan scan;
    WPARAM connection = 0;
    {
        const ScopedValue busy(isListenerBusy_, true);
        const EngineHold hold(system_.engines);
        if (receiving_ != &device) {
            return;
        }
        connection = listener_.Connection();
        scan = device.engine->TakeScan(settings->text, length, data);
    }
    DeliverScan(device.info, scan, *settings, system_.sound);
    // One scan for each start. Another thread may have disabled the device meanwhile, and have begun anew.
    const ScopedValue busy(isListenerBusy_, true);
    const EngineHold hold(system_.engines);
    if (receiving_ == &device && connection == listener_.Connection() && device.scanning.exchange(false)) {
        device.engine->SetDecoding(false);
    }
}

void BarcodeFamily::OnEmulatorNotice() {
    ScannerDevice* const device = receiving_;
    if (device == nullptr || !device->IsHoneywell()) {
        return;
    }
    if (isListenerBusy_) {
        // In the middle of an engine's call, and with the engines held: later. In the middle of the question below it
        // is answered already.
        if (!isAskingEmulator_) {
            listener_.PostNotice();
        }
        return;
    }
    const WPARAM connection = listener_.Connection();
    if (!HasEmulatorTaken(*device)) {
        return;
    }
    const ScopedValue busy(isListenerBusy_, true);
    // Not before: whoever has the lock may be waiting for the emulator.
    const CSmartCriticalWrapper held(lock_);
    Require(device->state == DeviceState::kEnabled && connection == listener_.Connection(), QLERR_INVALID_STATE,
            "Not connected.");
    LetGo(*device);
}

bool BarcodeFamily::HasEmulatorTaken(const ScannerDevice& device) {
    const ScopedValue busy(isListenerBusy_, true);
    const ScopedValue asking(isAskingEmulator_, true);
    void* const window = system_.emulator.Window();
    return window != nullptr && device.state == DeviceState::kEnabled &&
           system_.emulator.ConnectState(window) == kTakenByEmulator;
}

}  // namespace quarlin::bcr
