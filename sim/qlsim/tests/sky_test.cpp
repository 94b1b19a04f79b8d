// SPDX-License-Identifier: Apache-2.0
#include "gps/sky.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "gps/dilution.h"

namespace quarlin::sim {
namespace {

constexpr GeoPoint kVienna{48.2, 16.37};
constexpr double kDay = 86400;

TEST(Sky, HoldsAPlausibleNumberOfSatellitesEverywhereAllDayLong) {
    for (const std::uint64_t seed : {1u, 2u, 3u}) {
        const Sky sky(seed, true);
        for (const GeoPoint place : {kVienna, GeoPoint{-33.9, 18.4}, GeoPoint{0, -78}, GeoPoint{78.2, 15.6}}) {
            for (double time = 0; time < kDay; time += 900) {
                std::map<SatelliteSystem, int> counts;
                for (const SkyPosition& satellite : sky.Above(place, time)) {
                    ++counts[satellite.system];
                }
                EXPECT_GE(counts[SatelliteSystem::kGps], 6);
                EXPECT_LE(counts[SatelliteSystem::kGps], 16);
                EXPECT_GE(counts[SatelliteSystem::kGlonass], 4);
                EXPECT_LE(counts[SatelliteSystem::kGlonass], 13);
            }
        }
    }
}

TEST(Sky, SatellitesRiseAndSetSlowlyAndKeepTheirNumbers) {
    const Sky sky(5, true);
    std::set<int> seen;
    std::size_t changes = 0;
    std::map<int, SkyPosition> before;
    for (double time = 0; time < kDay; time += 60) {
        std::map<int, SkyPosition> now;
        for (const SkyPosition& satellite : sky.Above(kVienna, time)) {
            EXPECT_TRUE(now.emplace(satellite.number, satellite).second) << "twice in view: " << satellite.number;
            EXPECT_EQ(satellite.system == SatelliteSystem::kGlonass, satellite.number >= 65);
            EXPECT_GT(satellite.elevation, 0);
            EXPECT_LE(satellite.elevation, 90);
            EXPECT_GE(satellite.azimuth, 0);
            EXPECT_LT(satellite.azimuth, 360);
            seen.insert(satellite.number);
            const auto earlier = before.find(satellite.number);
            if (earlier != before.end()) {
                EXPECT_LT(std::abs(satellite.elevation - earlier->second.elevation), 1.0);
            } else if (!before.empty()) {
                ++changes;
                EXPECT_LT(satellite.elevation, 1.0) << "a satellite rises at the horizon";
            }
        }
        before = std::move(now);
    }
    EXPECT_EQ(31u + 24u, seen.size());
    EXPECT_GT(changes, 60u);
}

TEST(Sky, ComesHighestFirstAndWithoutGlonassIfSoAsked) {
    const auto above = Sky(9, false).Above(kVienna, 0);
    ASSERT_FALSE(above.empty());
    for (std::size_t i = 0; i < above.size(); ++i) {
        EXPECT_EQ(SatelliteSystem::kGps, above[i].system);
        if (i > 0) {
            EXPECT_LE(above[i].elevation, above[i - 1].elevation);
        }
    }
}

TEST(Dilution, OfAKnownGeometry) {
    // One satellite overhead and three on the horizon, a third of a circle apart: solved by hand.
    const std::vector<SkyPosition> satellites = {{SatelliteSystem::kGps, 1, 90, 0},
                                                 {SatelliteSystem::kGps, 2, 0, 0},
                                                 {SatelliteSystem::kGps, 3, 0, 120},
                                                 {SatelliteSystem::kGps, 4, 0, 240}};
    const Dilution dilution = DilutionOf(satellites, false);
    EXPECT_NEAR(std::sqrt(4.0 / 3.0), dilution.horizontal, 1e-9);
    EXPECT_NEAR(std::sqrt(4.0 / 3.0), dilution.vertical, 1e-9);
    EXPECT_NEAR(std::sqrt(8.0 / 3.0), dilution.position, 1e-9);
}

TEST(Dilution, ThreeSatellitesDoForAFixWithKnownHeightOnly) {
    const std::vector<SkyPosition> satellites = {
        {SatelliteSystem::kGps, 2, 30, 0}, {SatelliteSystem::kGps, 3, 30, 120}, {SatelliteSystem::kGps, 4, 30, 240}};
    EXPECT_EQ(Dilution::kWorst, DilutionOf(satellites, false).position);
    EXPECT_LT(DilutionOf(satellites, true).horizontal, 2);
}

TEST(Dilution, SatellitesInOneSpotDetermineNothing) {
    const std::vector<SkyPosition> satellites(6, {SatelliteSystem::kGps, 2, 30, 40});
    EXPECT_EQ(Dilution::kWorst, DilutionOf(satellites, false).horizontal);
}

}  // namespace
}  // namespace quarlin::sim
