// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/byte_port.h"
#include "core/command.h"
#include "core/log.h"
#include "core/pace.h"
#include "hidbus/hid_device.h"
#include "machine_libraries/machine_record.h"
#include "scanner/computer_parts.h"

namespace quarlin::sim {

class TableReader;

// A device that cannot start or go on; what() says why.
class DeviceError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One simulated device. All functions may be called from any thread.
class Device {
  public:
    virtual ~Device() = default;

    // Throws DeviceError when it cannot begin.
    virtual void Start() = 0;
    // Ends it; returns when nothing of it runs any more. A second call does nothing.
    virtual void Stop() = 0;
    // Whether it has reached the end of the scenario.
    virtual bool Finished() const = 0;
    // words: verb and arguments, without the device's name.
    virtual Reply Command(const Words& words) = 0;
    // Its state now.
    virtual nlohmann::ordered_json Describe() = 0;
};

// A command of the scenario's timeline, without the device's name.
struct TimedCommand {
    double at = 0;  // seconds
    Words words;
};

// What a device is given to live with.
struct Surroundings {
    std::string name;
    std::uint64_t seed = 0;
    std::int64_t startUtc = 0;  // milliseconds since 1970 at second 0
    Pace pace{Pace::Clock::now(), 1.0};
    std::optional<double> duration;  // seconds
    std::vector<TimedCommand> timeline;
    std::filesystem::path scenarioFolder;
    Log* log = nullptr;
    PortMaker makePort;
    HidSocketMaker makeHidSocket;
    MachineRecordMakers machineRecords;
    ComputerParts computer;
    std::function<void()> finished;  // called once when the device reaches the end of the scenario
};

// A device as its scenario describes it: read and checked, not yet made.
class DevicePlan {
  public:
    virtual ~DevicePlan() = default;

    virtual std::unique_ptr<Device> Make(Surroundings surroundings) const = 0;
    // Throws CommandError when a device of this plan would refuse the command whatever its state.
    virtual void CheckCommand(const Words& words) const = 0;
    // One line for a list of devices.
    virtual std::string Summary() const = 0;
    // One line for each command.
    virtual std::vector<std::string> Usage() const = 0;
};

// A kind of device that scenarios may name.
struct DeviceKind {
    const char* name;
    const char* summary;
    // Reads the kind's own keys; "kind" and "name" have been read. Problems are left in the reader.
    std::unique_ptr<DevicePlan> (*read)(TableReader& table);
};

// All kinds, in one table: a new kind adds its row here.
const std::vector<DeviceKind>& DeviceKinds();

}  // namespace quarlin::sim
