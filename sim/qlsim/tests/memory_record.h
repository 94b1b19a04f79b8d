// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "machine_libraries/machine_record.h"

namespace quarlin::sim::testing {

// A machine whose libraries' records are in the test's hands.
struct MemoryMachine {
    ProbeState probe;
    LightState light;
    std::uint64_t clock = 5000000;  // milliseconds

    MemoryMachine() {
        probe.SetDefaults();
        light.SetDefaults();
    }
    MachineRecordMakers Makers();
};

template <typename State>
class MemoryRecord final : public MachineRecord<State> {
  public:
    MemoryRecord(State& state, const std::uint64_t& clock) : state_(state), clock_(clock) {}

    void Use(const std::function<void(State&)>& use) override { use(state_); }
    std::uint64_t Milliseconds() const override { return clock_; }

  private:
    State& state_;
    const std::uint64_t& clock_;
};

inline MachineRecordMakers MemoryMachine::Makers() {
    return {[this] { return std::make_unique<MemoryRecord<ProbeState>>(probe, clock); },
            [this] { return std::make_unique<MemoryRecord<LightState>>(light, clock); }};
}

}  // namespace quarlin::sim::testing
