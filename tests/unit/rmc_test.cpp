// SPDX-License-Identifier: Apache-2.0
#include "receiver.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

TEST(Rmc, GivesSpeedCourseAndDate) {
    Receiver receiver;
    receiver.Take("$GPRMC,092750.000,A,5321.6802,N,00630.3372,W,0.5,54.7,191194,020.3,E*68");
    EXPECT_EQ(receiver.fix.speed, 0.5);
    EXPECT_EQ(receiver.fix.bearing, 54.7);
    EXPECT_EQ(receiver.Date(), " 19/11/2094");
}

TEST(Rmc, MovesNeitherPositionNorTime) {
    Receiver receiver;
    receiver.Take("$GNRMC,092750.000,A,5321.6802,N,00630.3372,W,0.5,54.7,191194,020.3,E*68");
    EXPECT_EQ(receiver.fix.latitude, 0);
    EXPECT_EQ(receiver.fix.longitude, 0);
    EXPECT_EQ(receiver.Time(), "");
    EXPECT_EQ(receiver.Date(), " 19/11/2094");
}

TEST(Rmc, IsTakenWithoutAFixToo) {
    Receiver receiver;
    receiver.Take("$GPRMC,1,V,,,,,3.25,7.5,010203,,,N");
    EXPECT_EQ(receiver.fix.speed, 3.25);
    EXPECT_EQ(receiver.fix.bearing, 7.5);
    EXPECT_EQ(receiver.Date(), " 01/02/2003");
}

TEST(Rmc, EmptySpeedAndCourseReadAsZeroAndAnEmptyDateStays) {
    Receiver receiver;
    receiver.Take("$GPRMC,1,A,,,,,3.25,7.5,010203,,,N");
    receiver.Take("$GPRMC,1,V,,,,,,,,,,N");
    EXPECT_EQ(receiver.fix.speed, 0);
    EXPECT_EQ(receiver.fix.bearing, 0);
    EXPECT_EQ(receiver.Date(), " 01/02/2003");
}

TEST(Rmc, ThatEndsEarlyKeepsWhatCameBefore) {
    Receiver receiver;
    receiver.Take("$GPRMC,1,A,,,,,3.25,7.5,010203");
    receiver.Take("$GPRMC,1,A,,,,");
    EXPECT_EQ(receiver.fix.speed, 3.25);
    receiver.Take("$GPRMC,1,A,,,,,4.5");
    EXPECT_EQ(receiver.fix.speed, 4.5);
    EXPECT_EQ(receiver.fix.bearing, 7.5);
    receiver.Take("$GPRMC,1,A,,,,,5.5,8.5");
    EXPECT_EQ(receiver.fix.bearing, 8.5);
    EXPECT_EQ(receiver.Date(), " 01/02/2003");
    receiver.Take("$GPRMC,1,A,,,,,5.5,8.5,");
    EXPECT_EQ(receiver.Date(), " 00/00/2000");
    receiver.Take("$GPRMC,1,A,,,,,5.5,8.5,*11");
    EXPECT_EQ(receiver.Date(), " 00/00/2000");
}

TEST(TimeStamp, IsTheTimeWithTheDateBehindIt) {
    Receiver receiver;
    EXPECT_EQ(receiver.fix.TimeStamp(), "");
    receiver.Take("$GPRMC,1,A,,,,,0.5,54.7,191194");
    EXPECT_EQ(receiver.fix.TimeStamp(), " 19/11/2094");
    receiver.Take("$GPGGA,092750.000,");
    EXPECT_EQ(receiver.fix.TimeStamp(), "9:27:50 19/11/2094");
}

TEST(TimeStamp, FitsIntoEightyCharactersWhateverComes) {
    Receiver receiver;
    receiver.Take("$GPGGA,-99999999999999999999999999,");
    receiver.Take("$GPRMC,1,A,,,,,0,0,-99999999999");
    EXPECT_LT(receiver.fix.TimeStamp().size(), 80U);
    EXPECT_EQ(receiver.Date(), " -214748/-36/20-48");
}

}  // namespace
}  // namespace quarlin::test
