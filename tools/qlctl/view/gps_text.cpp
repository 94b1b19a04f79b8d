// SPDX-License-Identifier: Apache-2.0
#include "view/gps_text.h"

#include "view/text.h"

#include <cmath>

namespace quarlin::qlctl {
namespace {

const char* FixModeText(FixMode mode) {
    switch (mode) {
        case FIX_MODE_NO_FIX:
            return "no fix";
        case FIX_MODE_2D:
            return "2D";
        case FIX_MODE_3D:
            return "3D";
        case FIX_MODE_UNKNOWN:
            break;
    }
    return "unknown";
}

const char* QualityText(int quality) {
    switch (quality) {
        case 0:
            return "no fix";
        case 1:
            return "GPS";
        case 2:
            return "differential GPS";
        default:
            return "other";
    }
}

const char* SystemText(SatelliteSystem system) {
    switch (system) {
        case SatelliteSystem::kGps:
            return "GPS";
        case SatelliteSystem::kSbas:
            return "SBAS";
        case SatelliteSystem::kGlonass:
            return "GLONASS";
        case SatelliteSystem::kQzss:
            return "QZSS";
        case SatelliteSystem::kOther:
            break;
    }
    return "other";
}

std::string Degrees(double value, char positive, char negative) {
    return Fixed(std::fabs(value), 6) + ' ' + (value < 0 ? negative : positive);
}

std::string Coordinates(const GpsReading& reading) {
    return Degrees(reading.latitude, 'N', 'S') + "  " + Degrees(reading.longitude, 'E', 'W');
}

bool HasPosition(const GpsReading& reading) {
    return reading.hasFix || reading.fixQuality > 0;
}

bool HadPosition(const GpsReading& reading) {
    return reading.latitude != 0 || reading.longitude != 0;
}

}  // namespace

std::string FixText(const GpsReading& reading) {
    std::string text = reading.hasFix ? "fixed" : "not fixed";
    text.append(", mode ").append(FixModeText(reading.fixMode));
    text.append(", quality ").append(QualityText(reading.fixQuality));
    return text.append(", selection ").append(Name(reading.fixSelection));
}

std::string PositionText(const GpsReading& reading) {
    if (!HasPosition(reading) && !HadPosition(reading)) {
        return "not known yet";
    }
    std::string text = Coordinates(reading) + "  altitude " + Fixed(reading.altitude, 1) + " m";
    if (!HasPosition(reading)) {
        text += "  (last known)";
    }
    return text;
}

std::string TimeText(const GpsReading& reading) {
    const std::string iso = IsoTime(reading);
    if (!iso.empty()) {
        const size_t split = iso.find('T');
        return iso.substr(0, split) + ' ' + iso.substr(split + 1, iso.size() - split - 2) + " UTC";
    }
    const size_t begin = reading.timeStamp.find_first_not_of(' ');
    return begin == std::string::npos ? "not known yet" : reading.timeStamp.substr(begin) + " UTC";
}

std::string SpeedText(const GpsReading& reading) {
    return Fixed(reading.speedKnots, 1) + " kn  " + Fixed(KilometresPerHour(reading.speedKnots), 1) + " km/h";
}

std::string CourseText(const GpsReading& reading) {
    return Fixed(reading.course, 1) + " deg";
}

std::string DilutionText(const GpsReading& reading) {
    return "HDOP " + Fixed(reading.hdop, 2) + "  VDOP " + Fixed(reading.vdop, 2) + "  PDOP " + Fixed(reading.pdop, 2);
}

std::string SatelliteCountText(const GpsReading& reading) {
    return std::to_string(reading.satellitesUsed) + " used, " + std::to_string(reading.satellitesInView) + " in view";
}

std::string StatusReport(const GpsReading& reading, std::string_view portName) {
    return Row("Receiver", std::string("sending on ").append(portName)) + Row("Fix", FixText(reading)) +
           Row("Position", PositionText(reading)) + Row("Time", TimeText(reading)) + Row("Speed", SpeedText(reading)) +
           Row("Course", CourseText(reading)) + Row("Dilution", DilutionText(reading)) +
           Row("Satellites", SatelliteCountText(reading));
}

std::string SatelliteTable(const GpsReading& reading) {
    std::string table = "System   PRN  Elevation  Azimuth  SNR dB-Hz  Used\n";
    for (const GpsGlonassSatellite& satellite : reading.satellites) {
        table += PadRight(SystemText(SystemOf(satellite)), 7) + PadLeft(std::to_string(satellite.PRN), 5) +
                 PadLeft(std::to_string(satellite.Elevation), 11) + PadLeft(std::to_string(satellite.Azimuth), 9) +
                 PadLeft(std::to_string(satellite.SNR), 11) + (satellite.used != 0 ? "  yes\n" : "  no\n");
    }
    return table + SatelliteCountText(reading) + '\n';
}

std::string ReadingLine(const GpsReading& reading) {
    return TimeText(reading) + "  " + (HasPosition(reading) ? FixModeText(reading.fixMode) : "no fix") + "  " +
           PositionText(reading) + "  " + SpeedText(reading) + "  " + CourseText(reading) + "  HDOP " +
           Fixed(reading.hdop, 2) + "  " + SatelliteCountText(reading) + '\n';
}

}  // namespace quarlin::qlctl
