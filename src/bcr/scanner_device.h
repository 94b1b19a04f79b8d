// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/barcode_engine.h"
#include "bcr/scan_text.h"
#include "bcr/scanner_choice.h"

#include <quarlin/barcode.h>

#include <atomic>
#include <memory>
#include <string>

namespace quarlin::bcr {

enum class DeviceState {
    kNotInitialized = 0,
    kInitialized = 1,
    kEnabled = 2,
    kLoadFailed = 3  // counts as not initialised; initialising can be tried again
};

// How scans are delivered. A delivery takes what is in force when it begins.
struct DeliverySettings {
    TextSettings text;
    bool soundEnabled = false;
    std::wstring soundFile;
    QLBCR_Callback callback = nullptr;
};

// One entry of the device list. The settings and the scanning flag are also used by the listener thread.
struct ScannerDevice {
    explicit ScannerDevice(const ScannerChoice& choice) : info(choice.info), kind(choice.kind) {}

    bool IsInitialized() const { return state == DeviceState::kInitialized || state == DeviceState::kEnabled; }
    bool IsHoneywell() const { return kind == BarcodeEngineKind::kHoneywell; }

    const QLBCR_DEVICE_INFO info;
    BarcodeEngineKind kind;
    EngineAddress address;
    std::atomic<DeviceState> state = DeviceState::kNotInitialized;
    // A scan that was asked for is still to come.
    std::atomic<bool> scanning = false;
    std::atomic<std::shared_ptr<const DeliverySettings>> settings = std::make_shared<const DeliverySettings>();
    std::unique_ptr<BarcodeEngine> engine;
};

}  // namespace quarlin::bcr
