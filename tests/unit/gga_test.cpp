// SPDX-License-Identifier: Apache-2.0
#include "receiver.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

constexpr double kMicro = 5e-7;
constexpr const char* kFull = "$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76";

TEST(Gga, GivesTimePositionQualityAndAltitude) {
    Receiver receiver;
    receiver.Take(kFull);
    EXPECT_EQ(receiver.Time(), "9:27:50");
    EXPECT_NEAR(receiver.fix.latitude, 53.361337, kMicro);
    EXPECT_NEAR(receiver.fix.longitude, -6.505620, kMicro);
    EXPECT_EQ(receiver.fix.latitude, 53 + (5321.6802 - 5300) / 60);
    EXPECT_EQ(receiver.fix.longitude, -(6 + (630.3372 - 600) / 60));
    EXPECT_EQ(receiver.fix.altitude, 61.7);
    EXPECT_EQ(receiver.fix.fixQuality, 1);
}

TEST(Gga, ChangesNothingElse) {
    Receiver receiver;
    receiver.Take(kFull);
    EXPECT_EQ(receiver.fix.hdop, 0);
    EXPECT_EQ(receiver.fix.speed, 0);
    EXPECT_EQ(receiver.fix.bearing, 0);
    EXPECT_EQ(receiver.Date(), "");
    EXPECT_EQ(receiver.fix.fixType, 0);
    EXPECT_EQ(receiver.fix.used.Count(), 0);
    EXPECT_EQ(receiver.fix.inViewTotal, 0);
}

TEST(Gga, IsTakenFromTheCombinedTalkerToo) {
    Receiver receiver;
    receiver.Take("$GNGGA,235959,0000.6,S,18000.0,E,2,12,0.5,-3.25,M,,M,,");
    EXPECT_EQ(receiver.Time(), "23:59:59");
    EXPECT_EQ(receiver.fix.latitude, -0.6 / 60);
    EXPECT_EQ(receiver.fix.longitude, 180);
    EXPECT_EQ(receiver.fix.fixQuality, 2);
    EXPECT_EQ(receiver.fix.altitude, -3.25);
}

TEST(Gga, WithAWrongChecksumIsTakenLikeAnyOther) {
    Receiver right;
    Receiver wrong;
    right.Take(kFull);
    wrong.Take("$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*00");
    EXPECT_EQ(wrong.fix.latitude, right.fix.latitude);
    EXPECT_EQ(wrong.fix.altitude, right.fix.altitude);
    EXPECT_EQ(wrong.Time(), right.Time());
}

TEST(Gga, WithAnEmptyLatitudeGivesTheTimeOnly) {
    Receiver receiver;
    receiver.Take(kFull);
    const double latitude = receiver.fix.latitude;
    receiver.Take("$GPGGA,101112.000,,S,00100.0000,E,6,3,9.9,1.0,M,,M,,*00");
    EXPECT_EQ(receiver.Time(), "10:11:12");
    EXPECT_EQ(receiver.fix.latitude, latitude);
    EXPECT_LT(receiver.fix.longitude, -6);
    EXPECT_EQ(receiver.fix.fixQuality, 1);
    EXPECT_EQ(receiver.fix.altitude, 61.7);
}

TEST(Gga, WithAnEmptyTimeKeepsTheTimeAndGoesOn) {
    Receiver receiver;
    receiver.Take(kFull);
    receiver.Take("$GPGGA,,1000.0,N,02000.0,E,2,1,1,5.5,M");
    EXPECT_EQ(receiver.Time(), "9:27:50");
    EXPECT_EQ(receiver.fix.latitude, 10);
    EXPECT_EQ(receiver.fix.altitude, 5.5);
}

TEST(Gga, LooksAtTheFirstCharacterOfAHemisphereOnly) {
    Receiver receiver;
    receiver.Take("$GPGGA,1,1000,Sud,2000,West,1,1,1,1");
    EXPECT_EQ(receiver.fix.latitude, -10);
    EXPECT_EQ(receiver.fix.longitude, -20);
    receiver.Take("$GPGGA,1,1000,s,2000,w,1,1,1,1");
    EXPECT_EQ(receiver.fix.latitude, 10);
    EXPECT_EQ(receiver.fix.longitude, 20);
    receiver.Take("$GPGGA,1,1000, S,2000,EW,1,1,1,1");
    EXPECT_EQ(receiver.fix.latitude, 10);
    EXPECT_EQ(receiver.fix.longitude, 20);
    receiver.Take("$GPGGA,1,1000,,2000,,1,1,1,7");
    EXPECT_EQ(receiver.fix.latitude, 10);
    EXPECT_EQ(receiver.fix.altitude, 7);
}

TEST(Gga, TreatsOnlyALeadingCommaAsEmpty) {
    Receiver receiver;
    receiver.Take(kFull);
    // The last field of a line, empty or the checksum, reads as 0.
    receiver.Take("$GPGGA,");
    EXPECT_EQ(receiver.Time(), "0:00:00");
    receiver.Take("$GPGGA,010203,*6A");
    EXPECT_EQ(receiver.Time(), "1:02:03");
    EXPECT_EQ(receiver.fix.latitude, 0);
    EXPECT_LT(receiver.fix.longitude, -6);
    receiver.Take("$GPGGA,1,1000,N,");
    EXPECT_EQ(receiver.fix.longitude, 0);
    receiver.Take("$GPGGA,1,1000,N,2000,E,");
    EXPECT_EQ(receiver.fix.fixQuality, 0);
    receiver.Take("$GPGGA,1,1000,N,2000,E,1,1,1,*00");
    EXPECT_EQ(receiver.fix.altitude, 0);
}

// A sentence that ends early keeps what came before. Each row ends one field later.
struct EarlyEnd {
    const char* sentence;
    const char* time;
    double latitude;
    double longitude;
    int quality;
    double altitude;
};

void PrintTo(const EarlyEnd& end, std::ostream* stream) {
    *stream << end.sentence;
}

class GgaThatEndsEarly : public testing::TestWithParam<EarlyEnd> {};

TEST_P(GgaThatEndsEarly, KeepsWhatCameBefore) {
    Receiver receiver;
    receiver.Take("$GPGGA,010101,0100.0,N,00200.0,E,3,1,1,4.0,M");
    receiver.Take(GetParam().sentence);
    EXPECT_EQ(receiver.Time(), GetParam().time);
    EXPECT_EQ(receiver.fix.latitude, GetParam().latitude);
    EXPECT_EQ(receiver.fix.longitude, GetParam().longitude);
    EXPECT_EQ(receiver.fix.fixQuality, GetParam().quality);
    EXPECT_EQ(receiver.fix.altitude, GetParam().altitude);
}

INSTANTIATE_TEST_SUITE_P(
    Field, GgaThatEndsEarly,
    testing::Values(EarlyEnd{"$GPGGA", "1:01:01", 1, 2, 3, 4}, EarlyEnd{"$GPGGA,020202", "2:02:02", 1, 2, 3, 4},
                    EarlyEnd{"$GPGGA,020202,,S", "2:02:02", 1, 2, 3, 4},
                    // Without its hemisphere a latitude counts as north.
                    EarlyEnd{"$GPGGA,020202,1000.0", "2:02:02", 10, 2, 3, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S", "2:02:02", -10, 2, 3, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,,W,5,1,1,9", "2:02:02", -10, 2, 3, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0", "2:02:02", -10, 20, 3, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W", "2:02:02", -10, -20, 3, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,,1,1,9", "2:02:02", -10, -20, 3, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,5", "2:02:02", -10, -20, 5, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,5,,1,9", "2:02:02", -10, -20, 5, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,5,1", "2:02:02", -10, -20, 5, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,5,1,,9", "2:02:02", -10, -20, 5, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,5,1,1", "2:02:02", -10, -20, 5, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,5,1,1,,M", "2:02:02", -10, -20, 5, 4},
                    EarlyEnd{"$GPGGA,020202,1000.0,S,2000.0,W,5,1,1,9", "2:02:02", -10, -20, 5, 9}));

struct Quality {
    const char* field;
    int stored;
    int mapped;
};

void PrintTo(const Quality& quality, std::ostream* stream) {
    *stream << quality.field;
}

class GgaQuality : public testing::TestWithParam<Quality> {};

TEST_P(GgaQuality, IsKeptAndMapped) {
    Receiver receiver;
    receiver.Take(std::string("$GPGGA,1,1,N,1,E,") + GetParam().field + ",1,1,1");
    EXPECT_EQ(receiver.fix.fixQuality, GetParam().stored);
    EXPECT_EQ(receiver.fix.MappedFixQuality(), GetParam().mapped);
}

INSTANTIATE_TEST_SUITE_P(Values, GgaQuality,
                         testing::Values(Quality{"0", 0, 0}, Quality{"1", 1, 1}, Quality{"2", 2, 2}, Quality{"3", 3, 3},
                                         Quality{"4", 4, 3}, Quality{"5", 5, 3}, Quality{"6", 6, 3}, Quality{"9", 9, 3},
                                         Quality{"-1", -1, 3}, Quality{"2147483648", 2147483647, 3},
                                         Quality{"x", 0, 0}));

TEST(Gga, HostileNumbersOverflowNothing) {
    Receiver receiver;
    const std::string huge(400, '9');
    receiver.Take("$GPGGA," + huge + ',' + huge + ",S," + huge + ",W," + huge + ",1,1," + huge);
    EXPECT_EQ(receiver.fix.fixQuality, 2147483647);
    EXPECT_LT(receiver.Time().size(), receiver.fix.timeText.size());
    receiver.Take("$GPGGA,-1e30,1e5,N,0x10,E,1,1,1,infinity");
    EXPECT_EQ(receiver.Time(), "0:00:-1");
    EXPECT_EQ(receiver.fix.latitude, 1.0 / 60);
    EXPECT_EQ(receiver.fix.longitude, 0);
    EXPECT_EQ(receiver.fix.altitude, 0);
}

}  // namespace
}  // namespace quarlin::test
