// SPDX-License-Identifier: Apache-2.0
#include "receiver.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

constexpr const char* kFull = "$GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38*0A";
constexpr const char* kAnyGga = "$GPGGA,000000,,,,,0,0,,,M,,M,,";
constexpr const char* kTwelve = "$GNGSA,A,3,1,2,3,4,5,6,7,8,9,10,11,12,1,1,1";

bool Uses(const Receiver& receiver, std::initializer_list<int> prns) {
    return std::ranges::all_of(prns, [&](int prn) { return receiver.fix.used.Contains(prn); });
}

TEST(Gsa, GivesSelectionTypeSatellitesAndDilutions) {
    Receiver receiver;
    receiver.Take(kFull);
    EXPECT_EQ(receiver.fix.fixSelection, 1);
    EXPECT_EQ(receiver.fix.fixType, 3);
    EXPECT_EQ(receiver.fix.used.Count(), 8);
    EXPECT_TRUE(Uses(receiver, {10, 7, 5, 2, 29, 4, 8, 13}));
    EXPECT_FALSE(receiver.fix.used.Contains(3));
    EXPECT_EQ(receiver.fix.pdop, 1.72);
    EXPECT_EQ(receiver.fix.hdop, 1.03);
    EXPECT_EQ(receiver.fix.vdop, 1.38);
}

TEST(Gsa, TakesSelectionAndTypeByTheirFirstCharacters) {
    Receiver receiver;
    receiver.Take("$GPGSA,Auto,2D");
    EXPECT_EQ(receiver.fix.fixSelection, 1);
    EXPECT_EQ(receiver.fix.fixType, 2);
    receiver.Take("$GPGSA,Manual,1");
    EXPECT_EQ(receiver.fix.fixSelection, 0);
    EXPECT_EQ(receiver.fix.fixType, 1);
    receiver.Take("$GPGSA,A,3");
    receiver.Take("$GPGSA,m,4");
    EXPECT_EQ(receiver.fix.fixSelection, 1);
    EXPECT_EQ(receiver.fix.fixType, 3);
    receiver.Take("$GPGSA,,");
    receiver.Take("$GPGSA, M,0");
    EXPECT_EQ(receiver.fix.fixSelection, 1);
    EXPECT_EQ(receiver.fix.fixType, 3);
}

TEST(Gsa, EmptyDilutionsReadAsZero) {
    Receiver receiver;
    receiver.Take(kFull);
    receiver.Take("$GPGSA,A,1,,,,,,,,,,,,,,,*1E");
    EXPECT_EQ(receiver.fix.pdop, 0);
    EXPECT_EQ(receiver.fix.hdop, 0);
    EXPECT_EQ(receiver.fix.vdop, 0);
}

TEST(Gsa, ThatEndsEarlyKeepsTheLaterDilutions) {
    Receiver receiver;
    receiver.Take(kFull);
    receiver.Take("$GPGSA,A,3,,,,,,,,,,,,,9.5");
    EXPECT_EQ(receiver.fix.pdop, 9.5);
    EXPECT_EQ(receiver.fix.hdop, 1.03);
    EXPECT_EQ(receiver.fix.vdop, 1.38);
    receiver.Take("$GPGSA,A,3,,,,,,,,,,,,,8.5,");
    EXPECT_EQ(receiver.fix.pdop, 8.5);
    EXPECT_EQ(receiver.fix.hdop, 0);
    EXPECT_EQ(receiver.fix.vdop, 1.38);
}

TEST(Gsa, TwoInARowGiveTheUnionOfTheirSatellites) {
    Receiver receiver;
    receiver.Take({"$GNGSA,A,3,1,2,3,,,,,,,,,,1.5,1.2,0.9", "$GNGSA,A,3,65,66,3,,,,,,,,,,1.4,1.1,0.8"});
    EXPECT_EQ(receiver.fix.used.Count(), 5);
    EXPECT_TRUE(Uses(receiver, {1, 2, 3, 65, 66}));
    EXPECT_EQ(receiver.fix.pdop, 1.4);
}

TEST(Gsa, SentencesThatStartANewList) {
    for (const char* const between : {kAnyGga, "$GNGGA,1", "$GPGSV,1,1,0", "$GLGSV,1,1,0", "$GPGSV", "$GPGGA"}) {
        Receiver receiver;
        receiver.Take({"$GNGSA,A,3,1,2,3", between, "$GNGSA,A,3,65"});
        EXPECT_EQ(receiver.fix.used.Count(), 1) << between;
        EXPECT_TRUE(Uses(receiver, {65})) << between;
    }
}

TEST(Gsa, SentencesThatDoNotStartANewList) {
    for (const char* const between : {"$GPRMC,1,A", "$GNRMC,1,A", "$GPVTG,1", "$GNVTG,1", "$GLGSA,A,3,9",
                                      "$GNGSV,1,1,0", "$GPTXT,hello", "", "\n", "noise"}) {
        Receiver receiver;
        receiver.Take({"$GNGSA,A,3,1,2,3", between, "$GNGSA,A,3,65"});
        EXPECT_EQ(receiver.fix.used.Count(), 4) << between;
    }
}

TEST(Gsa, ANewListIsEmptyEvenWhenTheSentenceEndsAtOnce) {
    Receiver receiver;
    receiver.Take({kFull, kAnyGga, "$GPGSA"});
    EXPECT_EQ(receiver.fix.used.Count(), 0);
    EXPECT_EQ(receiver.fix.pdop, 1.72);
}

TEST(Gsa, StoresTwentyFourSatellitesAtMostAndThenIgnoresSentencesWhole) {
    Receiver receiver;
    receiver.Take(kTwelve);
    EXPECT_EQ(receiver.fix.used.Count(), 12);
    // Twelve fields a sentence: the thirteenth number stands where the dilution is.
    receiver.Take("$GNGSA,A,2,21,22,23,24,25,26,27,28,29,30,31,32,33,7,8");
    EXPECT_EQ(receiver.fix.used.Count(), 24);
    EXPECT_FALSE(receiver.fix.used.Contains(33));
    EXPECT_EQ(receiver.fix.pdop, 33);
    receiver.Take("$GNGSA,M,1,41,42,43,44,45,46,47,48,49,50,51,52,9.1,9.2,9.3");
    EXPECT_EQ(receiver.fix.used.Count(), 24);
    EXPECT_FALSE(receiver.fix.used.Contains(41));
    EXPECT_EQ(receiver.fix.fixSelection, 1);
    EXPECT_EQ(receiver.fix.fixType, 2);
    EXPECT_EQ(receiver.fix.pdop, 33);
    EXPECT_EQ(receiver.fix.hdop, 7);
    EXPECT_EQ(receiver.fix.vdop, 8);
}

TEST(Gsa, AThirteenthSatelliteAfterTwelveStoredFindsRoomOverTwoSentences) {
    Receiver receiver;
    receiver.Take({kTwelve, "$GNGSA,A,3,21,22,23,24,25,26,27,28,29,30,31,,1,1,1", "$GNGSA,A,3,32,33,,,,,,,,,,,2,2,2"});
    EXPECT_EQ(receiver.fix.used.Count(), 24);
    EXPECT_TRUE(Uses(receiver, {32}));
    EXPECT_FALSE(receiver.fix.used.Contains(33));
    // The list was not full when the sentence began: its dilutions count.
    EXPECT_EQ(receiver.fix.pdop, 2);
}

TEST(Gsa, AFullListIsEmptiedByTheNextRun) {
    Receiver receiver;
    receiver.Take({kTwelve, "$GNGSA,A,3,21,22,23,24,25,26,27,28,29,30,31,32,1,1,1", kAnyGga, "$GNGSA,A,3,7"});
    EXPECT_EQ(receiver.fix.used.Count(), 1);
    EXPECT_FALSE(receiver.fix.used.Contains(21));
}

TEST(Gsa, ASatelliteFieldAtTheEndOfTheLineHoldsNothing) {
    Receiver receiver;
    receiver.Take("$GPGSA,A,3,");
    EXPECT_EQ(receiver.fix.used.Count(), 0);
    receiver.Take("$GPGSA,A,3,5,,");
    EXPECT_EQ(receiver.fix.used.Count(), 1);
}

TEST(Gsa, ASatelliteFieldThatIsNoNumberReadsAsZero) {
    Receiver receiver;
    receiver.Take("$GPGSA,A,3,*00");
    EXPECT_EQ(receiver.fix.used.Count(), 1);
    EXPECT_TRUE(Uses(receiver, {0}));
}

TEST(Gsa, TakesUnusualSatelliteNumbers) {
    Receiver receiver;
    receiver.Take("$GPGSA,A,3,-5,255,256,257,1000,2147483647,99999999999,-2147483648,-5,256,63,64");
    EXPECT_EQ(receiver.fix.used.Count(), 9);
    EXPECT_TRUE(Uses(receiver, {-5, 255, 256, 257, 1000, 2147483647, -2147483647 - 1, 63, 64}));
    EXPECT_FALSE(receiver.fix.used.Contains(-1));
    EXPECT_FALSE(receiver.fix.used.Contains(1));
    EXPECT_FALSE(receiver.fix.used.Contains(0));
}

}  // namespace
}  // namespace quarlin::test
