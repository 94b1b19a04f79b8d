// SPDX-License-Identifier: Apache-2.0
#include "gps/track.h"

#include <gtest/gtest.h>

namespace quarlin::sim {
namespace {

TEST(Track, StraightOnAtASteadySpeed) {
    TrackSettings settings;
    settings.start = {48, 16};
    settings.speed = 10;
    settings.course = 90;
    Track track(settings);
    const Motion motion = track.At(60);
    const Leg leg = LegBetween(settings.start, motion.position);
    EXPECT_NEAR(600, leg.metres, 1);
    EXPECT_NEAR(90, leg.course, 0.1);
    EXPECT_DOUBLE_EQ(10, motion.speed);
    EXPECT_DOUBLE_EQ(90, motion.course);
}

TEST(Track, ATurnTakesTimeAndGoesTheShorterWay) {
    TrackSettings settings;
    settings.speed = 10;
    settings.course = 350;
    settings.turns = {{5, 80, 20}};
    Track track(settings);
    EXPECT_DOUBLE_EQ(350, track.At(5).course);
    const Motion turning = track.At(6);
    EXPECT_NEAR(20, turning.course, 1e-6);
    EXPECT_NEAR(12.5, turning.speed, 1e-6);
    const Motion after = track.At(20);
    EXPECT_NEAR(80, after.course, 1e-6);
    EXPECT_NEAR(20, after.speed, 1e-6);
}

TEST(Track, TheWayDoesNotDependOnHowOftenOneAsks) {
    TrackSettings settings;
    settings.speed = 14;
    settings.waypoints = {{48.2, 16.36}, {48.21, 16.363}, {48.215, 16.39}};
    Track often(settings);
    Track seldom(settings);
    for (int i = 0; i < 1000; ++i) {
        often.At(i * 0.31);
    }
    const Motion a = often.At(310);
    const Motion b = seldom.At(310);
    EXPECT_EQ(a.position.latitude, b.position.latitude);
    EXPECT_EQ(a.position.longitude, b.position.longitude);
    EXPECT_EQ(a.course, b.course);
}

class RoundTrip : public ::testing::TestWithParam<double> {};

TEST_P(RoundTrip, PassesNearEveryWaypointAgainAndAgain) {
    TrackSettings settings;
    settings.speed = GetParam();
    settings.waypoints = {{48.2030, 16.3610}, {48.2103, 16.3630}, {48.2152, 16.3660}, {48.2118, 16.3830}};
    Track track(settings);
    std::vector<int> passes(settings.waypoints.size());
    std::vector<bool> near(settings.waypoints.size());
    for (int step = 0; step < 20000; ++step) {
        const Motion motion = track.At(step * 0.1);
        EXPECT_LE(motion.speed, settings.speed + 1e-9);
        for (std::size_t i = 0; i < settings.waypoints.size(); ++i) {
            const bool isNear = LegBetween(motion.position, settings.waypoints[i]).metres < 20;
            passes[i] += isNear && !near[i] ? 1 : 0;
            near[i] = isNear;
        }
    }
    for (const int count : passes) {
        EXPECT_GE(count, 2);
    }
}

INSTANTIATE_TEST_SUITE_P(MetresPerSecond, RoundTrip, ::testing::Values(5.0, 14.0, 36.0));

TEST(Track, WithoutLoopTheVehicleStopsAtTheLastWaypoint) {
    TrackSettings settings;
    settings.speed = 14;
    settings.loop = false;
    settings.waypoints = {{48.2, 16.36}, {48.205, 16.36}};
    Track track(settings);
    const Motion end = track.At(120);
    EXPECT_EQ(0, end.speed);
    EXPECT_LT(LegBetween(end.position, settings.waypoints[1]).metres, 20);
}

TEST(Track, ASingleWaypointIsAParkingPlace) {
    TrackSettings settings;
    settings.speed = 14;
    settings.waypoints = {{48.2, 16.36}};
    Track track(settings);
    const Motion motion = track.At(100);
    EXPECT_EQ(0, motion.speed);
    EXPECT_EQ(48.2, motion.position.latitude);
}

TEST(Geo, TheDateLineIsNoObstacle) {
    const GeoPoint moved = Offset({0, 179.999}, 0, 1000);
    EXPECT_LT(moved.longitude, -179.9);
    const Leg leg = LegBetween({0, 179.999}, moved);
    EXPECT_NEAR(1000, leg.metres, 1);
    EXPECT_NEAR(90, leg.course, 1e-6);
}

}  // namespace
}  // namespace quarlin::sim
