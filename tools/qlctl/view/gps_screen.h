// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/gps_reading.h"

#include <string>
#include <string_view>
#include <vector>

namespace quarlin::qlctl {

struct ScreenStyle {
    // Lines that the terminal shows. The picture is never taller, or the terminal would scroll it away.
    int rows = 24;
    bool colour = true;
};

// Columns of every line of the picture at most.
inline constexpr size_t kScreenColumns = 79;

// The picture of `gps watch`, UTF-8: the values, then one bar per satellite, GPS to the left, GLONASS to the right.
std::vector<std::string> ReadingScreen(const GpsReading& reading, std::string_view portName,
                                       std::chrono::seconds unchangedFor, const ScreenStyle& style);

// The picture until the receiver's first line.
std::vector<std::string> WaitingScreen(std::string_view portName, std::chrono::seconds waitedFor);

}  // namespace quarlin::qlctl
