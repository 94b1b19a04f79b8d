// SPDX-License-Identifier: Apache-2.0
#include "core/device.h"
#include "gps/gps_plan.h"

namespace quarlin::sim {

const std::vector<DeviceKind>& DeviceKinds() {
    static const std::vector<DeviceKind> kinds = {
        {"gps", "a GPS and GLONASS receiver that writes NMEA sentences to a serial port", ReadGpsPlan},
    };
    return kinds;
}

}  // namespace quarlin::sim
