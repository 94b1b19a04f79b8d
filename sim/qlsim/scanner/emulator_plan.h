// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "core/device.h"

namespace quarlin::sim::scanner {

// The kind "emulator": the barcode emulator program. Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadEmulatorPlan(TableReader& table);

}  // namespace quarlin::sim::scanner
