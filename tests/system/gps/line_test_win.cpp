// SPDX-License-Identifier: Apache-2.0
// How the bytes of a port become lines: line ends, noise, lines that are too long, lines that come in pieces.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "gps/gps_session_win.h"
#include "gps/read_watch_win.h"
#include "gps/sentences.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

constexpr size_t kLineBuffer = 1024;

// A sentence that sets the speed, filled up to a length. Without a line end.
std::string SpeedOfLength(int speed, size_t length) {
    std::string line = "$GPRMC,,,,,,," + std::to_string(speed) + ",";
    if (length < line.size()) {
        throw std::invalid_argument("no room for the sentence");
    }
    line.resize(length, 'x');
    return line;
}

TEST(GpsLines, EndWithALineFeed) {
    ReadingGps gps;
    gps.Send("$GPRMC,,,,,,,31\n$GPRMC,,,,,,,,32,010203\n");
    gps.Settle();
    // The second sentence has an empty speed.
    EXPECT_EQ(ReadSpeed(), 0);
    EXPECT_EQ(ReadValues().bearing, 32);
    gps.Send("$GPRMC,,,,,,,33\r\n$GPRMC,,,,,,,34,35,010203\r\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 34);
    EXPECT_EQ(ReadValues().bearing, 35);
}

TEST(GpsLines, LoseCarriageReturnsWhereverTheyStand) {
    ReadingGps gps;
    gps.Send("\r\r$G\rPRMC,\r,,,,,,4\r1,4\r\r2,010203\r\r\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 41);
    EXPECT_EQ(ReadValues().bearing, 42);
    gps.Send("$GPRMC,,,,,,,43\r$GPRMC,,,,,,,44\r\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 43);
}

TEST(GpsLines, MayBeEmpty) {
    ReadingGps gps;
    gps.Send("\n\r\n\n\n$GPRMC,,,,,,,51\n\n\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 51);
}

// The report that the receiver is sending does not need a sentence.
TEST(GpsLines, OfAnyKindShowThatTheReceiverSends) {
    for (const char* const line : {"\n", "\r\n", "noise\n", "\x01\x02\xFF\n", "$GPGGA,~\r\n", "~\n"}) {
        ReadingGps gps;
        EXPECT_FALSE(IsEnabled()) << line;
        gps.Send(line);
        EXPECT_TRUE(WaitUntil([] { return IsEnabled(); })) << line;
        EXPECT_EQ(ReadValues(), GpsValues{}) << line;
    }
}

TEST(GpsLines, MayComeByteByByte) {
    const ReadWatch watch;
    ReadingGps gps;
    const std::string sentence = SpeedOnly(61);
    for (size_t i = 0; i < sentence.size(); ++i) {
        EXPECT_FALSE(IsEnabled());
        EXPECT_EQ(ReadSpeed(), 0);
        gps.Send(sentence.substr(i, 1));
        ASSERT_TRUE(WaitUntil([&] { return watch.DoneBytes() == i + 1; })) << i;
    }
    EXPECT_TRUE(IsEnabled());
    EXPECT_EQ(ReadSpeed(), 61);
    EXPECT_TRUE(watch.AllReadsOfOneByte());
}

TEST(GpsLines, MayHaveEveryCharacterThatASentenceMayHold) {
    ReadingGps gps;
    for (int character = 0x20; character <= 0x7D; ++character) {
        gps.Send("$GPRMC,,,,,,," + std::to_string(character) + ",x" + static_cast<char>(character) + "\r\n");
        ASSERT_TRUE(WaitUntil([&] { return ReadSpeed() == character; })) << character;
    }
}

TEST(GpsLines, WithAByteThatNoSentenceHoldsAreDropped) {
    ReadingGps gps;
    int bytes = 0;
    for (int byte = 0; byte <= 0xFF; ++byte) {
        if (byte != '\n' && byte != '\r' && (byte < 0x20 || byte > 0x7D)) {
            // The speed names the byte that gets through.
            gps.Send("$GPRMC,,,,,,," + std::to_string(1000 + byte) + "," + static_cast<char>(byte) + "\r\n");
            ++bytes;
        }
    }
    EXPECT_EQ(bytes, 160);
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 0);
    // Each line is judged by itself.
    gps.Send("$GPRMC,,,,,,,62\r\n");
    EXPECT_TRUE(WaitUntil([] { return ReadSpeed() == 62; }));
}

TEST(GpsLines, WithATildeAnywhereAreDroppedWhole) {
    ReadingGps gps;
    gps.Send(FullReport());
    gps.SettleBySpeed(63);
    const GpsValues before = ReadValues();
    const std::string sentence = "$GPGGA,111111,1111.1,N,02222.2,E,2,3,4,5.5*00";
    std::string lines;
    for (size_t position = 0; position <= sentence.size(); ++position) {
        lines += std::string(sentence).insert(position, 1, '~') + "\r\n";
    }
    gps.Send(lines);
    gps.SettleBySpeed(64);
    GpsValues expected = before;
    expected.speed = 64;
    EXPECT_EQ(ReadValues(), expected);
}

TEST(GpsLines, OfFifteenHundredCharactersKeepTheirLast476) {
    ReadingGps gps;
    const std::string line = SpeedOfLength(1024, kLineBuffer) + SpeedOfLength(476, 476);
    ASSERT_EQ(line.size(), 1500U);
    gps.Send(line + "\r\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 476);
}

struct LongLine {
    size_t length;
    // What is left of it.
    size_t rest;
};

// A line as long as the buffer, or a multiple of it, leaves nothing.
TEST(GpsLines, LongerThanTheBufferLoseTheirBeginning) {
    ReadingGps gps;
    int speed = 100;
    for (const LongLine& line : {LongLine{1023, 1023},
                                 {1024, 0},
                                 {1044, 20},
                                 {1025 + 1022, 1023},
                                 {2048, 0},
                                 {2068, 20},
                                 {3572, 500},
                                 {10240, 0},
                                 {10260, 20}}) {
        gps.Send("$GPRMC,,,,,,,99\n");
        std::string text;
        while (text.size() + line.rest < line.length) {
            text += SpeedOfLength(98, kLineBuffer);
        }
        text.resize(line.length - line.rest);
        ++speed;
        if (line.rest != 0) {
            text += SpeedOfLength(speed, line.rest);
        }
        ASSERT_EQ(text.size(), line.length);
        gps.Send(text + "\n");
        gps.Settle();
        EXPECT_EQ(ReadSpeed(), line.rest == 0 ? 99 : speed) << line.length;
    }
}

TEST(GpsLines, WithNoiseInThePartThatIsLostAreDropped) {
    ReadingGps gps;
    std::string line = SpeedOfLength(1024, kLineBuffer) + SpeedOfLength(71, 100);
    line[500] = '~';
    gps.Send(line + "\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 0);
}

// The time-outs of the port pass, and the line goes on where it stopped.
TEST(GpsLines, SurviveSilenceInTheirMiddle) {
    ReadWatch watch;
    ReadingGps gps;
    gps.Send("$GPRMC,,,,,,,8");
    const size_t before = watch.EmptyReads();
    ASSERT_TRUE(WaitUntil([&] { return watch.EmptyReads() >= before + 1 && watch.DoneBytes() == 14; }));
    EXPECT_FALSE(IsEnabled());
    gps.Send("1\r\n");
    gps.Settle();
    EXPECT_EQ(ReadSpeed(), 81);
    for (const DWORD pause : watch.Pauses()) {
        EXPECT_EQ(pause, 10U);
    }
    EXPECT_FALSE(watch.Pauses().empty());
}

}  // namespace
}  // namespace quarlin::test
