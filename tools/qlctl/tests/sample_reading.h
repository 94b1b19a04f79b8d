// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/gps_reading.h"

namespace quarlin::qlctl {

// A walk west of Dublin with three GPS satellites, one of them unused, and one GLONASS satellite.
inline GpsReading SampleReading() {
    GpsReading reading;
    reading.timeStamp = "9:27:50 19/11/2026";
    reading.latitude = 53.361337;
    reading.longitude = -6.50562;
    reading.altitude = 61.7;
    reading.speedKnots = 10;
    reading.course = 54.7;
    reading.hdop = 1.03;
    reading.vdop = 0.9;
    reading.pdop = 1.4;
    reading.fixMode = FIX_MODE_3D;
    reading.fixSelection = FIX_SELECTION_AUTOMATIC;
    reading.fixQuality = 1;
    reading.hasFix = true;
    reading.satellitesInView = 4;
    reading.satellitesUsed = 3;
    reading.satellites = {{10, 63, 137, 17, 1}, {7, 61, 98, 50, 1}, {5, 9, 290, 0, 0}, {71, 42, 300, 25, 1}};
    return reading;
}

}  // namespace quarlin::qlctl
