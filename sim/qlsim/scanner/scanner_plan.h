// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "core/device.h"
#include "scanner/scanner_settings.h"

namespace quarlin::sim::scanner {

// The kinds "intermec-scanner" and "honeywell-scanner". Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadIntermecPlan(TableReader& table);
std::unique_ptr<DevicePlan> ReadHoneywellPlan(TableReader& table);

IntermecSettings ReadIntermecSettings(TableReader& table);
HoneywellSettings ReadHoneywellSettings(TableReader& table);

}  // namespace quarlin::sim::scanner
