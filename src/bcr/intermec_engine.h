// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/barcode_engine.h"
#include "bcr/engine_library.h"
#include "bcr/intermec_functions.h"
#include "bcr/scanner_choice.h"
#include "bcr/setup_frame.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quarlin::bcr {

// An Intermec engine: configured by frames of parameters, and asked for its scans after a message of its library.
class IntermecEngine final : public BarcodeEngine {
  public:
    IntermecEngine(LibrarySource& source, EngineShare& share, BarcodeEngineKind kind, EngineAddress address);

    void Load() override;
    void Start() override;
    void ListenerRuns(void* /*listener*/) override {}
    void ShutDown() override;
    void Connect(void* listener) override;
    void Disconnect() override;
    void DropPendingScans() override;
    ReceivedScan TakeScan(const TextSettings& settings, std::uintptr_t length, const void* data) override;
    bool SetDecoding(bool on) override;
    bool EnableSymbology(std::int32_t symbology, bool enable) override;
    bool SetTriggerMode(std::uint32_t mode) override;
    bool SetHardwareTrigger(bool on) override;
    std::optional<bool> HardwareTrigger() override;
    std::optional<std::string> FirmwareVersion() override;

  private:
    // Fetches one scan's record into the shared answer buffer. Nothing when the engine refuses; empty when there is no
    // scan. Valid as long as the caller's EngineHold.
    std::optional<std::span<const std::uint8_t>> ReadScan();
    bool Send(IntermecFunctions::Frame IntermecFunctions::*procedure, const SetupFrame& frame);
    // The value byte of the answer to a query; nothing when the engine refuses or its answer is too short.
    std::optional<std::uint8_t> ReadSetting(const SetupFrame& query);
    void Address();
    void OpenLink(void* listener);

    EngineShare& share_;
    EngineLibrary<IntermecFunctions> library_;
    BarcodeEngineKind kind_;
    EngineAddress address_;
    bool started_ = false;
    // What the engine's data mode is set back to; kDataModeWanted: nothing has been changed.
    std::uint8_t dataModeBefore_;
};

}  // namespace quarlin::bcr
