// SPDX-License-Identifier: Apache-2.0
// Logs of real receivers, sent through the port: the values at their end are those that an independent reader of the
// logs finds.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "gps/gps_session_win.h"
#include "gps/receiver_log.h"
#include "gps/sentences.h"

namespace quarlin::test {
namespace {

using Json = nlohmann::json;

// What the independent reader found, by the logs' names; an empty object when there is none.
Json Expectations() {
#ifdef QUARLIN_NMEA_EXPECTATIONS
    std::ifstream file(QUARLIN_NMEA_EXPECTATIONS);
    const Json byPath = Json::parse(file);
    Json byName = Json::object();
    for (const auto& [path, values] : byPath.items()) {
        byName[path.substr(path.find_last_of('/') + 1)] = values;
    }
    return byName;
#else
    return Json::object();
#endif
}

// A number at the end of a log. Two rules differ: the library takes an empty field of the last sentence for 0, where
// the reader keeps the value before; and what never came is 0 here and null there.
double Expected(const Json& value, const std::vector<std::string>& sentence, size_t field) {
    if (sentence.size() > field && sentence[field].empty()) {
        return 0;
    }
    return value.is_null() ? 0 : value.get<double>();
}

int MappedQuality(int quality) {
    return quality >= 0 && quality <= 2 ? quality : 3;
}

class GpsReceiverLog : public ::testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        log_ = ReadReceiverLog(GetParam());
        if (log_.empty()) {
            GTEST_SKIP() << kNoReceiverLogs;
        }
        expected_ = Expectations().at(GetParam());
    }

    std::string log_;
    Json expected_;
};

std::string NameOfLog(const ::testing::TestParamInfo<std::string>& log) {
    std::string name;
    for (const char character : log.param.substr(0, log.param.find('.'))) {
        name += std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Of, GpsReceiverLog,
                         ::testing::Values("bu353-glonass.nmea", "bu353s4.nmea", "quectel-l76k-nmea.nmea",
                                           "telit-he910.nmea", "telit-pls83-w.nmea", "tr737A+.nmea", "ublox-8.nmea"),
                         NameOfLog);

TEST_P(GpsReceiverLog, EndsWithItsLastValues) {
    ReadingGps gps;
    gps.Send(log_);
    gps.Settle();
    const GpsValues values = ReadValues();

    constexpr double kTolerance = 1e-9;
    EXPECT_NEAR(values.latitude, expected_.at("latitude").get<double>(), kTolerance);
    EXPECT_NEAR(values.longitude, expected_.at("longitude").get<double>(), kTolerance);
    EXPECT_NEAR(values.altitude, expected_.at("altitude").get<double>(), kTolerance);
    EXPECT_EQ(values.quality, MappedQuality(expected_.at("quality").get<int>()));
    EXPECT_EQ(values.timeStamp,
              expected_.at("time").get<std::string>() + " " + expected_.at("date").get<std::string>());

    const std::vector<std::string> rmc = LastSentence(log_, "RMC");
    EXPECT_NEAR(values.speed, Expected(expected_.at("speed_knots"), rmc, 7), kTolerance);
    EXPECT_NEAR(values.bearing, Expected(expected_.at("course"), rmc, 8), kTolerance);

    const std::vector<std::string> gsa = LastSentence(log_, "GSA");
    EXPECT_NEAR(values.pdop, Expected(expected_.at("pdop"), gsa, 15), kTolerance);
    EXPECT_NEAR(values.hdop, Expected(expected_.at("hdop"), gsa, 16), kTolerance);
    EXPECT_NEAR(values.vdop, Expected(expected_.at("vdop"), gsa, 17), kTolerance);
    EXPECT_EQ(std::to_string(values.mode), gsa.at(2));
    EXPECT_EQ(values.selection, gsa.at(1) == "A" ? FIX_SELECTION_AUTOMATIC : FIX_SELECTION_MANUAL);
}

// The satellites of the last complete cycle of each system, as the independent reader lists them.
void AppendSatellites(const Json& systems, const char* talker, std::vector<GpsGlonassSatellite>& satellites) {
    if (!systems.contains(talker)) {
        return;
    }
    const Json& system = systems.at(talker);
    const size_t inView = static_cast<size_t>(std::stoi(system.at("in_view").get<std::string>()));
    const Json& rows = system.at("prn_elev_azim_snr");
    // A receiver of a later standard has a signal number in its last sentence, which the reader lists as one more row.
    for (size_t i = 0; i < std::min(inView, rows.size()); ++i) {
        const auto number = [&](size_t column) {
            const std::string text = rows.at(i).at(column).get<std::string>();
            return text.empty() ? 0 : std::stoi(text);
        };
        satellites.push_back({number(0), number(1), number(2), number(3), 0});
    }
}

TEST_P(GpsReceiverLog, EndsWithItsLastSatellites) {
    ReadingGps gps;
    gps.Send(UpToCompleteSatellites(log_));
    gps.Settle();
    std::vector<GpsGlonassSatellite> expected;
    AppendSatellites(expected_.at("gsv"), "GPGSV", expected);
    AppendSatellites(expected_.at("gsv"), "GLGSV", expected);
    ASSERT_FALSE(expected.empty());

    std::vector<GpsGlonassSatellite> satellites = ReadSatellites();
    EXPECT_EQ(ReadValues().inView, static_cast<int>(satellites.size()));
    // Which of them were used is not the reader's business.
    for (GpsGlonassSatellite& satellite : satellites) {
        satellite.used = 0;
    }
    EXPECT_EQ(Text(satellites), Text(expected));
}

}  // namespace
}  // namespace quarlin::test
