// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "failure.h"
#include "quarlin/device.h"

#include <variant>
#include <vector>

namespace quarlin::qlctl {

// What the library answered to one question, or the error that came instead.
template <typename Value>
using Reply = std::variant<Value, LibraryError>;

// One of the numbered devices. Which device a number stands for is the machine's affair.
struct DeviceState {
    int device = 0;
    Reply<bool> available;
    Reply<bool> powered;
    Reply<bool> enabledInBios;
};

// What `device list` tells: every number that there is, and the list that the machine itself gives.
struct DeviceReport {
    std::vector<DeviceState> devices;
    Reply<std::vector<DeviceStatusEntry>> listed;
};

std::string DeviceText(const DeviceReport& report);
std::string DeviceJson(const DeviceReport& report);
// What failed, each cause once, in the order of the report.
std::vector<LibraryError> Failures(const DeviceReport& report);

// A battery's record with its two texts as UTF-8; the record's own are not looked at.
struct BatteryState {
    std::string name;
    std::string id;
    BatteryInfo info{};
};

// One battery of `device battery`.
struct BatteryReply {
    int battery = 0;
    Reply<BatteryState> state;
};

std::string BatteryText(const std::vector<BatteryReply>& batteries);
std::string BatteryJson(const std::vector<BatteryReply>& batteries);
std::vector<LibraryError> Failures(const std::vector<BatteryReply>& batteries);

}  // namespace quarlin::qlctl
