// SPDX-License-Identifier: Apache-2.0
#include "nmea_feed_win.h"
#include "output_text.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;

TEST(GpsStatus, ShowsWhatTheReceiverSends) {
    const NmeaFeed feed(SampleBurst());
    const ChildResult result = Qlctl("gps status --port 3");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "Receiver      sending on COM3\n"
              "Fix           fixed, mode 3D, quality GPS, selection automatic\n"
              "Position      53.361337 N  6.505620 W  altitude 61.7 m\n"
              "Time          2026-11-19 09:27:50 UTC\n"
              "Speed         10.0 kn  18.5 km/h\n"
              "Course        54.7 deg\n"
              "Dilution      HDOP 1.03  VDOP 1.38  PDOP 1.72\n"
              "Satellites    8 used, 13 in view\n");
}

TEST(GpsStatus, ShowsAReceiverWithoutFix) {
    const NmeaFeed feed(ColdBurst());
    const ChildResult result = Qlctl("gps status");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.out,
              "Receiver      sending on COM3\n"
              "Fix           not fixed, mode no fix, quality no fix, selection automatic\n"
              "Position      not known yet\n"
              "Time          not known yet\n"
              "Speed         0.0 kn  0.0 km/h\n"
              "Course        0.0 deg\n"
              "Dilution      HDOP 0.00  VDOP 0.00  PDOP 0.00\n"
              "Satellites    0 used, 0 in view\n");
}

TEST(GpsStatus, PrintsAsManyJsonLinesAsAskedFor) {
    const NmeaFeed feed(SampleBurst());
    const ChildResult result = Qlctl("gps status --json --count 2 --interval 0.1");
    EXPECT_EQ(result.exitStatus, 0);
    const std::vector<Json> readings = JsonLines(result.out);
    ASSERT_EQ(readings.size(), 2U) << result.out;
    for (const Json& reading : readings) {
        EXPECT_EQ(reading["utc"], "2026-11-19T09:27:50Z");
        EXPECT_EQ(reading["fix"], true);
        EXPECT_NEAR(reading["latitude_deg"].get<double>(), 53.361337, 1e-6);
        EXPECT_NEAR(reading["longitude_deg"].get<double>(), -6.50562, 1e-6);
        EXPECT_EQ(reading["altitude_m"], 61.7);
        EXPECT_EQ(reading["speed_knots"], 10.0);
        EXPECT_EQ(reading["pdop"], 1.72);
        EXPECT_EQ(reading["satellites"].size(), 13U);
        EXPECT_EQ(reading["satellites"][12], Json::parse(R"({"system": "glonass", "prn": 72, "elevation_deg": 10,
                                                 "azimuth_deg": 40, "snr_dbhz": 33, "used": false})"));
    }
}

TEST(GpsSatellites, ShowsGpsThenGlonass) {
    const NmeaFeed feed(SampleBurst());
    const ChildResult result = Qlctl("gps satellites --port 3");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "System   PRN  Elevation  Azimuth  SNR dB-Hz  Used\n"
              "GPS       10         63      137         17  yes\n"
              "GPS        7         61       98         15  yes\n"
              "GPS        5         59      290         20  yes\n"
              "GPS        8         54      157         30  yes\n"
              "GPS        2         39      223         19  yes\n"
              "GPS       13         28       70         17  no\n"
              "GPS       26         23      252          0  no\n"
              "GPS        4         14      186         14  yes\n"
              "GPS       29          9      301         24  yes\n"
              "GPS       16          9       20          0  no\n"
              "SBAS      36          0        0          0  no\n"
              "GLONASS   71         42      300         25  yes\n"
              "GLONASS   72         10       40         33  no\n"
              "8 used, 13 in view\n");
}

TEST(GpsWatch, PrintsALinePerReadingAtTheIntervalIntoAPipe) {
    const NmeaFeed feed(SampleBurst());
    const auto start = std::chrono::steady_clock::now();
    const ChildResult result = Qlctl("gps watch --count 4 --interval 0.4");
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(CountOf(result.out, "\n"), 4U) << result.out;
    EXPECT_EQ(result.out.find('\x1b'), std::string::npos);
    EXPECT_EQ(CountOf(result.out, "2026-11-19 09:27:50 UTC  3D  53.361337 N  6.505620 W"), 4U) << result.out;
    // Three intervals lie between four readings. Counted from the program's start, so that a slow machine only adds.
    EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(took).count(), 3 * 400);
}

TEST(GpsWatch, RedrawsAScreenWhenToldTo) {
    const NmeaFeed feed(SampleBurst());
    const ScopedVariable noColour("NO_COLOR", "1");
    const ChildResult result = Qlctl("gps watch --redraw always --count 2 --interval 0.1");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.out.rfind("\x1b[?25l", 0), 0U) << "the cursor is hidden first";
    EXPECT_EQ(result.out.substr(result.out.size() - 6), "\x1b[?25h") << "the cursor is shown last";
    EXPECT_EQ(CountOf(result.out, "Position      53.361337 N  6.505620 W  altitude 61.7 m"), 2U);
    EXPECT_EQ(CountOf(result.out, "   8 ● █████████▌        30  54°  157°"), 2U) << result.out;
    EXPECT_EQ(CountOf(result.out, "  72   ██████████▌       33  10°   40°"), 2U) << result.out;
}

TEST(GpsWatch, EndsAfterItsTimeWhateverTheInterval) {
    const NmeaFeed feed(SampleBurst());
    const ChildResult result = Qlctl("gps watch --json --timeout 1 --interval 3600");
    EXPECT_EQ(result.exitStatus, 0);
    const std::vector<Json> readings = JsonLines(result.out);
    ASSERT_EQ(readings.size(), 1U) << result.out;
    EXPECT_EQ(readings[0]["fix_mode"], "3d");
}

TEST(GpsWatch, FollowsTheReceiver) {
    NmeaFeed feed(SampleBurst());
    ChildProcess watch("gps watch --json --redraw always --interval 0.2 --count 10000");
    ASSERT_TRUE(watch.Out().WaitFor(R"("fix":true,"fix_mode":"3d")", kDeadline));
    feed.Change(ColdBurst());
    EXPECT_TRUE(watch.Out().WaitFor(R"("fix":false,"fix_mode":"none")", kDeadline));
}

TEST(GpsStatus, SaysThatItsOutputCannotBeWritten) {
    const NmeaFeed feed(SampleBurst());
    const ChildResult result = ChildProcess("gps status", PipeReader::Reading::kRefused).Finish();
    EXPECT_EQ(result.exitStatus, 10);
    EXPECT_NE(result.err.find("qlctl: error: the output cannot be written"), std::string::npos) << result.err;
}

struct Refusal {
    const char* arguments;
    int exitStatus;
    const char* text;
};

void PrintTo(const Refusal& refusal, std::ostream* stream) {
    *stream << testing::PrintToString(refusal.arguments);
}

class GpsRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(GpsRefusal, HasItsExitStatusAndItsText) {
    const ChildResult result = Qlctl(GetParam().arguments);
    EXPECT_EQ(result.exitStatus, GetParam().exitStatus);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.substr(0, result.err.find_last_not_of("\r\n") + 1), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, GpsRefusal,
    testing::Values(
        Refusal{"gps status --port 0", 2, "qlctl: error 1 (QLERR_INVALID_ARGUMENT): COM port value is out of bounds"},
        Refusal{"gps status --port 256", 2, "qlctl: error 1 (QLERR_INVALID_ARGUMENT): COM port value is out of bounds"},
        Refusal{"gps satellites --port 9", 2, "qlctl: error 1 (QLERR_INVALID_ARGUMENT): Incorrect COM port"},
        Refusal{"gps watch --port 2", 3, "qlctl: error 2 (QLERR_INVALID_STATE): CreateFile failed"},
        Refusal{"gps watch --redraw always --port 1", 3, "qlctl: error 2 (QLERR_INVALID_STATE): SetCommState failed"},
        Refusal{"gps watch --timeout 0.3", 6, "qlctl: error: nothing came from the receiver on COM3 within 0.3 s"}));

TEST(GpsPort, ComesFromTheEnvironmentUnlessGiven) {
    const ScopedVariable port("QLCTL_GPS_PORT", "2");
    EXPECT_EQ(Qlctl("gps status").exitStatus, 3);
    EXPECT_EQ(Qlctl("gps status --port 9").exitStatus, 2);
}

TEST(GpsPort, InTheEnvironmentIsCheckedLikeTheOption) {
    const ScopedVariable port("QLCTL_GPS_PORT", "three");
    const ChildResult result = Qlctl("gps status");
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_NE(result.err.find("three"), std::string::npos) << result.err;
}

TEST(GpsPort, ShowsTheSystemsTextInOneLineWhenItCannotBeChecked) {
    const ScopedVariable provider("QLSIM_PORT_PROVIDER", "COM3=error:5");
    const ChildResult result = Qlctl("gps status --port 3");
    EXPECT_EQ(result.exitStatus, 5);
    const std::string expected =
        "qlctl: error 5 (QLERR_INTERNAL_ERROR): Failed to check COM port availability!; Win32 Error 0x00000005: ";
    EXPECT_EQ(result.err.rfind(expected, 0), 0U) << result.err;
    EXPECT_EQ(CountOf(result.err, "\n"), 1U) << result.err;
}

}  // namespace
}  // namespace quarlin::qlctl
