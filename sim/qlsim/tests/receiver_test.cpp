// SPDX-License-Identifier: Apache-2.0
#include "gps/receiver.h"

#include <gtest/gtest.h>

#include <set>

#include "gps/nmea.h"
#include "sentences.h"

namespace quarlin::sim {
namespace {

ReceiverSettings Settings() {
    ReceiverSettings settings;
    settings.startUtc = 1778574600000;
    settings.coldStart = 4;
    settings.only2d = 2;
    settings.track.speed = 14;
    return settings;
}

std::size_t Used(const Epoch& epoch) {
    return static_cast<std::size_t>(std::count_if(epoch.satellites.begin(), epoch.satellites.end(),
                                                  [](const ReceivedSatellite& satellite) { return satellite.used; }));
}

std::string Drive(std::uint64_t seed, ReceiverSettings settings = Settings()) {
    Receiver receiver(std::move(settings), seed);
    SentenceWriter writer({});
    std::string stream;
    for (int i = 0; i < 120; ++i) {
        for (const std::string& sentence : writer.Write(receiver.Measure(i))) {
            stream += sentence + "\r\n";
        }
    }
    return stream;
}

TEST(Receiver, AColdStartGoesFromNothingOverTwoToThreeDimensions) {
    Receiver receiver(Settings(), 1);
    for (int tenth = 0; tenth < 200; ++tenth) {
        const double time = tenth / 10.0;
        const Epoch epoch = receiver.Measure(time);
        const Fix expected = time < 4 ? Fix::kNone : time < 6 ? Fix::k2d : Fix::k3d;
        EXPECT_EQ(expected, epoch.fix) << time;
        EXPECT_EQ(time >= 2, epoch.utc.has_value()) << time;
        if (expected == Fix::kNone) {
            EXPECT_EQ(0u, Used(epoch));
        } else if (expected == Fix::k2d) {
            EXPECT_EQ(3u, Used(epoch));
        } else {
            EXPECT_GE(Used(epoch), 4u);
        }
    }
}

TEST(Receiver, FindsItsSatellitesOneAfterTheOther) {
    ReceiverSettings settings = Settings();
    settings.coldStart = 30;
    Receiver receiver(settings, 1);
    std::set<std::size_t> counts;
    for (int i = 0; i <= 30; ++i) {
        const Epoch epoch = receiver.Measure(i);
        counts.insert(static_cast<std::size_t>(
            std::count_if(epoch.satellites.begin(), epoch.satellites.end(),
                          [](const ReceivedSatellite& satellite) { return satellite.snr.has_value(); })));
    }
    EXPECT_GT(counts.size(), 6u);
    EXPECT_LE(*counts.begin(), 3u);
}

TEST(Receiver, LosesTheFixAndRegainsIt) {
    Receiver receiver(Settings(), 1);
    EXPECT_EQ(Fix::k3d, receiver.Measure(10).fix);
    receiver.LoseFix();
    EXPECT_EQ(Fix::kNone, receiver.Measure(11).fix);
    receiver.RegainFix();
    EXPECT_EQ(Fix::k3d, receiver.Measure(12).fix);
}

TEST(Receiver, APlugThatComesBackMeansAHotStartWithTheTimeKept) {
    Receiver receiver(Settings(), 1);
    receiver.Measure(10);
    receiver.PowerUpAgain(20);
    const Epoch searching = receiver.Measure(20.5);
    EXPECT_EQ(Fix::kNone, searching.fix);
    EXPECT_TRUE(searching.utc.has_value());
    EXPECT_EQ(Fix::k3d, receiver.Measure(21).fix);
}

TEST(Receiver, WithFewSatellitesTheFixGetsFlatAndThenIsGone) {
    Receiver receiver(Settings(), 1);
    EXPECT_EQ(Fix::k3d, receiver.Measure(10).fix);
    receiver.LimitSatellites(3);
    const Epoch three = receiver.Measure(11);
    EXPECT_EQ(3u, three.satellites.size());
    EXPECT_EQ(Fix::k2d, three.fix);
    receiver.LimitSatellites(2);
    EXPECT_EQ(Fix::kNone, receiver.Measure(12).fix);
    receiver.LimitSatellites(std::nullopt);
    EXPECT_EQ(Fix::k3d, receiver.Measure(13).fix);
}

TEST(Receiver, StaysNearTheTrackAndHasAGoodGeometry) {
    ReceiverSettings settings = Settings();
    Receiver receiver(settings, 3);
    Track track(settings.track);
    for (int i = 0; i < 600; ++i) {
        const Epoch epoch = receiver.Measure(i);
        const Motion motion = track.At(i);
        if (i >= 6) {
            ASSERT_EQ(Fix::k3d, epoch.fix);
            EXPECT_LT(LegBetween(motion.position, epoch.position).metres, 12);
            EXPECT_LT(epoch.dilution.position, 4);
            EXPECT_GT(epoch.dilution.position, epoch.dilution.horizontal);
            EXPECT_EQ(motion.speed, epoch.speed);
        }
    }
}

TEST(Receiver, SignalsAreNoisyButInAReceiversRange) {
    Receiver receiver(Settings(), 1);
    std::set<int> values;
    for (int i = 10; i < 300; ++i) {
        for (const ReceivedSatellite& satellite : receiver.Measure(i).satellites) {
            if (satellite.snr) {
                values.insert(*satellite.snr);
                EXPECT_GE(*satellite.snr, 14);
                EXPECT_LE(*satellite.snr, 56);
            }
            EXPECT_TRUE(!satellite.used || satellite.snr.has_value());
        }
    }
    EXPECT_GT(values.size(), 20u);
}

TEST(Receiver, TheSameSeedGivesTheSameBytesAndAnotherSeedOthers) {
    EXPECT_EQ(Drive(42), Drive(42));
    EXPECT_NE(Drive(42), Drive(43));
}

TEST(Receiver, EverySentenceOfALongRunIsWellFormed) {
    ReceiverSettings settings = Settings();
    settings.skySpeed = 100;
    const auto lines = testing::Lines(Drive(8, settings));
    ASSERT_GT(lines.size(), 1000u);
    std::set<std::string> types;
    std::set<std::string> cycles;
    for (const std::string& line : lines) {
        EXPECT_TRUE(testing::ChecksumIsRight(line)) << line;
        EXPECT_LE(line.size(), 80u) << "82 with the line end, as NMEA has it";
        types.insert(testing::Type(line));
        if (line.find("GSV") != std::string::npos) {
            cycles.insert(testing::Fields(line)[3]);
        }
    }
    EXPECT_EQ((std::set<std::string>{"GLGSV", "GNGGA", "GNGSA", "GNRMC", "GNVTG", "GPGSV"}), types);
    EXPECT_GT(cycles.size(), 3u) << "satellites come and go";
}

}  // namespace
}  // namespace quarlin::sim
