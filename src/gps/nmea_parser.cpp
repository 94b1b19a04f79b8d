// SPDX-License-Identifier: Apache-2.0
#include "gps/nmea_parser.h"

#include "gps/date_time_text.h"
#include "gps/nmea_fields.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <type_traits>

namespace quarlin::gps {
namespace {

// A line's type is its first six characters: '$', the talker, and the formatter.
constexpr std::uint32_t TypeKey(const char* talkerAndFormatter) {
    std::uint32_t key = 0;
    for (int i = 1; i < 5; ++i) {
        key = key << 8 | static_cast<unsigned char>(talkerAndFormatter[i]);
    }
    return key;
}

constexpr const char* kLineStart = "$G";
constexpr int kTypeLength = 6;

// 0, which is no type, for a line that is too short or starts otherwise.
std::uint32_t LineType(const char* line) {
    if (line[0] != kLineStart[0] || line[1] != kLineStart[1] || line[2] == '\0' || line[3] == '\0' || line[4] == '\0') {
        return 0;
    }
    return TypeKey(line + 1);
}

// "5321.6802" is 53 degrees and 21.6802 minutes.
double Degrees(double ddmm) {
    // A conversion there and back cuts the fraction off at once, for what fits into 32 bits; std::trunc may be a call.
    constexpr double kFitting = 1e9;
    const double hundredth = ddmm / 100;
    const double degrees =
        std::abs(hundredth) < kFitting ? static_cast<std::int32_t>(hundredth) : std::trunc(hundredth);
    return degrees + (ddmm - degrees * 100) / 60;
}

// One angle and its hemisphere. Stored as soon as it is known, so that a sentence that ends here keeps it.
bool TakeAngle(FieldCursor& field, double& angle, char negativeHemisphere) {
    if (!field.NextFilled()) {
        return false;
    }
    angle = Degrees(field.Real());
    if (!field.Next()) {
        return false;
    }
    if (field.First() == negativeHemisphere) {
        angle = -angle;
    }
    return true;
}

// $--GGA,time,lat,N|S,lon,E|W,quality,satellites,hdop,altitude,M,...
//  $GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76
void ParseGga(FixState& fix, FieldCursor field) {
    if (!field.Next()) {
        return;
    }
    if (!field.IsEmpty()) {
        FormatTime(field.Real(), fix.timeText);
    }
    if (!TakeAngle(field, fix.latitude, 'S') || !TakeAngle(field, fix.longitude, 'W') || !field.NextFilled()) {
        return;
    }
    fix.fixQuality = field.Integer();
    // The satellite count and the dilution come from GSA, but must be there.
    if (!field.NextFilled() || !field.NextFilled() || !field.NextFilled()) {
        return;
    }
    fix.altitude = field.Real();
}

// $--GSA,A|M,1|2|3,12 satellites,pdop,hdop,vdop
//  $GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38*0A
void ParseGsa(FixState& fix, FieldCursor field) {
    if (fix.used.IsFull() || !field.Next()) {
        return;
    }
    if (field.First() == 'A') {
        fix.fixSelection = FIX_SELECTION_AUTOMATIC;
    } else if (field.First() == 'M') {
        fix.fixSelection = FIX_SELECTION_MANUAL;
    }
    if (!field.Next()) {
        return;
    }
    if (field.First() >= '1' && field.First() <= '3') {
        fix.fixType = field.First() - '0';
    }
    constexpr int kSatelliteFields = 12;
    for (int i = 0; i < kSatelliteFields; ++i) {
        if (!field.Next()) {
            return;
        }
        if (!field.HoldsNothing()) {
            fix.used.Add(field.Integer());
        }
    }
    for (double* const dilution : {&fix.pdop, &fix.hdop, &fix.vdop}) {
        if (!field.Next()) {
            return;
        }
        *dilution = field.Real();
    }
}

// $--RMC,time,A|V,lat,N|S,lon,E|W,knots,course,ddmmyy,...
//  $GPRMC,092750.000,A,5321.6802,N,00630.3372,W,0.02,31.66,280511,,,A*43
void ParseRmc(FixState& fix, FieldCursor field) {
    // Time and position come from GGA; the status is not looked at.
    constexpr int kFieldsBeforeSpeed = 6;
    if (!field.Skip(kFieldsBeforeSpeed + 1)) {
        return;
    }
    fix.speed = field.Real();
    if (!field.Next()) {
        return;
    }
    fix.bearing = field.Real();
    if (field.NextFilled()) {
        FormatDate(field.Integer(), fix.dateText);
    }
}

// Satellites in view of both systems, held at the limit.
std::int32_t CountInView(const FixState& fix) {
    const std::int64_t count = std::int64_t{fix.gps.Count()} + fix.glonass.Count();
    return static_cast<std::int32_t>(std::min<std::int64_t>(count, kInViewLimit));
}

template <typename Table>
void StoreSatellite(FixState& fix, Table& table, const GpsGlonassSatellite& satellite) {
    table.Store(satellite);
    fix.inViewTotal = CountInView(fix);
}

// One block: satellite, elevation, azimuth, carrier to noise ratio. False when the line ends within it.
template <typename Table>
bool TakeBlock(FixState& fix, Table& table, FieldCursor& field) {
    constexpr int kFieldsBehindPrn = 3;
    if (!field.Next()) {
        return false;
    }
    if (field.HoldsNothing()) {
        StoreSatellite(fix, table, {.PRN = -1, .Elevation = 0, .Azimuth = 0, .SNR = 0, .used = 0});
        return field.Skip(kFieldsBehindPrn);
    }
    GpsGlonassSatellite satellite{};
    satellite.PRN = field.Integer();
    if (!field.NextInteger(satellite.Elevation) || !field.NextInteger(satellite.Azimuth) ||
        !field.NextInteger(satellite.SNR)) {
        return false;
    }
    satellite.used = fix.used.Contains(satellite.PRN) ? 1 : 0;
    StoreSatellite(fix, table, satellite);
    return true;
}

// $--GSV,messages,message,in view,up to four blocks of satellite,elevation,azimuth,ratio
//  $GPGSV,3,1,11,10,63,137,17,07,61,098,15,05,59,290,20,08,54,157,30*70
template <typename Table>
void ParseGsv(FixState& fix, Table& table, FieldCursor field) {
    constexpr bool kIsGps = std::is_same_v<Table, decltype(fix.gps)>;
    std::int32_t messages = 0;
    std::int32_t message = 0;
    std::int32_t inView = 0;
    if (!field.NextInteger(messages) || !field.NextInteger(message) || !field.NextInteger(inView)) {
        return;
    }

    // GLONASS counts as absent once this many GPS sentences have come without one of its own.
    constexpr std::int32_t kGlonassPatience = 10;
    if constexpr (kIsGps) {
        fix.glonassCountdown = std::max(fix.glonassCountdown - 1, 0);
    } else {
        fix.glonassCountdown = kGlonassPatience;
    }
    table.BeginMessage(message);
    fix.inViewTotal = CountInView(fix);
    if (fix.inViewTotal == kInViewLimit) {
        return;
    }

    constexpr int kBlocks = 4;
    const std::int64_t firstBlock = (std::int64_t{message} - 1) * kBlocks;
    for (int i = 0; i < kBlocks && firstBlock + i < inView; ++i) {
        if (!TakeBlock(fix, table, field)) {
            return;
        }
    }
    if (messages < message) {
        return;
    }
    table.EndMessage();
    if (fix.glonassCountdown == 0) {
        fix.glonass.Clear();
        fix.inViewTotal = fix.gps.Count();
    }
    // Published after every message of a cycle, not only after the last: the published tables grow through the cycle.
    fix.publishedTotal = fix.inViewTotal;
    fix.gps.Publish();
    fix.glonass.Publish();
}

}  // namespace

int ParseSentence(FixState& fix, const char* line) {
    const std::uint32_t type = LineType(line);
    const FieldCursor field(type == 0 ? line : line + kTypeLength);
    switch (type) {
        case TypeKey("GPGSV"):
            fix.lastWasGsa = false;
            ParseGsv(fix, fix.gps, field);
            break;
        case TypeKey("GLGSV"):
            fix.lastWasGsa = false;
            ParseGsv(fix, fix.glonass, field);
            break;
        case TypeKey("GPGGA"):
        case TypeKey("GNGGA"):
            fix.lastWasGsa = false;
            ParseGga(fix, field);
            break;
        case TypeKey("GPGSA"):
        case TypeKey("GNGSA"):
            if (!fix.lastWasGsa) {
                fix.used.Clear();
            }
            fix.lastWasGsa = true;
            ParseGsa(fix, field);
            break;
        case TypeKey("GPVTG"):
        case TypeKey("GNVTG"):
            // Known, and ignored: its course and speed come with RMC.
            break;
        case TypeKey("GPRMC"):
        case TypeKey("GNRMC"):
            ParseRmc(fix, field);
            break;
        default:
            break;
    }
    return 0;
}

}  // namespace quarlin::gps
