// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/device.h"
#include "gps/line_faults.h"
#include "gps/nmea.h"
#include "gps/receiver.h"

namespace quarlin::sim {

struct GpsSettings {
    std::string port;
    std::uint32_t baud = 9600;
    double rate = 1;         // epochs per second
    bool fullSpeed = false;  // sentences go out as fast as the port takes them
    bool plugged = true;     // whether the cable is in at the start
    FaultRates faults;
    SentenceSettings sentences;
    ReceiverSettings receiver;
};

// The kind "gps". Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadGpsPlan(TableReader& table);
GpsSettings ReadGpsSettings(TableReader& table);

}  // namespace quarlin::sim
