// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>

#include "camera_light/light_state.h"
#include "probe/probe_state.h"
#include "scanner/honeywell_state.h"
#include "scanner/intermec_state.h"

namespace quarlin::sim {

// The record of a machine library, which the library in every program of the machine reads and writes.
template <typename State>
class MachineRecord {
  public:
    virtual ~MachineRecord() = default;

    // Runs a function while nobody else on the machine touches the record. Throws DeviceError when it is not to be had.
    virtual void Use(const std::function<void(State&)>& use) = 0;
    // The machine's clock, as the libraries read it.
    virtual std::uint64_t Milliseconds() const = 0;
    // Whether a program that has put itself into the record still runs; one that was killed takes nothing back.
    virtual bool IsRunning(std::uint32_t process) const = 0;
    // Tells the library that a scan waits for it (State::kScanEvent); nothing for a library that knows no scans.
    virtual void AnnounceScan() = 0;
};

template <typename State>
using MachineRecordMaker = std::function<std::unique_ptr<MachineRecord<State>>()>;

struct MachineRecordMakers {
    MachineRecordMaker<ProbeState> probe;
    MachineRecordMaker<LightState> light;
    MachineRecordMaker<IntermecState> intermec;
    MachineRecordMaker<HoneywellState> honeywell;

    template <typename State>
    const MachineRecordMaker<State>& Of() const {
        if constexpr (std::is_same_v<State, ProbeState>) {
            return probe;
        } else if constexpr (std::is_same_v<State, LightState>) {
            return light;
        } else if constexpr (std::is_same_v<State, IntermecState>) {
            return intermec;
        } else {
            static_assert(std::is_same_v<State, HoneywellState>);
            return honeywell;
        }
    }
};

}  // namespace quarlin::sim
