// SPDX-License-Identifier: Apache-2.0
#include "view/reading_pace.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLongQuiet{10000};
constexpr milliseconds kBusy{0};

// Times are counted from the first reading.
class ReadingPaceTest : public testing::Test {
  protected:
    static ReadingPace::Clock::time_point At(int ms) { return kStart + milliseconds(ms); }

    static constexpr ReadingPace::Clock::time_point kStart{std::chrono::hours(1)};
    ReadingPace pace_{milliseconds(500), kStart};
};

TEST_F(ReadingPaceTest, KeepsTheIntervalOnAQuietLine) {
    for (const int due : {500, 1000, 1500}) {
        EXPECT_FALSE(pace_.IsTime(At(due - 1), kLongQuiet)) << due;
        EXPECT_TRUE(pace_.IsTime(At(due), kLongQuiet)) << due;
        pace_.Taken(At(due));
    }
}

TEST_F(ReadingPaceTest, WaitsForThePauseAfterABurst) {
    EXPECT_FALSE(pace_.IsTime(At(500), kBusy));
    EXPECT_FALSE(pace_.IsTime(At(650), kPause - milliseconds(1)));
    EXPECT_TRUE(pace_.IsTime(At(651), kPause));
}

TEST_F(ReadingPaceTest, DoesNotWaitForeverForAPause) {
    EXPECT_FALSE(pace_.IsTime(At(899), kBusy));
    EXPECT_TRUE(pace_.IsTime(At(900), kBusy));
}

TEST_F(ReadingPaceTest, WaitsLessThanAShortIntervalForAPause) {
    const ReadingPace fast(milliseconds(100), kStart);
    EXPECT_FALSE(fast.IsTime(At(179), kBusy));
    EXPECT_TRUE(fast.IsTime(At(180), kBusy));
}

TEST_F(ReadingPaceTest, DoesNotShiftTheNextReadingAfterALateOne) {
    pace_.Taken(At(900));
    EXPECT_FALSE(pace_.IsTime(At(999), kLongQuiet));
    EXPECT_TRUE(pace_.IsTime(At(1000), kLongQuiet));
}

TEST_F(ReadingPaceTest, LeavesOutReadingsThatWereMissed) {
    pace_.Taken(At(2700));
    EXPECT_FALSE(pace_.IsTime(At(2999), kLongQuiet));
    EXPECT_TRUE(pace_.IsTime(At(3000), kLongQuiet));
}

TEST_F(ReadingPaceTest, LooksEarlyEnoughToKnowThePause) {
    EXPECT_LE(pace_.LookFrom(), At(500) - kPause);
    EXPECT_GT(pace_.LookFrom(), At(0)) << "looks all the time";
}

}  // namespace
}  // namespace quarlin::qlctl
