// SPDX-License-Identifier: Apache-2.0
#include "view/gps_text.h"

#include "sample_reading.h"
#include "view/gps_json.h"
#include "view/text.h"

#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace quarlin::qlctl {
namespace {

TEST(Text, FixedHasAPointAndItsDecimals) {
    EXPECT_EQ(Fixed(-6.50562, 6), "-6.505620");
    EXPECT_EQ(Fixed(0.5, 0), "0");
    EXPECT_EQ(Fixed(std::numeric_limits<double>::max(), 2).size(), 309U + 3U);
}

TEST(Text, PaddingNeverCuts) {
    EXPECT_EQ(PadLeft("12", 4), "  12");
    EXPECT_EQ(PadRight("12", 4), "12  ");
    EXPECT_EQ(PadLeft("12345", 4), "12345");
    EXPECT_EQ(PadRight("12345", 4), "12345");
}

TEST(StatusReport, ShowsEveryValueWithItsUnit) {
    EXPECT_EQ(StatusReport(SampleReading(), "COM3"),
              "Receiver      sending on COM3\n"
              "Fix           fixed, mode 3D, quality GPS, selection automatic\n"
              "Position      53.361337 N  6.505620 W  altitude 61.7 m\n"
              "Time          2026-11-19 09:27:50 UTC\n"
              "Speed         10.0 kn  18.5 km/h\n"
              "Course        54.7 deg\n"
              "Dilution      HDOP 1.03  VDOP 0.90  PDOP 1.40\n"
              "Satellites    3 used, 4 in view\n");
}

TEST(StatusReport, SaysWhatIsNotKnownBeforeTheFirstFix) {
    GpsReading reading;
    reading.fixMode = FIX_MODE_NO_FIX;
    EXPECT_EQ(FixText(reading), "not fixed, mode no fix, quality no fix, selection manual");
    EXPECT_EQ(PositionText(reading), "not known yet");
    EXPECT_EQ(TimeText(reading), "not known yet");
}

TEST(StatusReport, MarksThePositionOfALostFixAsTheLastOne) {
    GpsReading reading = SampleReading();
    reading.hasFix = false;
    reading.fixQuality = 0;
    EXPECT_EQ(PositionText(reading), "53.361337 N  6.505620 W  altitude 61.7 m  (last known)");
}

TEST(StatusReport, ShowsHalfATimeStampAsItIs) {
    GpsReading reading;
    reading.timeStamp = "9:27:50";
    EXPECT_EQ(TimeText(reading), "9:27:50 UTC");
    reading.timeStamp = " 19/11/2026";
    EXPECT_EQ(TimeText(reading), "19/11/2026 UTC");
}

TEST(StatusReport, NamesTheHemispheres) {
    GpsReading reading = SampleReading();
    reading.latitude = -33.5;
    reading.longitude = 151.25;
    EXPECT_EQ(PositionText(reading), "33.500000 S  151.250000 E  altitude 61.7 m");
}

TEST(SatelliteTable, HasARowPerSatellite) {
    EXPECT_EQ(SatelliteTable(SampleReading()),
              "System   PRN  Elevation  Azimuth  SNR dB-Hz  Used\n"
              "GPS       10         63      137         17  yes\n"
              "GPS        7         61       98         50  yes\n"
              "GPS        5          9      290          0  no\n"
              "GLONASS   71         42      300         25  yes\n"
              "3 used, 4 in view\n");
}

TEST(ReadingLine, IsOneLine) {
    EXPECT_EQ(ReadingLine(SampleReading()),
              "2026-11-19 09:27:50 UTC  3D  53.361337 N  6.505620 W  altitude 61.7 m  10.0 kn  18.5 km/h  54.7 deg  "
              "HDOP 1.03  3 used, 4 in view\n");
}

TEST(ReadingJson, HasTheDocumentedFieldsInOneLine) {
    const std::string line = ReadingJson(SampleReading());
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_EQ(nlohmann::json::parse(line), nlohmann::json::parse(R"({
        "utc": "2026-11-19T09:27:50Z", "time_stamp": "9:27:50 19/11/2026",
        "fix": true, "fix_mode": "3d", "fix_selection": "automatic", "fix_quality": 1, "fix_quality_name": "gps",
        "latitude_deg": 53.361337, "longitude_deg": -6.50562, "altitude_m": 61.7,
        "speed_knots": 10.0, "speed_kmh": 18.52, "course_deg": 54.7, "hdop": 1.03, "vdop": 0.9, "pdop": 1.4,
        "satellites_in_view": 4, "satellites_used": 3,
        "satellites": [
            {"system": "gps", "prn": 10, "elevation_deg": 63, "azimuth_deg": 137, "snr_dbhz": 17, "used": true},
            {"system": "gps", "prn": 7, "elevation_deg": 61, "azimuth_deg": 98, "snr_dbhz": 50, "used": true},
            {"system": "gps", "prn": 5, "elevation_deg": 9, "azimuth_deg": 290, "snr_dbhz": 0, "used": false},
            {"system": "glonass", "prn": 71, "elevation_deg": 42, "azimuth_deg": 300, "snr_dbhz": 25, "used": true}
        ]})"));
}

TEST(ReadingJson, IsNullWhereNoTimeIsKnown) {
    const auto json = nlohmann::json::parse(ReadingJson(GpsReading{}));
    EXPECT_TRUE(json["utc"].is_null());
    EXPECT_EQ(json["time_stamp"], "");
    EXPECT_EQ(json["fix_mode"], "unknown");
    EXPECT_TRUE(json["satellites"].is_array());
    EXPECT_TRUE(json["satellites"].empty());
}

}  // namespace
}  // namespace quarlin::qlctl
