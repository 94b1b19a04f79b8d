// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/barcode.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace quarlin::bcr {

// The engine that drives a device.
enum class BarcodeEngineKind : std::uint16_t {
    kNone = 0,             // an external device before it has been found
    kIntermecBuiltIn = 1,  // ISDC_RS.dll
    kIntermecUsb0801 = 2,  // ISDC_HID.dll
    kIntermecUsb0809 = 3,  // ISDC_HID.dll
    kIntermecSerial = 4,   // ISDC_RS.dll
    kHoneywell = 5         // HEDC_RS.dll
};

// The models that matter for the choice.
enum class ComputerModel {
    kOther = 0,
    kHxt7 = 1,
    kHxt8 = 2,
    kJr41 = 3,
    kJr42 = 4
};

// The scanner hardware that a machine reports.
enum class ScannerHardware {
    kNone = 0,
    kIntermecBuiltIn = 1,
    kEngine = 2,  // which one depends on the model
    kMiniDb = 3
};

// By the beginning of the firmware's product name.
ComputerModel ModelOf(std::wstring_view productName);

// A device before it has been looked for: its record, and the engine to look for.
struct ScannerChoice {
    QLBCR_DEVICE_INFO info;
    BarcodeEngineKind kind;
};

// The machine's own scanner; nothing when it has none.
std::optional<ScannerChoice> ChooseScanner(ComputerModel model, ScannerHardware hardware);
// What stands for a scanner that somebody has plugged in.
ScannerChoice ExternalScanner();

}  // namespace quarlin::bcr
