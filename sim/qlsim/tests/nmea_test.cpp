// SPDX-License-Identifier: Apache-2.0
#include "gps/nmea.h"

#include <gtest/gtest.h>

#include "gps/line_faults.h"
#include "sentences.h"

namespace quarlin::sim {
namespace {

using testing::ChecksumIsRight;
using testing::Fields;

ReceivedSatellite Satellite(SatelliteSystem system, int number, bool used = true) {
    return {{system, number, 45.4, 359.7}, 40, used};
}

Epoch FixedEpoch() {
    Epoch epoch;
    epoch.utc = 1778574600250;  // 2026-05-12T08:30:00.250Z
    epoch.fix = Fix::k3d;
    epoch.position = {48.2082, -16.3738};
    epoch.altitude = 171.04;
    epoch.speed = 10;
    epoch.course = 54.7;
    epoch.dilution = {1.624, 0.916, 1.333};
    epoch.satellites = {Satellite(SatelliteSystem::kGps, 2), Satellite(SatelliteSystem::kGlonass, 70),
                        Satellite(SatelliteSystem::kGps, 31, false)};
    return epoch;
}

std::vector<std::string> Write(const Epoch& epoch, SentenceSettings settings = {}) {
    return SentenceWriter(std::move(settings)).Write(epoch);
}

TEST(Checksum, IsTheExclusiveOrOfTheBody) {
    EXPECT_EQ("$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76",
              Framed("GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,"));
    EXPECT_EQ("$*00", Framed(""));
}

TEST(SentenceWriter, WritesEveryFieldOfAFix) {
    const std::vector<std::string> expected = {
        Framed("GNGGA,083000.250,4812.4920,N,01622.4280,W,1,02,0.92,171.0,M,43.5,M,,"),
        Framed("GNGSA,A,3,02,,,,,,,,,,,,1.62,0.92,1.33"),
        Framed("GNGSA,A,3,70,,,,,,,,,,,,1.62,0.92,1.33"),
        Framed("GPGSV,1,1,02,02,45,000,40,31,45,000,40"),
        Framed("GLGSV,1,1,01,70,45,000,40"),
        Framed("GNRMC,083000.250,A,4812.4920,N,01622.4280,W,19.44,54.70,120526,,,A"),
        Framed("GNVTG,54.70,T,,M,19.44,N,36.00,K,A"),
    };
    EXPECT_EQ(expected, Write(FixedEpoch()));
}

TEST(SentenceWriter, LeavesTheFieldsEmptyWithoutAFix) {
    const std::vector<std::string> expected = {
        Framed("GNGGA,,,,,,0,00,,,M,,M,,"),
        Framed("GNGSA,A,1,,,,,,,,,,,,,,,"),
        Framed("GNGSA,A,1,,,,,,,,,,,,,,,"),
        Framed("GPGSV,1,1,00"),
        Framed("GLGSV,1,1,00"),
        Framed("GNRMC,,V,,,,,,,,,,N"),
        Framed("GNVTG,,T,,M,,N,,K,N"),
    };
    EXPECT_EQ(expected, Write(Epoch()));
}

TEST(SentenceWriter, MinutesNeverRead60) {
    Epoch epoch = FixedEpoch();
    epoch.position = {-47.9999999999, 8.9999999999};
    const auto fields = Fields(Write(epoch).front());
    EXPECT_EQ("4800.0000", fields[2]);
    EXPECT_EQ("S", fields[3]);
    EXPECT_EQ("00900.0000", fields[4]);
    EXPECT_EQ("E", fields[5]);
}

TEST(SentenceWriter, TalkerAndChoiceOfSentences) {
    SentenceSettings settings;
    settings.talker = "GP";
    settings.glonass = false;
    settings.order = {Sentence::kRmc, Sentence::kGsv, Sentence::kGsa};
    std::vector<std::string> types;
    for (const std::string& sentence : Write(FixedEpoch(), settings)) {
        types.push_back(testing::Type(sentence));
    }
    EXPECT_EQ((std::vector<std::string>{"GPRMC", "GPGSV", "GPGSA"}), types);
}

TEST(SentenceWriter, GsvComesWithEveryNthEpoch) {
    SentenceSettings settings;
    settings.order = {Sentence::kGsv};
    settings.glonass = false;
    settings.gsvEvery = 3;
    SentenceWriter writer(settings);
    std::vector<std::size_t> counts;
    for (int i = 0; i < 7; ++i) {
        counts.push_back(writer.Write(FixedEpoch()).size());
    }
    EXPECT_EQ((std::vector<std::size_t>{1, 0, 0, 1, 0, 0, 1}), counts);
}

class GsvCycle : public ::testing::TestWithParam<std::size_t> {};

TEST_P(GsvCycle, NumbersItsMessagesAndHoldsEverySatelliteOnce) {
    Epoch epoch;
    for (std::size_t i = 0; i < GetParam(); ++i) {
        epoch.satellites.push_back(Satellite(SatelliteSystem::kGps, static_cast<int>(i) + 1));
    }
    SentenceSettings settings;
    settings.order = {Sentence::kGsv};
    settings.glonass = false;
    const auto cycle = Write(epoch, settings);
    EXPECT_EQ(std::max<std::size_t>(1, (GetParam() + 3) / 4), cycle.size());
    int next = 1;
    for (std::size_t message = 0; message < cycle.size(); ++message) {
        const auto fields = Fields(cycle[message]);
        EXPECT_TRUE(ChecksumIsRight(cycle[message]));
        EXPECT_EQ(std::to_string(cycle.size()), fields[1]);
        EXPECT_EQ(std::to_string(message + 1), fields[2]);
        EXPECT_EQ(GetParam(), std::stoul(fields[3]));
        ASSERT_EQ(0u, (fields.size() - 4) % 4);
        for (std::size_t block = 4; block < fields.size(); block += 4) {
            EXPECT_EQ(next++, std::stoi(fields[block]));
        }
    }
    EXPECT_EQ(static_cast<int>(GetParam()) + 1, next);
}

INSTANTIATE_TEST_SUITE_P(Counts, GsvCycle, ::testing::Values(0, 1, 3, 4, 5, 8, 11, 12, 13, 16));

TEST(SentenceWriter, AnUntrackedSatelliteHasNoSignal) {
    Epoch epoch;
    epoch.satellites = {{{SatelliteSystem::kGlonass, 88, 3.2, 7.5}, std::nullopt, false}};
    SentenceSettings settings;
    settings.order = {Sentence::kGsv};
    EXPECT_EQ(Framed("GLGSV,1,1,01,88,03,008,"), Write(epoch, settings)[1]);
}

TEST(LineFaults, WithoutFaultsTheLineArrivesWhole) {
    LineFaults faults({}, 1);
    EXPECT_EQ(Framed("GPTXT") + "\r\n", faults.Send(Framed("GPTXT")));
}

TEST(LineFaults, ABadChecksumIsAlwaysWrongAndStaysHexadecimal) {
    LineFaults faults({0, 0, 1}, 1);
    for (int i = 0; i < 200; ++i) {
        const auto lines = testing::Lines(faults.Send(Framed("GPTXT," + std::to_string(i))));
        ASSERT_EQ(1u, lines.size());
        EXPECT_FALSE(ChecksumIsRight(lines[0])) << lines[0];
        EXPECT_NE(std::string::npos, std::string("0123456789ABCDEF").find(lines[0].back()));
    }
}

TEST(LineFaults, DropAndNoiseHitAboutAsOftenAsTheyShould) {
    const std::string sentence = Framed(std::string(9995, 'A'));
    LineFaults dropping({0, 0.1, 0}, 1);
    const std::size_t arrived = dropping.Send(sentence).size();
    EXPECT_GT(arrived, 8850u);
    EXPECT_LT(arrived, 9150u);

    LineFaults noisy({0.1, 0, 0}, 1);
    std::size_t strange = 0;
    for (const char c : noisy.Send(sentence)) {
        strange += c != 'A' ? 1u : 0u;
    }
    EXPECT_GT(strange, 850u);
    EXPECT_LT(strange, 1150u);
}

TEST(LineFaults, TheSameSeedMakesTheSameFaults) {
    LineFaults one({0.05, 0.05, 0.5}, 77);
    LineFaults other({0.05, 0.05, 0.5}, 77);
    LineFaults different({0.05, 0.05, 0.5}, 78);
    std::string fromOne, fromOther, fromDifferent;
    for (int i = 0; i < 50; ++i) {
        fromOne += one.Send(Framed("GPGGA,083000"));
        fromOther += other.Send(Framed("GPGGA,083000"));
        fromDifferent += different.Send(Framed("GPGGA,083000"));
    }
    EXPECT_EQ(fromOne, fromOther);
    EXPECT_NE(fromOne, fromDifferent);
}

}  // namespace
}  // namespace quarlin::sim
