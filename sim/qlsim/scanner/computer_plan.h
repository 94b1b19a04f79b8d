// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "core/device.h"

namespace quarlin::sim::scanner {

// The kind "computer": what the computer says it is. Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadComputerPlan(TableReader& table);

}  // namespace quarlin::sim::scanner
