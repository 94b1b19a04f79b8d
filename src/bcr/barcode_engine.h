// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/engine_share.h"
#include "bcr/scan_text.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quarlin::bcr {

// What the probe found out about a device.
struct EngineAddress {
    // The engine's name of the device: a HID path, or an entry of the Honeywell library's list.
    std::string name;
    // The entry's number.
    std::uint32_t number = 0;
    // Of an engine on a serial port.
    std::optional<std::int32_t> port;
};

// A scan on its way to the application.
struct ReceivedScan {
    std::string text;
    std::string symbologyId;  // empty when the engine gave none
};

// A scanner engine, driven through its vendor's library. Functions with a result give false, or nothing, when the
// engine refuses; the others raise what the caller of the exported function gets.
class BarcodeEngine {
  public:
    virtual ~BarcodeEngine() = default;

    // Loads the vendor's library; one that was loaded before is freed first.
    virtual void Load() = 0;
    virtual void Start() = 0;
    // The window that receives scans runs now.
    virtual void ListenerRuns(void* listener) = 0;
    // Ends what Start began and frees the library. Does what is left of it when less than that has happened.
    virtual void ShutDown() = 0;

    virtual void Connect(void* listener) = 0;
    virtual void Disconnect() = 0;
    // Reads what the engine holds from before, and drops it.
    virtual void DropPendingScans() = 0;

    // The scan that an event of the engine's library announced; the event came with a length and an address. Raises
    // what is wrong with it.
    virtual ReceivedScan TakeScan(const TextSettings& settings, std::uintptr_t length, const void* data) = 0;

    virtual bool SetDecoding(bool on) = 0;
    virtual bool EnableSymbology(std::int32_t symbology, bool enable) = 0;
    virtual bool SetTriggerMode(std::uint32_t mode) = 0;
    virtual bool SetHardwareTrigger(bool on) = 0;
    virtual std::optional<bool> HardwareTrigger() = 0;
    virtual std::optional<std::string> FirmwareVersion() = 0;
};

}  // namespace quarlin::bcr
