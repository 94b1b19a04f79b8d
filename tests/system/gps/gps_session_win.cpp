// SPDX-License-Identifier: Apache-2.0
#include "gps/gps_session_win.h"

#include <quarlin/quarlin.h>

#include <array>
#include <sstream>
#include <stdexcept>

#include "gps/sentences.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

constexpr int kMostSatellites = 150;

void Check(const char* call, QLerr result) {
    if (result != QLERR_OK) {
        std::array<char, 1024> text{};
        QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
        throw std::runtime_error(std::string(call) + ": " + text.data());
    }
}

int UsedForFix() {
    int count = 0;
    Check("QLGPS_GetSatellitesUsedForFix", QLGPS_GetSatellitesUsedForFix(&count));
    return count;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const GpsValues& values) {
    return out << values.latitude << ' ' << values.longitude << ' ' << values.altitude << ", speed " << values.speed
               << ", bearing " << values.bearing << ", hdop " << values.hdop << ", pdop " << values.pdop << ", vdop "
               << values.vdop << ", quality " << values.quality << ", status " << values.status << ", used "
               << values.used << ", in view " << values.inView << ", mode " << static_cast<int>(values.mode)
               << ", selection " << static_cast<int>(values.selection) << ", '" << values.timeStamp << "'";
}

GpsValues ReadValues() {
    GpsValues values;
    std::array<char, 80> timeStamp{};
    Check("QLGPS_GetCoordinates", QLGPS_GetCoordinates(&values.latitude, &values.longitude, &values.altitude));
    Check("QLGPS_GetSpeed", QLGPS_GetSpeed(&values.speed));
    Check("QLGPS_GetBearing", QLGPS_GetBearing(&values.bearing));
    Check("QLGPS_GetHDOP", QLGPS_GetHDOP(&values.hdop));
    Check("QLGPS_GetPDOP", QLGPS_GetPDOP(&values.pdop));
    Check("QLGPS_GetVDOP", QLGPS_GetVDOP(&values.vdop));
    Check("QLGPS_GetFixQuality", QLGPS_GetFixQuality(&values.quality));
    Check("QLGPS_GetFixStatus", QLGPS_GetFixStatus(&values.status));
    Check("QLGPS_GetSatellitesUsedForFix", QLGPS_GetSatellitesUsedForFix(&values.used));
    Check("QLGPS_GetMaxSat", QLGPS_GetMaxSat(&values.inView));
    Check("QLGPS_GetFixMode", QLGPS_GetFixMode(&values.mode));
    Check("QLGPS_GetFixSelection", QLGPS_GetFixSelection(&values.selection));
    Check("QLGPS_GetTimeStamp", QLGPS_GetTimeStamp(timeStamp.data()));
    values.timeStamp = timeStamp.data();
    return values;
}

double ReadSpeed() {
    double speed = 0;
    Check("QLGPS_GetSpeed", QLGPS_GetSpeed(&speed));
    return speed;
}

bool IsEnabled() {
    bool enabled = false;
    Check("QLGPS_IsEnabled", QLGPS_IsEnabled(&enabled));
    return enabled;
}

std::vector<GpsGlonassSatellite> ReadSatellites() {
    constexpr int32_t kUntouched = -12345;
    std::vector<GpsGlonassSatellite> satellites(
        kMostSatellites, GpsGlonassSatellite{kUntouched, kUntouched, kUntouched, kUntouched, kUntouched});
    Check("QLGPS_GetSatellites", QLGPS_GetSatellites(satellites.data(), kMostSatellites));
    size_t count = 0;
    while (count < satellites.size() && satellites[count].used != kUntouched) {
        ++count;
    }
    satellites.resize(count);
    return satellites;
}

bool Same(const GpsGlonassSatellite& one, const GpsGlonassSatellite& other) {
    return one.PRN == other.PRN && one.Elevation == other.Elevation && one.Azimuth == other.Azimuth &&
           one.SNR == other.SNR && one.used == other.used;
}

std::string Text(const std::vector<GpsGlonassSatellite>& satellites) {
    std::ostringstream text;
    for (const GpsGlonassSatellite& satellite : satellites) {
        text << '[' << satellite.PRN << ' ' << satellite.Elevation << ' ' << satellite.Azimuth << ' ' << satellite.SNR
             << (satellite.used != 0 ? " used]" : "]");
    }
    return text.str();
}

GpsSession::GpsSession(int port) {
    Check("QLGPS_Initialize", QLGPS_Initialize(port));
}

GpsSession::~GpsSession() {
    QLGPS_Uninitialize();
}

Chatter::Chatter(SerialPair& cable)
    : started_(CreateEventW(nullptr, TRUE, FALSE, nullptr)), stop_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    thread_ = std::thread([this, &cable] {
        cable.Send("\n");
        SetEvent(started_.Get());
        while (WaitForSingleObject(stop_.Get(), 1) == WAIT_TIMEOUT) {
            cable.Send("\n");
        }
    });
    WaitForSingleObject(started_.Get(), kDeadline);
}

Chatter::~Chatter() {
    SetEvent(stop_.Get());
    thread_.join();
}

QLerr DisableWithoutSilence(SerialPair& cable) {
    const Chatter chatter(cable);
    return QLGPS_Disable();
}

ReadingGps::ReadingGps(SerialPair::Cable cable) : cable_(cable), session_(cable_.Port()) {
    Check("QLGPS_Enable", QLGPS_Enable());
}

ReadingGps::~ReadingGps() {
    if (cable_.FarEndIsOpen()) {
        DisableWithoutSilence(cable_);
    }
}

void ReadingGps::Settle() {
    // A GGA sentence without values ends a run of GSA sentences: the next one starts the list anew.
    Send(Sentence("GPGGA,,,") + Sentence("GPGSA,,"));
    Await("an empty list of used satellites", [] { return UsedForFix() == 0; });
    // 24 satellites that do not exist fill the list, which no receiver does.
    Send(Sentence("GPGSA,,,901,902,903,904,905,906,907,908,909,910,911,912") +
         Sentence("GPGSA,,,913,914,915,916,917,918,919,920,921,922,923,924"));
    Await("a full list of used satellites", [] { return UsedForFix() == 24; });
    Send(Sentence("GPGGA,,,"));
}

void ReadingGps::SettleBySpeed(double speed) {
    Send(SpeedOnly(speed));
    Await("the speed", [speed] { return ReadSpeed() == speed; });
}

}  // namespace quarlin::test
