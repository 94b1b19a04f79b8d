// SPDX-License-Identifier: Apache-2.0
#include "gps/sky.h"

#include <algorithm>
#include <numeric>

#include "core/random.h"

namespace quarlin::sim {
namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;
constexpr double kEarthRate = kFullTurn / 86164.1;  // radians per second: one turn in a sidereal day

struct Vector {
    double x, y, z;
};

}  // namespace

Sky::Sky(std::uint64_t seed, bool withGlonass) {
    Random random(DeriveSeed(seed, "sky"));
    const double gpsNode = random.Between(0, kFullTurn);
    const double glonassNode = random.Between(0, kFullTurn);

    std::vector<int> numbers(32);
    std::iota(numbers.begin(), numbers.end(), 1);
    for (std::uint32_t i = 31; i > 0; --i) {
        std::swap(numbers[i], numbers[random.Below(i + 1)]);
    }
    constexpr int kGpsPlanes = 6;
    constexpr int kGpsSatellites = 31;  // of the 32 numbers one is out of service, as it mostly is
    for (int i = 0; i < kGpsSatellites; ++i) {
        const int plane = i % kGpsPlanes;
        const double slot = i / kGpsPlanes;
        const double spacing = plane == 0 ? 6.0 : 5.0;
        const double jitter = random.Between(-8, 8) * kDegrees;
        orbits_.push_back({SatelliteSystem::kGps, numbers[static_cast<std::size_t>(i)], 26560e3, 55 * kDegrees,
                           gpsNode + plane * kFullTurn / kGpsPlanes,
                           slot * kFullTurn / spacing + plane * 32 * kDegrees + jitter, kFullTurn / 43082.0});
    }
    for (int i = 0; withGlonass && i < 24; ++i) {
        const int plane = i / 8;
        orbits_.push_back({SatelliteSystem::kGlonass, 65 + i, 25510e3, 64.8 * kDegrees,
                           glonassNode + plane * kFullTurn / 3, (i % 8) * kFullTurn / 8 + plane * 15 * kDegrees,
                           kFullTurn / 40544.0});
    }
}

std::vector<SkyPosition> Sky::Above(GeoPoint observer, double time) const {
    const double latitude = observer.latitude * kDegrees;
    const double meridian = observer.longitude * kDegrees + kEarthRate * time;
    const Vector up{std::cos(latitude) * std::cos(meridian), std::cos(latitude) * std::sin(meridian),
                    std::sin(latitude)};
    const Vector east{-std::sin(meridian), std::cos(meridian), 0};
    const Vector north{-std::sin(latitude) * std::cos(meridian), -std::sin(latitude) * std::sin(meridian),
                       std::cos(latitude)};

    std::vector<SkyPosition> above;
    for (const Orbit& orbit : orbits_) {
        const double along = orbit.phase + orbit.rate * time;
        const double across = std::sin(along) * std::cos(orbit.inclination);
        const Vector satellite{orbit.radius * (std::cos(along) * std::cos(orbit.node) - across * std::sin(orbit.node)),
                               orbit.radius * (std::cos(along) * std::sin(orbit.node) + across * std::cos(orbit.node)),
                               orbit.radius * std::sin(along) * std::sin(orbit.inclination)};
        const Vector sight{satellite.x - kEarthRadius * up.x, satellite.y - kEarthRadius * up.y,
                           satellite.z - kEarthRadius * up.z};
        const auto part = [&sight](const Vector& axis) {
            return sight.x * axis.x + sight.y * axis.y + sight.z * axis.z;
        };
        const double height = part(up);
        const double elevation = std::atan2(height, std::hypot(part(east), part(north))) / kDegrees;
        if (elevation > 0) {
            above.push_back(
                {orbit.system, orbit.number, elevation, WrapCourse(std::atan2(part(east), part(north)) / kDegrees)});
        }
    }
    std::stable_sort(above.begin(), above.end(),
                     [](const SkyPosition& a, const SkyPosition& b) { return a.elevation > b.elevation; });
    return above;
}

}  // namespace quarlin::sim
