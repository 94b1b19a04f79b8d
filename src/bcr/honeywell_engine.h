// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/barcode_engine.h"
#include "bcr/engine_library.h"
#include "bcr/honeywell_functions.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quarlin::bcr {

// A Honeywell engine: configured by menu commands; its library calls back for each scan. The emulator program may have
// the scanner, and is asked for it then.
class HoneywellEngine final : public BarcodeEngine {
  public:
    HoneywellEngine(LibrarySource& source, EngineShare& share, EmulatorProgram& emulator,
                    HoneywellEventCallback onEvent, EngineAddress address);

    // Loads the library when it is not loaded, and asks it for a device that answers. Raises when there is no such
    // library. ShutDown ends it.
    std::optional<EngineAddress> FindDevice();

    void Load() override;
    void Start() override;
    void ListenerRuns(void* listener) override;
    void ShutDown() override;
    void Connect(void* listener) override;
    void Disconnect() override;
    void DropPendingScans() override {}
    ReceivedScan TakeScan(const TextSettings& settings, std::uintptr_t length, const void* data) override;
    bool SetDecoding(bool on) override;
    bool EnableSymbology(std::int32_t symbology, bool enable) override;
    bool SetTriggerMode(std::uint32_t mode) override;
    bool SetHardwareTrigger(bool on) override;
    std::optional<bool> HardwareTrigger() override { return true; }
    std::optional<std::string> FirmwareVersion() override;

  private:
    bool StartLibrary();
    void RegisterForEvents();
    std::optional<EngineAddress> AskForDevice(std::uint32_t number);
    void TakeScannerFromEmulator();
    std::uintptr_t TextLength(const char* text, std::uintptr_t length) const;
    // The status; the last one is left as it was.
    EngineStatus SendMenuCommand(std::string_view command);

    EngineShare& share_;
    EmulatorProgram& emulator_;
    HoneywellEventCallback onEvent_;
    EngineLibrary<HoneywellFunctions> library_;
    EngineAddress address_;
};

}  // namespace quarlin::bcr
