// SPDX-License-Identifier: Apache-2.0
#include "receiver.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

TEST(Gsv, GivesUpToFourSatellites) {
    Receiver receiver;
    receiver.Take("$GPGSV,1,1,04,10,63,137,17,07,61,098,15,05,59,290,20,08,54,157,30*70");
    EXPECT_EQ(receiver.Published(),
              (Satellites{{10, 63, 137, 17, 0}, {7, 61, 98, 15, 0}, {5, 59, 290, 20, 0}, {8, 54, 157, 30, 0}}));
    EXPECT_EQ(receiver.fix.inViewTotal, 4);
    EXPECT_EQ(receiver.fix.publishedTotal, 4);
}

TEST(Gsv, GlonassSatellitesFollowThoseOfGps) {
    Receiver receiver;
    receiver.Take({"$GLGSV,1,1,02,65,40,050,30,72,10,120,40", "$GPGSV,1,1,01,7,1,2,3"});
    EXPECT_EQ(receiver.Published(), (Satellites{{7, 1, 2, 3, 0}, {65, 40, 50, 30, 0}, {72, 10, 120, 40, 0}}));
    EXPECT_EQ(receiver.fix.inViewTotal, 3);
}

TEST(Gsv, EmptyValuesOfASatelliteReadAsZero) {
    Receiver receiver;
    receiver.Take("$GPGSV,1,1,03,7,,,,8,1,,3,9,,2,*00");
    EXPECT_EQ(receiver.Published(), (Satellites{{7, 0, 0, 0, 0}, {8, 1, 0, 3, 0}, {9, 0, 2, 0, 0}}));
}

TEST(Gsv, ABlockWithoutASatelliteNumberIsKeptAsMinusOneAndItsValuesAreSteppedOver) {
    Receiver receiver;
    receiver.Take("$GPGSV,1,1,04,7,1,2,3,,4,5,6,8,1,2,3,,,,*00");
    EXPECT_EQ(receiver.Published(), (Satellites{{7, 1, 2, 3, 0}, {-1, 0, 0, 0, 0}, {8, 1, 2, 3, 0}, {-1, 0, 0, 0, 0}}));
}

TEST(Gsv, ABlockWithoutASatelliteNumberCountsAsSoonAsThatIsSeen) {
    for (const char* const sentence :
         {"$GPGSV,1,1,01,,", "$GPGSV,1,1,01,,,", "$GPGSV,1,1,02,,1", "$GPGSV,1,1,02,,1,2"}) {
        Receiver receiver;
        receiver.Take(sentence);
        EXPECT_EQ(receiver.fix.inViewTotal, 1) << sentence;
        // The line ended within the block: nothing is published.
        EXPECT_EQ(receiver.fix.publishedTotal, 0) << sentence;
    }
}

TEST(Gsv, ASatelliteNumberMissingAtTheEndOfTheLineIsAnEmptyOne) {
    Receiver receiver;
    receiver.Take("$GPGSV,1,1,01,");
    EXPECT_EQ(receiver.fix.inViewTotal, 1);
    EXPECT_EQ(receiver.fix.publishedTotal, 0);
}

TEST(Gsv, ABlockThatTheLineCutsOffIsNotKept) {
    for (const char* const sentence : {"$GPGSV,1,1,01,7", "$GPGSV,1,1,01,7,1", "$GPGSV,1,1,01,7,1,2",
                                       "$GPGSV,1,1,01,*00", "$GPGSV,1,1,01,7*00", "$GPGSV,1,1,01"}) {
        Receiver receiver;
        receiver.Take(sentence);
        EXPECT_EQ(receiver.fix.inViewTotal, 0) << sentence;
        EXPECT_EQ(receiver.fix.publishedTotal, 0) << sentence;
    }
    Receiver receiver;
    receiver.Take("$GPGSV,1,1,01,7,1,2,");
    EXPECT_EQ(receiver.Published(), (Satellites{{7, 1, 2, 0, 0}}));
}

TEST(Gsv, AHeaderThatTheLineCutsOffChangesNothing) {
    Receiver receiver;
    TakeCycle(receiver, "GL", 4, 65);
    receiver.Take({"$GPGSV", "$GPGSV,1", "$GPGSV,1,1"});
    EXPECT_EQ(receiver.fix.glonassCountdown, 10);
    EXPECT_EQ(receiver.fix.inViewTotal, 4);
}

TEST(Gsv, BlocksBeyondTheNumberInViewAreNotRead) {
    Receiver receiver;
    receiver.Take("$GPGSV,1,1,2,1,2,3,4,5,6,7,8,9,10,11,12");
    EXPECT_EQ(receiver.Published().size(), 2U);
    // A signal number after the last block, as newer receivers send it.
    receiver.Take("$GPGSV,2,2,5,9,1,2,3,1*00");
    EXPECT_EQ(receiver.fix.inViewTotal, 5);
}

TEST(Gsv, MarksSatellitesThatWereUsedAsTheirBlockCame) {
    Receiver receiver;
    receiver.Take({"$GPGSA,A,3,7,9", "$GPGSV,1,1,3,7,1,1,1,8,1,1,1,9,1,1,1"});
    EXPECT_EQ(receiver.Published(), (Satellites{{7, 1, 1, 1, 1}, {8, 1, 1, 1, 0}, {9, 1, 1, 1, 1}}));
    receiver.Take("$GPGSA,A,3,8");
    EXPECT_EQ(receiver.Published()[0].used, 1);
    receiver.Take("$GPGSV,1,1,3,7,1,1,1,8,1,1,1,9,1,1,1");
    EXPECT_EQ(receiver.Published(), (Satellites{{7, 1, 1, 1, 0}, {8, 1, 1, 1, 1}, {9, 1, 1, 1, 0}}));
}

TEST(Gsv, ACycleOfThreeMessagesFillsPositionsZeroToTen) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 11, 1);
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 11);
    const Satellites published = receiver.Published();
    ASSERT_EQ(published.size(), 11U);
    for (int i = 0; i < 11; ++i) {
        EXPECT_EQ(published[static_cast<std::size_t>(i)].PRN, i + 1);
    }
}

TEST(Gsv, ThePublishedTableGrowsMessageByMessageThroughEveryCycle) {
    Receiver receiver;
    for (int cycle = 0; cycle < 3; ++cycle) {
        const int expected[] = {4, 8, 11};
        for (int message = 1; message <= 3; ++message) {
            receiver.Take(Gsv("GP", 3, message, 11, 10 * cycle + 4 * (message - 1), message == 3 ? 3 : 4));
            EXPECT_EQ(receiver.fix.gps.PublishedCount(), expected[message - 1]);
            EXPECT_EQ(receiver.fix.publishedTotal, expected[message - 1]);
            EXPECT_EQ(receiver.Published().size(), static_cast<std::size_t>(expected[message - 1]));
            EXPECT_EQ(receiver.Published().front().PRN, 10 * cycle);
        }
    }
}

TEST(Gsv, BlocksStandAtThePlaceOfTheirMessageWhenEarlierOnesWereMissed) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 12, 1);
    receiver.Take(Gsv("GP", 3, 3, 12, 101, 4));
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 12);
    const Satellites published = receiver.Published();
    EXPECT_EQ(published[7].PRN, 8);
    EXPECT_EQ(published[8].PRN, 101);
    EXPECT_EQ(published[11].PRN, 104);
}

TEST(Gsv, TheFirstMessageStartsOver) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 12, 1);
    receiver.Take(Gsv("GP", 3, 1, 12, 50, 4));
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 4);
    receiver.Take(Gsv("GP", 3, 1, 12, 60, 4));
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 4);
    EXPECT_EQ(receiver.Published().front().PRN, 60);
}

TEST(Gsv, AMessageNumberAboveTheirCountPublishesNothing) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 4, 1);
    receiver.Take(Gsv("GP", 2, 3, 12, 50, 4));
    EXPECT_EQ(receiver.fix.publishedTotal, 4);
    EXPECT_EQ(receiver.Published().front().PRN, 1);
    EXPECT_EQ(receiver.fix.inViewTotal, 12);
    // The cycle is not done and the number 3 remembered: message 4 follows on.
    receiver.Take(Gsv("GP", 4, 4, 16, 60, 4));
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 16);
    EXPECT_EQ(receiver.Published()[8].PRN, 50);
    EXPECT_EQ(receiver.Published()[12].PRN, 60);
}

TEST(Gsv, ARepeatedMessageThatDidNotEndItsCycleTakesTheSamePlace) {
    Receiver receiver;
    receiver.Take({"$GPGSV,1,2,8,1,1,1,1,2,1,1,1,3,1,1,1,4,1,1,1", "$GPGSV,2,2,8,5,1,1,1,6,1,1,1,7,1,1,1,8,1,1,1"});
    // First 4 * (2 - 0) - 4 = 4, then 8 stored + 4 * (2 - 2) - 4 = 4 again.
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 8);
    EXPECT_EQ(receiver.Published()[4].PRN, 5);
}

TEST(Gsv, GlonassGoesAbsentAtTheTenthGpsSentenceAfterItsLast) {
    Receiver receiver;
    TakeCycle(receiver, "GL", 6, 65);
    for (int i = 1; i <= 9; ++i) {
        receiver.Take(Gsv("GP", 1, 1, 2, 1, 2));
        EXPECT_EQ(receiver.fix.glonass.PublishedCount(), 6) << i;
        EXPECT_EQ(receiver.fix.publishedTotal, 8) << i;
    }
    receiver.Take(Gsv("GP", 1, 1, 2, 1, 2));
    EXPECT_EQ(receiver.fix.glonass.PublishedCount(), 0);
    EXPECT_EQ(receiver.fix.publishedTotal, 2);
    EXPECT_EQ(receiver.fix.inViewTotal, 2);
    EXPECT_EQ(receiver.Published().size(), 2U);
    receiver.Take(Gsv("GP", 1, 1, 2, 1, 2));
    EXPECT_EQ(receiver.fix.glonass.PublishedCount(), 0);
}

TEST(Gsv, EachGlonassSentenceStartsTheWaitForItsAbsenceAgain) {
    Receiver receiver;
    TakeCycle(receiver, "GL", 4, 65);
    for (int i = 0; i < 9; ++i) {
        receiver.Take(Gsv("GP", 1, 1, 1, 1, 1));
    }
    TakeCycle(receiver, "GL", 4, 65);
    for (int i = 0; i < 9; ++i) {
        receiver.Take(Gsv("GP", 1, 1, 1, 1, 1));
        EXPECT_EQ(receiver.fix.glonass.PublishedCount(), 4);
    }
    TakeCycle(receiver, "GL", 3, 65);
    EXPECT_EQ(receiver.Published().size(), 4U);
}

TEST(Gsv, ThirteenGpsMessagesStoreFiftySatellitesAndTheCountStandsAtFiftyOne) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 52, 1);
    EXPECT_EQ(receiver.fix.gps.Count(), 51);
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 51);
    EXPECT_EQ(receiver.fix.inViewTotal, 51);
    const Satellites published = receiver.Published();
    ASSERT_EQ(published.size(), 50U);
    EXPECT_EQ(published.back().PRN, 50);
}

TEST(Gsv, TwentySixGlonassMessagesStoreAHundredSatellitesAndTheCountStandsAtOneHundredAndOne) {
    Receiver receiver;
    TakeCycle(receiver, "GL", 104, 1);
    EXPECT_EQ(receiver.fix.glonass.Count(), 101);
    EXPECT_EQ(receiver.fix.inViewTotal, 101);
    const Satellites published = receiver.Published();
    ASSERT_EQ(published.size(), 100U);
    EXPECT_EQ(published.back().PRN, 100);
}

TEST(Gsv, GlonassSatellitesFollowTheGpsSatellitesActuallyCopied) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 52, 1);
    TakeCycle(receiver, "GL", 3, 65);
    EXPECT_EQ(receiver.fix.publishedTotal, 54);
    const Satellites published = receiver.Published();
    ASSERT_EQ(published.size(), 53U);
    EXPECT_EQ(published[49].PRN, 50);
    EXPECT_EQ(published[50].PRN, 65);
}

TEST(Gsv, TheNumberInViewStopsAtOneHundredAndFifty) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 52, 1);
    TakeCycle(receiver, "GL", 104, 1);
    EXPECT_EQ(receiver.fix.inViewTotal, 150);
    EXPECT_LE(receiver.fix.publishedTotal, 150);
    EXPECT_LE(receiver.Published().size(), 150U);
}

TEST(Gsv, ASentenceThatFindsOneHundredAndFiftyInViewEndsBeforeItsBlocks) {
    Receiver receiver;
    TakeCycle(receiver, "GL", 104, 1);
    // Message 14 begins at place 52: 101 and 52 are above the limit.
    const std::int32_t published = receiver.fix.publishedTotal;
    receiver.Take(Gsv("GP", 20, 14, 80, 1, 4));
    EXPECT_EQ(receiver.fix.inViewTotal, 150);
    EXPECT_EQ(receiver.fix.publishedTotal, published);
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 0);
}

TEST(Gsv, OneHundredAndFortyNineInViewIsBelowTheLimit) {
    Receiver receiver;
    TakeCycle(receiver, "GL", 104, 1);
    // 101 and 48.
    receiver.Take(Gsv("GP", 20, 13, 80, 201, 4));
    EXPECT_EQ(receiver.fix.gps.Count(), 51);
    EXPECT_EQ(receiver.fix.inViewTotal, 150);
    EXPECT_EQ(receiver.fix.publishedTotal, 150);
    EXPECT_EQ(receiver.Published().size(), 150U);
    EXPECT_EQ(receiver.Published()[48].PRN, 201);
    EXPECT_EQ(receiver.Published()[49].PRN, 202);
    EXPECT_EQ(receiver.Published()[50].PRN, 1);
}

TEST(Gsv, APlaceBeyondTheTableWithoutBlocksCountsAndCopiesStopAtTheTable) {
    Receiver receiver;
    receiver.Take("$GPGSV,30,30,2,9,9,9,9");
    EXPECT_EQ(receiver.fix.gps.PublishedCount(), 116);
    EXPECT_EQ(receiver.fix.publishedTotal, 116);
    Satellites records(116, {-77, 0, 0, 0, 0});
    receiver.fix.CopySatellites(records.data(), 116);
    EXPECT_EQ(records[49].PRN, 0);
    EXPECT_EQ(records[50].PRN, -77);
}

class HostileGsv : public testing::TestWithParam<const char*> {};

TEST_P(HostileGsv, KeepsEveryCountWithinItsLimits) {
    Receiver receiver;
    TakeCycle(receiver, "GL", 8, 65);
    for (int i = 0; i < 3; ++i) {
        receiver.Take(GetParam());
        EXPECT_GE(receiver.fix.inViewTotal, 0);
        EXPECT_LE(receiver.fix.inViewTotal, 150);
        EXPECT_GE(receiver.fix.gps.Count(), 0);
        EXPECT_LE(receiver.Published().size(), 150U);
    }
    // And good sentences are taken as ever, the second one at the latest: the first may still be placed by the last
    // message number.
    receiver.Take(Gsv("GP", 1, 1, 2, 31, 2));
    receiver.Take(Gsv("GP", 1, 1, 2, 31, 2));
    ASSERT_EQ(receiver.fix.gps.PublishedCount(), 2);
    EXPECT_EQ(receiver.Published()[0].PRN, 31);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, HostileGsv,
    testing::Values("$GPGSV,2147483647,2147483647,2147483647,1,2,3,4", "$GPGSV,-1,-2147483648,9,1,2,3,4",
                    "$GPGSV,-2147483648,-2147483648,2147483647,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16",
                    "$GPGSV,99999999999999999999,99999999999999999999,99999999999999999999,1,2,3,4",
                    "$GPGSV,0,0,4,1,2,3,4", "$GPGSV,1,0,-1,1,2,3,4", "$GPGSV,1,1,-2147483648,1,2,3,4",
                    "$GPGSV,536870913,536870913,2147483647,1,2,3,4", "$GPGSV,-536870913,-536870913,2147483647,1,2,3,4",
                    "$GPGSV,x,y,z,1,2,3,4", "$GPGSV,1,1,1,99999999999,-99999999999,1e9,0x10"));

TEST(Gsv, NumbersOfASatelliteSaturate) {
    Receiver receiver;
    receiver.Take("$GPGSV,1,1,1,99999999999,-99999999999,1e9,0x10");
    EXPECT_EQ(receiver.Published(), (Satellites{{2147483647, -2147483647 - 1, 1, 0, 0}}));
}

}  // namespace
}  // namespace quarlin::test
