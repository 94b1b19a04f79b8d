// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "gps/geo.h"

namespace quarlin::sim {

// From `at` seconds on the vehicle turns to a course, changes its speed, or both.
struct Turn {
    double at = 0;
    std::optional<double> course;  // degrees
    std::optional<double> speed;   // metres per second
};

struct TrackSettings {
    GeoPoint start{48.20820, 16.37380};
    double altitude = 171.0;          // metres above mean sea level
    double speed = 0;                 // metres per second; with waypoints the cruising speed
    double course = 0;                // degrees
    std::vector<Turn> turns;          // in the order of their times
    std::vector<GeoPoint> waypoints;  // when not empty, the vehicle starts at the first and drives to each in turn
    bool loop = true;                 // after the last waypoint on to the first; otherwise it stops there
};

struct Motion {
    GeoPoint position;
    double altitude = 0;  // metres
    double speed = 0;     // metres per second
    double course = 0;    // degrees
};

// A vehicle on its way. It accelerates, brakes before corners and turns at a limited rate, in steps of a fixed length,
// so that its way does not depend on how often it is asked.
class Track {
  public:
    explicit Track(TrackSettings settings);

    // Where it is at a time in seconds; a time before the last one asked for gives the last answer again.
    Motion At(double time);

  private:
    struct Aim {
        double course;
        double speed;
    };

    void Step();
    Aim AimOfTurns() const;
    Aim AimOfWaypoints();
    double CornerSpeed(double metresToCorner) const;
    std::size_t Following(std::size_t waypoint) const { return (waypoint + 1) % settings_.waypoints.size(); }

    TrackSettings settings_;
    Motion motion_;
    double travelled_ = 0;
    std::size_t steps_ = 0;
    std::size_t target_ = 1;
    bool arrived_ = false;
};

}  // namespace quarlin::sim
