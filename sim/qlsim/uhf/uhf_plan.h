// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "core/device.h"
#include "uhf/uhf_reader.h"

namespace quarlin::sim {

struct UhfScenario {
    UhfSettings reader;
    bool plugged = true;  // at the start
};

// The kind "rfid-reader". Problems are left in the table's reader.
std::unique_ptr<DevicePlan> ReadUhfPlan(TableReader& table);
UhfScenario ReadUhfScenario(TableReader& table);

}  // namespace quarlin::sim
