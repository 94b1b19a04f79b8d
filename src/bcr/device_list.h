// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/scanner_device.h"
#include "bcr/scanner_probe.h"

#include <atomic>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace quarlin::bcr {

// What the machine says of itself, asked when it is needed.
class MachineFacts {
  public:
    virtual ComputerModel Model() = 0;
    virtual ScannerHardware Hardware() = 0;

  protected:
    constexpr MachineFacts() = default;
    constexpr ~MachineFacts() = default;
};

// What the list is made with.
struct DeviceListParts {
    LibrarySource& libraries;
    EngineShare& share;
    EmulatorProgram& emulator;
    AttachedDevices& attached;
    MachineFacts& machine;
    HoneywellEventCallback onHoneywellEvent;
};

// The scanners of this machine: one at most. Used by one thread at a time, but for AllowExternal.
class DeviceList {
  public:
    explicit DeviceList(const DeviceListParts& parts) : parts_(parts) {}

    void AllowExternal(bool allow) { allowExternal_ = allow; }

    // Looks for scanners when there is no list; one without an entry is none. Raises, and leaves no list, when looking
    // fails.
    std::span<const std::unique_ptr<ScannerDevice>> Make();
    void Free() { devices_.clear(); }
    // Leaves everything to the system.
    void Abandon();

    // A new engine of the device's kind; raises QLERR_OP_UNSUPPORTED for a device of no kind.
    std::unique_ptr<BarcodeEngine> MakeEngine(const ScannerDevice& device) const;

  private:
    std::optional<ScannerChoice> Choose();

    DeviceListParts parts_;
    std::atomic<bool> allowExternal_ = false;
    // Both are the machine's, and are asked once.
    std::optional<ComputerModel> model_;
    std::optional<ScannerHardware> hardware_;
    std::vector<std::unique_ptr<ScannerDevice>> devices_;
};

}  // namespace quarlin::bcr
