// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "machine_libraries/machine_record.h"

namespace quarlin::sim::testing {

// A machine whose libraries' records are in the test's hands.
struct MemoryMachine {
    ProbeState probe;
    LightState light;
    std::unique_ptr<IntermecState> intermec = std::make_unique<IntermecState>();
    std::unique_ptr<HoneywellState> honeywell = std::make_unique<HoneywellState>();
    int announcedScans = 0;
    std::uint32_t endedProcess = 0;
    std::uint64_t clock = 5000000;  // milliseconds

    MemoryMachine() {
        probe.SetDefaults();
        light.SetDefaults();
        intermec->SetDefaults();
        honeywell->SetDefaults();
    }
    MachineRecordMakers Makers();
};

template <typename State>
class MemoryRecord final : public MachineRecord<State> {
  public:
    MemoryRecord(State& state, MemoryMachine& machine) : state_(state), machine_(machine) {}

    void Use(const std::function<void(State&)>& use) override { use(state_); }
    std::uint64_t Milliseconds() const override { return machine_.clock; }
    bool IsRunning(std::uint32_t process) const override { return process != machine_.endedProcess; }
    void AnnounceScan() override { ++machine_.announcedScans; }

  private:
    State& state_;
    MemoryMachine& machine_;
};

inline MachineRecordMakers MemoryMachine::Makers() {
    return {[this] { return std::make_unique<MemoryRecord<ProbeState>>(probe, *this); },
            [this] { return std::make_unique<MemoryRecord<LightState>>(light, *this); },
            [this] { return std::make_unique<MemoryRecord<IntermecState>>(*intermec, *this); },
            [this] { return std::make_unique<MemoryRecord<HoneywellState>>(*honeywell, *this); }};
}

}  // namespace quarlin::sim::testing
