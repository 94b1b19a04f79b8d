// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/scenario.h"

namespace quarlin::sim {

struct SimulationOptions {
    std::optional<std::uint64_t> seed;  // instead of the scenario's
    std::optional<double> duration;     // likewise, seconds
    PortMaker makePort;
    HidSocketMaker makeHidSocket;
    MachineRecordMakers machineRecords;
    ComputerParts computer;
};

// The devices of one scenario, at work.
class Simulation {
  public:
    // The log outlives the simulation.
    Simulation(Scenario scenario, SimulationOptions options, Log& log);
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;
    ~Simulation();

    // Throws DeviceError when a device cannot begin; the others are stopped then.
    void Start();
    void Stop();

    // Carries out one line of the command protocol. Any thread.
    Reply Execute(std::string_view line);

    // Any thread; WaitForEnd returns after it, and when every device has reached the scenario's end.
    void RequestEnd();
    void WaitForEnd();

  private:
    struct Actor {
        std::string name;
        std::string kind;
        std::unique_ptr<Device> device;
    };

    Reply ExecuteOwn(const Words& words);
    std::string Status(const Words& words);
    std::string Help() const;
    Actor* Find(const std::string& name);
    std::vector<std::string> Names() const;

    Scenario scenario_;
    SimulationOptions options_;
    Log& log_;
    Pace pace_;
    std::vector<Actor> actors_;

    std::mutex lock_;  // guards endRequested_
    std::condition_variable changed_;
    bool endRequested_ = false;
};

}  // namespace quarlin::sim
