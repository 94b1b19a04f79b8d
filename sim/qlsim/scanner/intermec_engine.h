// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/device.h"
#include "hid/hid_behaviour.h"
#include "hid/hid_plug.h"
#include "scanner/engine_command.h"
#include "scanner/intermec_state.h"
#include "scanner/scanner_settings.h"

namespace quarlin::sim::scanner {

// The devices by which programs find an engine on USB. That of product 0801 shows itself twice: as a keyboard too.
std::vector<HidIdentity> IntermecIdentities(const IntermecSettings& settings);

// An Intermec engine: its plug, and what its record means.
class IntermecEngine {
  public:
    using State = IntermecState;
    using Settings = IntermecSettings;
    static constexpr Family kFamily = Family::kIntermec;
    static constexpr const char* kKind = "intermec-scanner";

    IntermecEngine(const IntermecSettings& settings, const Surroundings& surroundings);

    // What programs see of it on the computer, beside the library. Throw CommandError and DeviceError.
    void PlugIn();
    void PullOut();

    // All but whether it is plugged in, as the scenario has it.
    void Fill(State& state) const;
    static void SetPlugged(State& state, bool plugged) { state.plugged = plugged ? 1 : 0; }
    static bool IsPlugged(const State& state) { return state.plugged != 0; }
    // Looks at what programs have told the engine since the last time. This one's record says it all.
    static void CatchUp(State&) {}

    static bool IsDecoding(const State& state) { return state.decoding != 0; }
    static bool HasTrigger(const State& state) { return state.Value(kIntermecHardwareTrigger) != 0; }
    static void SetTrigger(State& state, bool on) { state.Set(kIntermecHardwareTrigger, on ? 1 : 0); }
    static bool Reads(const State& state, std::size_t symbology);
    static void Switch(State& state, std::size_t symbology, bool on);

    static ScanSlot Scan(const ShownCode& code);
    static ScanSlot RawScan(const std::vector<std::uint8_t>& bytes);

    // The commands that only this family has.
    static std::string Carry(const EngineCommand& command, State& state);
    void Describe(const State& state, nlohmann::ordered_json& json) const;
    static std::string Summary(const IntermecSettings& settings);

  private:
    IntermecSettings settings_;
    std::string name_;
    std::function<std::unique_ptr<ListedPort>(const std::string&)> listPort_;
    PlainHidFunction function_;
    std::vector<std::unique_ptr<HidPlug>> plugs_;
    std::unique_ptr<ListedPort> port_;
};

}  // namespace quarlin::sim::scanner
