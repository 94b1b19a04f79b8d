// SPDX-License-Identifier: Apache-2.0
#include "view/gps_screen.h"

#include "sample_reading.h"
#include "view/terminal.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <limits>

namespace quarlin::qlctl {
namespace {

using std::chrono::seconds;

// Characters of a line without colours: UTF-8 continuation bytes take no column.
size_t Columns(const std::string& line) {
    return static_cast<size_t>(
        std::count_if(line.begin(), line.end(), [](char byte) { return (byte & '\xC0') != '\x80'; }));
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    return text;
}

constexpr ScreenStyle kPlainStyle{24, false};

TEST(ReadingScreen, ShowsValuesAndABarPerSatellite) {
    EXPECT_EQ(Joined(ReadingScreen(SampleReading(), "COM3", seconds(0), kPlainStyle)),
              "Receiver      sending on COM3\n"
              "Time          2026-11-19 09:27:50 UTC\n"
              "Fix           fixed, mode 3D, quality GPS, selection automatic\n"
              "Position      53.361337 N  6.505620 W  altitude 61.7 m\n"
              "Speed         10.0 kn  18.5 km/h\n"
              "Course        54.7 deg\n"
              "Dilution      HDOP 1.03  VDOP 0.90  PDOP 1.40\n"
              "Satellites    3 used, 4 in view\n"
              "\n"
              "GPS                                      GLONASS                               \n"
              " PRN   0     dB-Hz   50 SNR elev  azim    PRN   0     dB-Hz   50 SNR elev  azim\n"
              "  10 ● █████▍            17  63°  137°     71 ● ████████          25  42°  300°\n"
              "   7 ● ████████████████  50  61°   98°\n"
              "   5                      0   9°  290°\n");
}

TEST(ReadingScreen, TellsWhenTheReceiverHasGoneQuiet) {
    EXPECT_EQ(ReadingScreen(SampleReading(), "COM3", seconds(2), kPlainStyle)[0], "Receiver      sending on COM3");
    EXPECT_EQ(ReadingScreen(SampleReading(), "COM3", seconds(3), kPlainStyle)[0],
              "Receiver      COM3, no change for 3 s");
}

TEST(ReadingScreen, PaintsUsedSatellitesGreenAndOthersDim) {
    const std::string text = Joined(ReadingScreen(SampleReading(), "COM3", seconds(0), {24, true}));
    EXPECT_NE(text.find("  10 ● \x1b[32m█████▍"), std::string::npos);
    EXPECT_NE(text.find("   5   \x1b[2m                \x1b[0m"), std::string::npos);
}

TEST(ReadingScreen, IsNeverTallerThanTheTerminal) {
    GpsReading reading = SampleReading();
    reading.satellites.assign(50, GpsGlonassSatellite{3, 45, 180, 30, 1});
    reading.satellites.resize(150, GpsGlonassSatellite{70, 45, 180, 30, 1});
    const auto lines = ReadingScreen(reading, "COM3", seconds(0), kPlainStyle);
    EXPECT_EQ(lines.size(), 23U);
    // 9 lines above, two of head, 11 satellites, then the line that counts the rest.
    EXPECT_EQ(lines.back(), "     ... and 39 more                          ... and 89 more                  ");
    EXPECT_EQ(ReadingScreen(reading, "COM3", seconds(0), {200, false}).size(), 9U + 2U + 100U);
}

TEST(ReadingScreen, KeepsItsHeadOnATinyTerminal) {
    for (const int rows : {-1, 0, 5}) {
        EXPECT_EQ(ReadingScreen(SampleReading(), "COM3", seconds(0), {rows, false}).size(), 12U);
    }
}

TEST(ReadingScreen, StaysWithinItsColumnsWhateverTheReceiverSays) {
    GpsReading reading = SampleReading();
    reading.latitude = std::numeric_limits<double>::max();
    reading.speedKnots = reading.hdop = reading.latitude;
    reading.timeStamp = std::string(79, '9');
    constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    reading.satellites = {
        {kLeast, kLeast, kLeast, kLeast, 1}, {kMost, kMost, kMost, kMost, 1}, {70, kMost, -99, -1, 0}};
    for (const std::string& line : ReadingScreen(reading, "COM3", seconds(0), kPlainStyle)) {
        EXPECT_LE(Columns(line), kScreenColumns) << line;
    }
}

TEST(WaitingScreen, NamesThePort) {
    EXPECT_EQ(WaitingScreen("COM3", seconds(4)),
              std::vector<std::string>{"Receiver      waiting for the first line on COM3, 4 s"});
}

TEST(Terminal, DrawsOverThePictureAndClearsWhatIsLeft) {
    EXPECT_EQ(terminal::Frame({"one", "two"}), "\x1b[Hone\x1b[K\r\ntwo\x1b[K\r\n\x1b[J");
}

TEST(Terminal, HidesTheCursorAndGivesItBack) {
    EXPECT_EQ(terminal::Begin(), "\x1b[?25l\x1b[2J\x1b[H");
    EXPECT_EQ(terminal::End(), "\x1b[0m\x1b[?25h");
}

}  // namespace
}  // namespace quarlin::qlctl
