// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quarlin::sim {

inline constexpr double kDegrees = std::numbers::pi / 180.0;  // one degree in radians
inline constexpr double kEarthRadius = 6371000.0;             // metres; a round earth is near enough for a simulation

// Degrees; south and west are negative.
struct GeoPoint {
    double latitude = 0;
    double longitude = 0;
};

inline double WrapCourse(double degrees) {
    const double wrapped = std::fmod(degrees, 360.0);
    return wrapped < 0 ? wrapped + 360.0 : wrapped;
}

// The shorter way from one course to the other, -180 to 180.
inline double CourseDifference(double from, double to) {
    const double difference = WrapCourse(to - from);
    return difference > 180.0 ? difference - 360.0 : difference;
}

// A point some metres to the north and east.
inline GeoPoint Offset(GeoPoint from, double north, double east) {
    GeoPoint moved;
    moved.latitude = from.latitude + north / kEarthRadius / kDegrees;
    const double shrink = std::max(std::cos(from.latitude * kDegrees), 0.01);
    moved.longitude = from.longitude + east / (kEarthRadius * shrink) / kDegrees;
    if (moved.longitude > 180.0) {
        moved.longitude -= 360.0;
    } else if (moved.longitude < -180.0) {
        moved.longitude += 360.0;
    }
    return moved;
}

struct Leg {
    double metres = 0;
    double course = 0;  // degrees
};

// Distance and course between two points that are near each other.
inline Leg LegBetween(GeoPoint from, GeoPoint to) {
    const double north = (to.latitude - from.latitude) * kDegrees * kEarthRadius;
    double turn = to.longitude - from.longitude;
    if (turn > 180.0) {
        turn -= 360.0;
    } else if (turn < -180.0) {
        turn += 360.0;
    }
    const double middle = (from.latitude + to.latitude) / 2 * kDegrees;
    const double east = turn * kDegrees * kEarthRadius * std::cos(middle);
    return {std::hypot(north, east), WrapCourse(std::atan2(east, north) / kDegrees)};
}

}  // namespace quarlin::sim
