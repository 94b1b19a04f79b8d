// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "failure.h"
#include "view/barcode_scan.h"
#include "view/scan_settings.h"
#include "view/symbologies.h"

namespace quarlin::qlctl {

std::string ScannerTable(const std::vector<BarcodeScanner>& scanners);
std::string ScannersJson(const std::vector<BarcodeScanner>& scanners);

// One scan; the number counts from 1.
std::string ScanText(const BarcodeScan& scan, int number);
std::string ScanJson(const BarcodeScan& scan, int number);

// The same code twice: as the scanner reads it, and with a rule.
std::string EditText(const EditRule& rule, const BarcodeScan& before, const BarcodeScan& after);
std::string EditJson(const EditRule& rule, const BarcodeScan& before, const BarcodeScan& after);

// What became of a symbology that was to be enabled or disabled.
struct SymbologyChange {
    const Symbology* symbology;
    std::optional<LibraryError> error;
};
std::string ChangesText(const std::vector<SymbologyChange>& changes, bool enable);
std::string ChangesJson(const std::vector<SymbologyChange>& changes, bool enable);

struct ScannerFirmware {
    std::string scanner;
    std::string version;
};
std::string FirmwareText(const ScannerFirmware& firmware);
std::string FirmwareJson(const ScannerFirmware& firmware);

struct TriggerState {
    bool isHardwareOn = false;
    std::optional<unsigned> mode;  // what was set just now; an engine does not tell
};
std::string TriggerText(const TriggerState& state);
std::string TriggerJson(const TriggerState& state);

}  // namespace quarlin::qlctl
