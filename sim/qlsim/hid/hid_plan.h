// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "core/device.h"
#include "hidbus/hid_device.h"

namespace quarlin::sim {

struct HidSettings {
    HidIdentity identity;
    bool plugged = true;  // at the start
};

// The kind "hid": a device that nobody waits for. Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadHidPlan(TableReader& table);
HidSettings ReadHidSettings(TableReader& table);

}  // namespace quarlin::sim
