// SPDX-License-Identifier: Apache-2.0
#include "view/gps_reading.h"

#include "sample_reading.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using std::chrono::milliseconds;
using Time = ChangeTracker::Clock::time_point;

struct TimeCase {
    const char* stamp;
    const char* iso;
};

void PrintTo(const TimeCase& time, std::ostream* stream) {
    *stream << testing::PrintToString(time.stamp);
}

class TimeStamp : public testing::TestWithParam<TimeCase> {};

TEST_P(TimeStamp, BecomesIso8601OrNothing) {
    GpsReading reading;
    reading.timeStamp = GetParam().stamp;
    EXPECT_EQ(IsoTime(reading), GetParam().iso);
}

INSTANTIATE_TEST_SUITE_P(Texts, TimeStamp,
                         testing::Values(TimeCase{"9:27:50 19/11/2094", "2094-11-19T09:27:50Z"},
                                         TimeCase{"23:00:05 01/02/2000", "2000-02-01T23:00:05Z"}, TimeCase{"", ""},
                                         TimeCase{"9:27:50", ""}, TimeCase{" 19/11/2094", ""},
                                         TimeCase{"9:27:50 19/11/2094 ", ""}, TimeCase{"9:27:50 19/11/", ""},
                                         TimeCase{"-9:27:50 19/11/2094", ""},
                                         TimeCase{"99999999999:27:50 19/11/2094", ""}));

struct SystemCase {
    int prn;
    SatelliteSystem system;
};

void PrintTo(const SystemCase& satellite, std::ostream* stream) {
    *stream << satellite.prn;
}

class SatelliteNumber : public testing::TestWithParam<SystemCase> {};

TEST_P(SatelliteNumber, TellsTheSystem) {
    EXPECT_EQ(SystemOf({GetParam().prn, 0, 0, 0, 0}), GetParam().system);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, SatelliteNumber,
    testing::Values(SystemCase{-1, SatelliteSystem::kOther}, SystemCase{0, SatelliteSystem::kOther},
                    SystemCase{1, SatelliteSystem::kGps}, SystemCase{32, SatelliteSystem::kGps},
                    SystemCase{33, SatelliteSystem::kSbas}, SystemCase{64, SatelliteSystem::kSbas},
                    SystemCase{65, SatelliteSystem::kGlonass}, SystemCase{99, SatelliteSystem::kGlonass},
                    SystemCase{100, SatelliteSystem::kOther}, SystemCase{152, SatelliteSystem::kSbas},
                    SystemCase{158, SatelliteSystem::kSbas}, SystemCase{193, SatelliteSystem::kQzss},
                    SystemCase{202, SatelliteSystem::kQzss}, SystemCase{203, SatelliteSystem::kOther}));

TEST(Reading, IsCompleteWithTimeDateFixAndSatellites) {
    EXPECT_TRUE(IsComplete(SampleReading()));
    GpsReading reading = SampleReading();
    reading.timeStamp = "9:27:50";
    EXPECT_FALSE(IsComplete(reading));
    reading = SampleReading();
    reading.fixMode = FIX_MODE_UNKNOWN;
    EXPECT_FALSE(IsComplete(reading));
    reading = SampleReading();
    reading.satellites.clear();
    EXPECT_FALSE(IsComplete(reading));
}

TEST(Reading, DiffersByAnyValueAndAnySatellite) {
    EXPECT_TRUE(SameReading(SampleReading(), SampleReading()));
    GpsReading reading = SampleReading();
    reading.altitude += 0.1;
    EXPECT_FALSE(SameReading(reading, SampleReading()));
    reading = SampleReading();
    reading.satellites[2].SNR = 1;
    EXPECT_FALSE(SameReading(reading, SampleReading()));
    reading = SampleReading();
    reading.satellites.pop_back();
    EXPECT_FALSE(SameReading(reading, SampleReading()));
}

TEST(ChangeTracker, CountsFromTheLastChange) {
    const Time start{};
    ChangeTracker tracker;
    tracker.See(SampleReading(), start + milliseconds(1000));
    EXPECT_EQ(tracker.UnchangedFor(start + milliseconds(1000)), milliseconds(0));
    tracker.See(SampleReading(), start + milliseconds(1100));
    EXPECT_EQ(tracker.UnchangedFor(start + milliseconds(1200)), milliseconds(200));

    GpsReading moved = SampleReading();
    moved.speedKnots = 11;
    tracker.See(moved, start + milliseconds(1300));
    EXPECT_EQ(tracker.UnchangedFor(start + milliseconds(1350)), milliseconds(50));
    EXPECT_EQ(tracker.Latest().speedKnots, 11);
}

TEST(ChangeTracker, HasNoAgeBeforeTheFirstReading) {
    EXPECT_EQ(ChangeTracker().UnchangedFor(Time{} + milliseconds(5000)), milliseconds(0));
}

}  // namespace
}  // namespace quarlin::qlctl
