// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/gps_reading.h"

#include <string>
#include <string_view>

namespace quarlin::qlctl {

// The values of a reading in words, ASCII, as the reports and the screen share them.
std::string FixText(const GpsReading& reading);
// Says so when there is no position yet, or when it is the last one before the fix was lost.
std::string PositionText(const GpsReading& reading);
std::string TimeText(const GpsReading& reading);
std::string SpeedText(const GpsReading& reading);
std::string CourseText(const GpsReading& reading);
std::string DilutionText(const GpsReading& reading);
std::string SatelliteCountText(const GpsReading& reading);

// A report of several lines: `gps status`.
std::string StatusReport(const GpsReading& reading, std::string_view portName);

// A table of the satellites in view: `gps satellites`.
std::string SatelliteTable(const GpsReading& reading);

// One line with the moving values: `gps watch` where nothing can be redrawn.
std::string ReadingLine(const GpsReading& reading);

}  // namespace quarlin::qlctl
