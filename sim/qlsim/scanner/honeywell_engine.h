// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "core/device.h"
#include "scanner/engine_command.h"
#include "scanner/honeywell_state.h"
#include "scanner/scanner_settings.h"

namespace quarlin::sim::scanner {

// A Honeywell engine: what its record means. Its settings are what menu commands have made of it; the record has the
// commands alone, in its log.
class HoneywellEngine {
  public:
    using State = HoneywellState;
    using Settings = HoneywellSettings;
    static constexpr Family kFamily = Family::kHoneywell;
    static constexpr const char* kKind = "honeywell-scanner";

    HoneywellEngine(const HoneywellSettings& settings, const Surroundings& surroundings);

    // Nothing is to be seen of it beside the library's list.
    void PlugIn() {}
    void PullOut() {}

    // All but whether it is plugged in, as the scenario has it.
    void Fill(State& state);
    void SetPlugged(State& state, bool plugged) const;
    static bool IsPlugged(const State& state) { return state.deviceCount != 0; }
    // Looks at the menu commands that came since the last time. When more came than the log holds, the oldest have not
    // been seen.
    void CatchUp(State& state);

    static bool IsDecoding(const State& state) { return state.reading != 0; }
    bool HasTrigger(const State&) const { return trigger_; }
    void SetTrigger(State&, bool on) { trigger_ = on; }
    bool Reads(const State&, std::size_t symbology) const { return symbologies_[symbology]; }
    void Switch(State&, std::size_t symbology, bool on) { symbologies_[symbology] = on; }

    static ScanSlot Scan(const ShownCode& code);
    static ScanSlot RawScan(const std::vector<std::uint8_t>& bytes);

    // The commands that only this family has.
    std::string Carry(const EngineCommand& command, State& state);
    void Describe(const State& state, nlohmann::ordered_json& json) const;
    static std::string Summary(const HoneywellSettings& settings);

  private:
    void Obey(std::string_view menuCommand);

    HoneywellSettings settings_;
    std::vector<std::string> devices_;  // those that are there when it is plugged in
    SymbologySet symbologies_;
    bool trigger_;
    std::uint64_t seen_ = 0;  // calls of the log
};

}  // namespace quarlin::sim::scanner
