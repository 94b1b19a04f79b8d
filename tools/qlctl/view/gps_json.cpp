// SPDX-License-Identifier: Apache-2.0
#include "view/gps_json.h"

#include "view/json_line.h"

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::ordered_json;

Json SatelliteJson(const GpsGlonassSatellite& satellite) {
    return {
        {"system", Name(SystemOf(satellite))}, {"prn", satellite.PRN},      {"elevation_deg", satellite.Elevation},
        {"azimuth_deg", satellite.Azimuth},    {"snr_dbhz", satellite.SNR}, {"used", satellite.used != 0},
    };
}

}  // namespace

std::string ReadingJson(const GpsReading& reading) {
    const std::string utc = IsoTime(reading);
    Json satellites = Json::array();
    for (const GpsGlonassSatellite& satellite : reading.satellites) {
        satellites.push_back(SatelliteJson(satellite));
    }
    return JsonLine({
        {"utc", utc.empty() ? Json(nullptr) : Json(utc)},
        {"time_stamp", reading.timeStamp},
        {"fix", reading.hasFix},
        {"fix_mode", Name(reading.fixMode)},
        {"fix_selection", Name(reading.fixSelection)},
        {"fix_quality", reading.fixQuality},
        {"fix_quality_name", QualityName(reading.fixQuality)},
        {"latitude_deg", reading.latitude},
        {"longitude_deg", reading.longitude},
        {"altitude_m", reading.altitude},
        {"speed_knots", reading.speedKnots},
        {"speed_kmh", KilometresPerHour(reading.speedKnots)},
        {"course_deg", reading.course},
        {"hdop", reading.hdop},
        {"vdop", reading.vdop},
        {"pdop", reading.pdop},
        {"satellites_in_view", reading.satellitesInView},
        {"satellites_used", reading.satellitesUsed},
        {"satellites", std::move(satellites)},
    });
}

}  // namespace quarlin::qlctl
