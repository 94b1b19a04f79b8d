// SPDX-License-Identifier: Apache-2.0
// Reading a receiver through a real port: what its sentences make of the values.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "gps/gps_session_win.h"
#include "gps/read_watch_win.h"
#include "gps/sentences.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

constexpr double kTolerance = 5e-7;

TEST(GpsReading, GivesEveryValueThatTheReceiverSends) {
    ReadingGps gps;
    gps.Send(FullReport());
    gps.SettleBySpeed(12);
    const GpsValues values = ReadValues();
    EXPECT_NEAR(values.latitude, 53.361337, kTolerance);
    EXPECT_NEAR(values.longitude, -6.505620, kTolerance);
    EXPECT_EQ(values.altitude, 61.7);
    EXPECT_EQ(values.quality, 1);
    EXPECT_EQ(values.mode, FIX_MODE_3D);
    EXPECT_EQ(values.status, 1);
    EXPECT_EQ(values.selection, FIX_SELECTION_AUTOMATIC);
    EXPECT_EQ(values.used, 8);
    EXPECT_EQ(values.pdop, 1.72);
    EXPECT_EQ(values.hdop, 1.03);
    EXPECT_EQ(values.vdop, 1.38);
    EXPECT_EQ(values.inView, 8);
    EXPECT_EQ(values.speed, 12);
    EXPECT_EQ(values.bearing, 54.7);
    EXPECT_EQ(values.timeStamp, "9:27:50 19/11/2094");
    EXPECT_EQ(Text(ReadSatellites()),
              "[10 63 137 17 used][7 61 98 15 used][5 59 290 20 used][8 54 157 30 used][2 39 223 19 used]"
              "[13 28 70 17 used][65 40 157 19][-1 0 0 0]");
}

TEST(GpsReading, GivesTheSpeedInKnots) {
    ReadingGps gps;
    gps.Send(Sentence("GPRMC,092750.000,A,5321.6802,N,00630.3372,W,0.5,54.7,191194,,,A"));
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 0.5);
}

TEST(GpsReading, GivesSouthAndWestAsNegative) {
    ReadingGps gps;
    const auto send = [&](const char* position) {
        gps.Send(Sentence(std::string("GNGGA,235959.900,") + position + ",2,12,0.9,-21.4,M,0.0,M,,"));
        gps.Settle();
        return ReadValues();
    };
    GpsValues values = send("3747.0873,S,17518.8938,E");
    EXPECT_NEAR(values.latitude, -37.784788, kTolerance);
    EXPECT_NEAR(values.longitude, 175.314897, kTolerance);
    EXPECT_EQ(values.altitude, -21.4);
    EXPECT_EQ(values.quality, 2);
    EXPECT_EQ(values.timeStamp, "23:59:59");
    values = send("3747.0873,S,17518.8938,W");
    EXPECT_NEAR(values.latitude, -37.784788, kTolerance);
    EXPECT_NEAR(values.longitude, -175.314897, kTolerance);
    values = send("3747.0873,N,17518.8938,E");
    EXPECT_NEAR(values.latitude, 37.784788, kTolerance);
    EXPECT_NEAR(values.longitude, 175.314897, kTolerance);
}

// The time stamp grows with what has come.
TEST(GpsReading, GivesTimeAndDateAsTheyCome) {
    ReadingGps gps;
    gps.Send(Sentence("GPRMC,,,,,,,,,030201"));
    gps.Settle();
    EXPECT_EQ(ReadValues().timeStamp, " 03/02/2001");
    gps.Send(Sentence("GPGGA,000102,,"));
    gps.Settle();
    EXPECT_EQ(ReadValues().timeStamp, "0:01:02 03/02/2001");
}

struct MappedQuality {
    int sent;
    int given;
};

TEST(GpsReading, MapsTheQualityOfTheFix) {
    ReadingGps gps;
    for (const MappedQuality& quality :
         {MappedQuality{1, 1}, {2, 2}, {3, 3}, {0, 0}, {4, 3}, {5, 3}, {6, 3}, {7, 3}, {8, 3}, {-1, 3}}) {
        gps.Send(Sentence("GPGGA,,5321.6802,N,00630.3372,W," + std::to_string(quality.sent) + ",8,1,61.7"));
        gps.Settle();
        EXPECT_EQ(ReadValues().quality, quality.given) << quality.sent;
    }
}

TEST(GpsReading, GivesTheStateOfTheFix) {
    ReadingGps gps;
    for (const int mode : {2, 1, 3, 1}) {
        gps.Send(Sentence("GNGSA,A," + std::to_string(mode) + ",,,,,,,,,,,,,1,2,3"));
        gps.Settle();
        const GpsValues values = ReadValues();
        EXPECT_EQ(values.mode, mode);
        EXPECT_EQ(values.status, mode == 1 ? 0 : 1);
        EXPECT_EQ(values.selection, FIX_SELECTION_AUTOMATIC);
    }
    gps.Send(Sentence("GNGSA,M,7"));
    gps.Settle();
    EXPECT_EQ(ReadValues().selection, FIX_SELECTION_MANUAL);
    EXPECT_EQ(ReadValues().mode, FIX_MODE_NO_FIX);
}

// A receiver of two systems sends one GSA sentence for each.
TEST(GpsReading, CountsTheUsedSatellitesOfBothSystems) {
    ReadingGps gps;
    gps.Send(Sentence("GNGSA,A,3,01,02,03,04,05,,,,,,,,1,2,3") + Sentence("GNGSA,A,3,65,66,05,,,,,,,,,,1,2,3"));
    gps.SettleBySpeed(1);
    EXPECT_EQ(ReadValues().used, 7);
    gps.Send(FullReport());
    gps.SettleBySpeed(2);
    EXPECT_EQ(ReadValues().used, 8);
}

TEST(GpsReading, IgnoresOtherSentencesAndOtherTalkers) {
    ReadingGps gps;
    gps.Send(FullReport());
    gps.SettleBySpeed(3);
    const GpsValues before = ReadValues();
    const std::string satellites = Text(ReadSatellites());
    for (const char* const text :
         {"GPVTG,11.1,T,12.2,M,13.3,N,14.4,K,A", "GNVTG,11.1,T,12.2,M,13.3,N,14.4,K,A", "GPGLL,1111.1,N,02222.2,E",
          "GNGSV,1,1,01,33,33,33,33", "GLGSA,A,2,70,71,,,,,,,,,,,9,9,9", "GAGGA,111111,1111.1,N,02222.2,E,2,3,4,5.5",
          "GARMC,1,A,1,N,2,E,77.7,88.8,010203", "BDGSV,1,1,01,33,33,33,33", "gpgga,111111,1111.1,N,02222.2,E,2,3,4,5.5",
          "GPGG", "GPTXT,hello", ""}) {
        gps.Send(Sentence(text));
    }
    gps.Send("GPGGA,111111,1111.1,N,02222.2,E,2,3,4,5.5\r\n $GPRMC,,,,,,,77.7,88.8,010203\r\n");
    gps.SettleBySpeed(4);
    GpsValues expected = before;
    expected.speed = 4;
    EXPECT_EQ(ReadValues(), expected);
    EXPECT_EQ(Text(ReadSatellites()), satellites);
}

TEST(GpsReading, DoesNotCheckTheChecksum) {
    ReadingGps gps;
    gps.Send("$GPRMC,,,,,,,21,22,010203,,*FF\r\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 21);
    gps.Send("$GPRMC,,,,,,,23,24,010203\r\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 23);
}

TEST(GpsReading, TellsWhenTheBufferForSatellitesIsTooSmall) {
    ReadingGps gps;
    // Nothing is published yet: nothing needs room, and nothing is written.
    GpsGlonassSatellite record{-7, -7, -7, -7, -7};
    EXPECT_SUCCESS(QLGPS_GetSatellites(&record, 0));
    EXPECT_FAILURE(QLGPS_GetSatellites(nullptr, 0), QLERR_INVALID_ARGUMENT, "Buffer pointer is NULL");
    EXPECT_FAILURE(QLGPS_GetSatellites(&record, -1), QLERR_BUFFER_OVERFLOW, "Buffer size too small");
    EXPECT_EQ(record.PRN, -7);

    gps.Send(FullReport());
    gps.Settle();
    std::array<GpsGlonassSatellite, 9> records{};
    records.fill({-7, -7, -7, -7, -7});
    for (const int capacity : {7, 1, 0, -1}) {
        EXPECT_FAILURE(QLGPS_GetSatellites(records.data(), capacity), QLERR_BUFFER_OVERFLOW, "Buffer size too small");
        EXPECT_EQ(records[0].PRN, -7);
    }
    EXPECT_FAILURE(QLGPS_GetSatellites(nullptr, 0), QLERR_INVALID_ARGUMENT, "Buffer pointer is NULL");
    EXPECT_SUCCESS(QLGPS_GetSatellites(records.data(), 8));
    EXPECT_EQ(records[0].PRN, 10);
    EXPECT_EQ(records[7].PRN, -1);
    EXPECT_EQ(records[8].PRN, -7);
}

TEST(GpsReading, HoldsAsManySatellitesAsThereIsRoomFor) {
    ReadingGps gps;
    std::string sentences;
    for (int message = 1; message <= 14; ++message) {
        std::string text = "GPGSV,14," + std::to_string(message) + ",56";
        for (int i = 0; i < 4; ++i) {
            text.append(",").append(std::to_string(4 * (message - 1) + i + 1)).append(",10,20,30");
        }
        sentences += Sentence(text);
    }
    gps.Send(sentences);
    gps.Settle();
    const std::vector<GpsGlonassSatellite> satellites = ReadSatellites();
    ASSERT_EQ(satellites.size(), 50U);
    EXPECT_EQ(satellites.front().PRN, 1);
    EXPECT_EQ(satellites.back().PRN, 50);
    EXPECT_EQ(ReadValues().inView, 51);
}

}  // namespace
}  // namespace quarlin::test
