// SPDX-License-Identifier: Apache-2.0
#include "view/gps_reading.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

namespace quarlin::qlctl {
namespace {

auto Scalars(const GpsReading& r) {
    return std::tie(r.timeStamp, r.latitude, r.longitude, r.altitude, r.speedKnots, r.course, r.hdop, r.vdop, r.pdop,
                    r.fixMode, r.fixSelection, r.fixQuality, r.hasFix, r.satellitesInView, r.satellitesUsed);
}

auto Fields(const GpsGlonassSatellite& s) {
    return std::tie(s.PRN, s.Elevation, s.Azimuth, s.SNR, s.used);
}

// Reads unsigned numbers out of a text of a fixed shape: digits where the shape has a '#', the same character
// elsewhere.
template <size_t count>
std::optional<std::array<int, count>> Numbers(std::string_view text, std::string_view shape) {
    std::array<int, count> numbers{};
    size_t filled = 0;
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    for (const char wanted : shape) {
        if (wanted == '#') {
            if (at == end || *at < '0' || *at > '9') {
                return std::nullopt;
            }
            const auto [next, error] = std::from_chars(at, end, numbers[filled++]);
            if (error != std::errc{}) {
                return std::nullopt;
            }
            at = next;
        } else if (at == end || *at++ != wanted) {
            return std::nullopt;
        }
    }
    return at == end ? std::optional(numbers) : std::nullopt;
}

void AppendTwoDigits(std::string& text, int number) {
    if (number < 10) {
        text += '0';
    }
    text += std::to_string(number);
}

}  // namespace

bool SameReading(const GpsReading& a, const GpsReading& b) {
    return Scalars(a) == Scalars(b) &&
           std::equal(a.satellites.begin(), a.satellites.end(), b.satellites.begin(), b.satellites.end(),
                      [](const auto& x, const auto& y) { return Fields(x) == Fields(y); });
}

bool IsComplete(const GpsReading& reading) {
    return !IsoTime(reading).empty() && reading.fixMode != FIX_MODE_UNKNOWN && !reading.satellites.empty();
}

std::string IsoTime(const GpsReading& reading) {
    const auto numbers = Numbers<6>(reading.timeStamp, "#:#:# #/#/#");
    if (!numbers) {
        return {};
    }
    const auto [hour, minute, second, day, month, year] = *numbers;
    std::string iso = std::to_string(year);
    for (const auto& [separator, number] :
         {std::pair{'-', month}, {'-', day}, {'T', hour}, {':', minute}, {':', second}}) {
        iso += separator;
        AppendTwoDigits(iso, number);
    }
    return iso + 'Z';
}

double KilometresPerHour(double knots) {
    return knots * 1.852;
}

SatelliteSystem SystemOf(const GpsGlonassSatellite& satellite) {
    const auto within = [prn = satellite.PRN](int first, int last) { return prn >= first && prn <= last; };
    if (within(1, 32)) {
        return SatelliteSystem::kGps;
    }
    if (within(33, 64) || within(152, 158)) {
        return SatelliteSystem::kSbas;
    }
    if (within(65, 99)) {
        return SatelliteSystem::kGlonass;
    }
    if (within(193, 202)) {
        return SatelliteSystem::kQzss;
    }
    return SatelliteSystem::kOther;
}

const char* Name(SatelliteSystem system) {
    switch (system) {
        case SatelliteSystem::kGps:
            return "gps";
        case SatelliteSystem::kSbas:
            return "sbas";
        case SatelliteSystem::kGlonass:
            return "glonass";
        case SatelliteSystem::kQzss:
            return "qzss";
        case SatelliteSystem::kOther:
            break;
    }
    return "other";
}

const char* Name(FixMode mode) {
    switch (mode) {
        case FIX_MODE_NO_FIX:
            return "none";
        case FIX_MODE_2D:
            return "2d";
        case FIX_MODE_3D:
            return "3d";
        case FIX_MODE_UNKNOWN:
            break;
    }
    return "unknown";
}

const char* Name(FixSelection selection) {
    return selection == FIX_SELECTION_AUTOMATIC ? "automatic" : "manual";
}

const char* QualityName(int quality) {
    switch (quality) {
        case 0:
            return "none";
        case 1:
            return "gps";
        case 2:
            return "dgps";
        default:
            return "other";
    }
}

void ChangeTracker::See(GpsReading reading, Clock::time_point now) {
    if (seenAny_ && SameReading(reading, latest_)) {
        return;
    }
    latest_ = std::move(reading);
    changedAt_ = now;
    seenAny_ = true;
}

ChangeTracker::Clock::duration ChangeTracker::UnchangedFor(Clock::time_point now) const {
    return seenAny_ ? now - changedAt_ : Clock::duration::zero();
}

}  // namespace quarlin::qlctl
