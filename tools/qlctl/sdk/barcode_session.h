// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/barcode_scan.h"
#include "view/scan_settings.h"
#include "view/symbologies.h"

#include <optional>

namespace quarlin::qlctl {

// Which scanners count.
enum class Scanners {
    kBuiltIn,
    kExternal
};

// The scanners that the library lists.
std::vector<BarcodeScanner> FindScanners(Scanners which);

// The scanner from initialised and enabled to disabled and uninitialised; scans come from the beginning. Failing calls
// throw a Failure, and so does a machine without scanner. One at a time: the library knows one scanner.
class BarcodeSession {
  public:
    explicit BarcodeSession(Scanners which);

    std::string Name() const;
    std::string FirmwareVersion() const;
    // False when another program has taken the scanner.
    bool IsEnabled() const;

    // For the scans to come.
    void Apply(const ScanSettings& settings);
    // Lets the scanner read one code, as if its trigger had been pulled.
    void StartScanning();
    void StopScanning();
    // The oldest scan that was not taken yet.
    std::optional<BarcodeScan> TakeScan();

    void EnableSymbology(const Symbology& symbology, bool enable);
    void SetTriggerMode(unsigned mode);
    void SetHardwareTrigger(bool on);
    bool IsHardwareTriggerOn() const;

  private:
    // They undo their part in the opposite order; no callback runs when the first has done so.
    struct Initialized {
        explicit Initialized(Scanners which);
        ~Initialized();
        Initialized(const Initialized&) = delete;
        Initialized& operator=(const Initialized&) = delete;
    };
    struct Enabled {
        Enabled();
        ~Enabled();
        Enabled(const Enabled&) = delete;
        Enabled& operator=(const Enabled&) = delete;
    };

    Initialized initialized_;
    Enabled enabled_;
};

}  // namespace quarlin::qlctl
