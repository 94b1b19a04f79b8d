// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/device_report.h"

namespace quarlin::qlctl {

// Asks the library about every device and about its list. An answer that fails does not stop the others; throws a
// Failure when the family cannot be started.
DeviceReport GatherDevices();

// Asks for both batteries, likewise.
std::vector<BatteryReply> GatherBatteries();

}  // namespace quarlin::qlctl
