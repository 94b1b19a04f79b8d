// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/device_list.h"
#include "bcr/listener_window_win.h"
#include "bcr/scanner_device.h"
#include "bcr/system_win.h"
#include "core/interruptible_lock_win.h"
#include "core/smart_critical_win.h"

#include <quarlin/barcode.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

namespace quarlin::bcr {

// The family's process-wide state. Two locks, taken in this order:
// - the turn: whoever makes or frees the device list, or starts or ends an engine, has it. Initialising and listing go
//   without the family's lock, so that other calls need not wait for them.
// - the family's lock: all functions but those two have it.
// The listener thread delivers scans with neither.
class BarcodeFamily final : private ListenerEvents {
  public:
    BarcodeFamily();

    CSmartCritical& Lock() { return lock_; }
    InterruptibleLock& Turn() { return turn_; }
    // A callback must not wait for the turn when whoever has it waits for the callback.
    const std::atomic<bool>& IsEnding() const { return ending_; }
    // Whether the calling thread delivers a scan.
    bool IsInCallback() const { return listener_.IsCurrentThread(); }
    // Whether the calling thread is inside Enable: an engine's dialogue runs the thread's other windows as well.
    bool IsInEnable() const { return enabling_ == GetCurrentThreadId(); }

    // With the turn.
    void ListDevices(QLBCR_DEVICE_INFO* devices, int& count);
    void Initialize();
    // With the turn and the lock.
    void Select(int index);
    void Uninitialize();

    // With the lock.
    void AllowExternal(bool allow) { devices_.AllowExternal(allow); }
    void Enable();
    void Disable();
    // The current device; raises QLERR_INVALID_STATE unless it is in state 1 or 2, or 2.
    ScannerDevice& InitializedDevice() const;
    ScannerDevice& EnabledDevice() const;
    void StartScanning();
    void StopScanning();

    // The Honeywell library's event, on a thread of its own.
    void OnHoneywellEvent(std::uint32_t eventType, const void* data, std::uint32_t length);

    // The library is being unloaded, or the process ends: other threads are gone then, and other libraries perhaps too.
    void Unload() { devices_.Free(); }
    void Abandon() { devices_.Abandon(); }

  private:
    bool OnIntermecFrame(WPARAM code) override;
    void OnRawData(WPARAM length, LPARAM data) override;
    void OnEmulatorNotice() override;

    std::span<const std::unique_ptr<ScannerDevice>> MakeList();
    void InitializeEngine(ScannerDevice& device);
    void LetGo(ScannerDevice& device);
    bool HasEmulatorTaken(const ScannerDevice& device);
    void Deliver(ScannerDevice& device, std::uintptr_t length, const void* data);

    CSmartCritical lock_;
    InterruptibleLock turn_;
    std::atomic<bool> ending_ = false;
    SystemServices system_;
    EngineShare share_;
    DeviceList devices_;
    // The first of the list, or the one that was selected; freed only with the turn and the lock.
    std::atomic<ScannerDevice*> current_ = nullptr;
    // The device whose scans are delivered; changed with the lock and the engines held.
    std::atomic<ScannerDevice*> receiving_ = nullptr;
    std::atomic<DWORD> enabling_ = 0;
    // The listener thread is in a call of an engine or of the emulator, which may hand it messages of other programs.
    bool isListenerBusy_ = false;
    bool isAskingEmulator_ = false;
    ListenerWindow listener_;
};

extern BarcodeFamily barcodeFamily;

}  // namespace quarlin::bcr
