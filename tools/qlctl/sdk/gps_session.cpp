// SPDX-License-Identifier: Apache-2.0
#include "sdk/gps_session.h"

#include "sdk/check.h"

#include <algorithm>
#include <array>

namespace quarlin::qlctl {
namespace {

constexpr size_t kMostSatellites = 150;
constexpr size_t kTimeStampSize = 80;

// The library does not tell how many records it filled: the first one that kept this mark ends them. The library writes
// 0 or 1 there; a satellite's number may be anything.
constexpr int32_t kUntouched = -1;

template <typename Value>
Value Get(QLerr (*getter)(Value*)) {
    Value value{};
    Check(getter(&value));
    return value;
}

std::vector<GpsGlonassSatellite> ReadSatellites() {
    std::vector<GpsGlonassSatellite> satellites(kMostSatellites, GpsGlonassSatellite{0, 0, 0, 0, kUntouched});
    Check(QLGPS_GetSatellites(satellites.data(), static_cast<int>(satellites.size())));
    const auto end = std::find_if(satellites.begin(), satellites.end(),
                                  [](const GpsGlonassSatellite& satellite) { return satellite.used == kUntouched; });
    satellites.erase(end, satellites.end());
    return satellites;
}

}  // namespace

GpsSession::Initialized::Initialized(int port) {
    Check(QLGPS_Initialize(port));
}

GpsSession::Initialized::~Initialized() {
    QLGPS_Uninitialize();
}

GpsSession::Enabled::Enabled() {
    Check(QLGPS_Enable());
}

GpsSession::Enabled::~Enabled() {
    QLGPS_Disable();
}

GpsSession::GpsSession(int port) : portName_("COM" + std::to_string(port)), initialized_(port), enabled_() {
}

bool GpsSession::IsSending() const {
    return Get(QLGPS_IsEnabled);
}

GpsReading GpsSession::Read() const {
    GpsReading reading;
    std::array<char, kTimeStampSize> timeStamp{};
    Check(QLGPS_GetTimeStamp(timeStamp.data()));
    reading.timeStamp = timeStamp.data();
    Check(QLGPS_GetCoordinates(&reading.latitude, &reading.longitude, &reading.altitude));
    reading.speedKnots = Get(QLGPS_GetSpeed);
    reading.course = Get(QLGPS_GetBearing);
    reading.hdop = Get(QLGPS_GetHDOP);
    reading.vdop = Get(QLGPS_GetVDOP);
    reading.pdop = Get(QLGPS_GetPDOP);
    reading.fixMode = Get(QLGPS_GetFixMode);
    reading.fixSelection = Get(QLGPS_GetFixSelection);
    reading.fixQuality = Get(QLGPS_GetFixQuality);
    reading.hasFix = Get(QLGPS_GetFixStatus) != 0;
    reading.satellitesInView = Get(QLGPS_GetMaxSat);
    reading.satellitesUsed = Get(QLGPS_GetSatellitesUsedForFix);
    reading.satellites = ReadSatellites();
    return reading;
}

}  // namespace quarlin::qlctl
