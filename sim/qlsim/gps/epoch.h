// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "gps/dilution.h"
#include "gps/sky.h"

namespace quarlin::sim {

// The values are those of the GSA sentence.
enum class Fix {
    kNone = 1,
    k2d = 2,
    k3d = 3
};

struct ReceivedSatellite {
    SkyPosition sky;
    std::optional<int> snr;  // dB-Hz; none while the receiver does not track the satellite
    bool used = false;
};

// What the receiver knows at one moment.
struct Epoch {
    std::optional<std::int64_t> utc;  // milliseconds since 1970; none until the receiver has learned the time
    Fix fix = Fix::kNone;
    GeoPoint position;    // the rest down to the dilution counts only with a fix
    double altitude = 0;  // metres above mean sea level
    double speed = 0;     // metres per second
    double course = 0;    // degrees
    Dilution dilution;
    std::vector<ReceivedSatellite> satellites;  // all in view, highest first
};

}  // namespace quarlin::sim
