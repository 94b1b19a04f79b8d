// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gps/geo.h"

namespace quarlin::sim {

enum class SatelliteSystem {
    kGps,
    kGlonass
};

// A satellite above the horizon.
struct SkyPosition {
    SatelliteSystem system = SatelliteSystem::kGps;
    int number = 0;        // as NMEA counts: GPS 1 to 32, GLONASS 65 to 88
    double elevation = 0;  // degrees
    double azimuth = 0;    // degrees
};

// The two constellations on circular orbits around a turning earth: six GPS planes at 55 degrees with about twelve
// hours, three GLONASS planes at 64.8 degrees with about eleven and a quarter. Where in its orbit each satellite stands
// comes from the seed. The highest satellites come first.
class Sky {
  public:
    Sky(std::uint64_t seed, bool withGlonass);

    // time: seconds of the simulation's own sky clock.
    std::vector<SkyPosition> Above(GeoPoint observer, double time) const;

  private:
    struct Orbit {
        SatelliteSystem system;
        int number;
        double radius;       // metres
        double inclination;  // radians
        double node;         // radians, ascending node at time 0
        double phase;        // radians, argument of latitude at time 0
        double rate;         // radians per second
    };

    std::vector<Orbit> orbits_;
};

}  // namespace quarlin::sim
