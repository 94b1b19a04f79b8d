// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "quarlin/gps.h"

#include <chrono>
#include <string>
#include <vector>

namespace quarlin::qlctl {

// What the receiver says at one moment: every value that the GPS family gives, in its units.
struct GpsReading {
    // As the library gives it: "9:27:50 19/11/2094", either half may be missing.
    std::string timeStamp;
    // Decimal degrees, south and west negative.
    double latitude = 0;
    double longitude = 0;
    // Metres above mean sea level.
    double altitude = 0;
    double speedKnots = 0;
    // Degrees from true north.
    double course = 0;
    double hdop = 0;
    double vdop = 0;
    double pdop = 0;
    FixMode fixMode = FIX_MODE_UNKNOWN;
    FixSelection fixSelection = FIX_SELECTION_MANUAL;
    // 0 none, 1 GPS, 2 differential GPS, 3 other.
    int fixQuality = 0;
    bool hasFix = false;
    int satellitesInView = 0;
    int satellitesUsed = 0;
    std::vector<GpsGlonassSatellite> satellites;
};

bool SameReading(const GpsReading& a, const GpsReading& b);

// Whether each kind of sentence has come at least once: time, date, fix and satellites are there.
bool IsComplete(const GpsReading& reading);

// The time stamp as "2094-11-19T09:27:50Z"; empty while the time or the date is missing.
std::string IsoTime(const GpsReading& reading);

double KilometresPerHour(double knots);

enum class SatelliteSystem {
    kGps,
    kSbas,
    kGlonass,
    kQzss,
    kOther,
};

// The library does not say where the GPS records end and the GLONASS records begin; NMEA's numbering does.
SatelliteSystem SystemOf(const GpsGlonassSatellite& satellite);

// Short names, also used in JSON: "gps", "3d", "automatic", "dgps".
const char* Name(SatelliteSystem system);
const char* Name(FixMode mode);
const char* Name(FixSelection selection);
const char* QualityName(int quality);

// Sees readings come and tells for how long nothing has changed. A receiver sends its sentences in bursts: a reading
// taken while a burst runs holds half a table of satellites, one taken in the pause after it is whole.
class ChangeTracker {
  public:
    using Clock = std::chrono::steady_clock;

    void See(GpsReading reading, Clock::time_point now);
    Clock::duration UnchangedFor(Clock::time_point now) const;
    const GpsReading& Latest() const { return latest_; }

  private:
    GpsReading latest_;
    Clock::time_point changedAt_{};
    bool seenAny_ = false;
};

}  // namespace quarlin::qlctl
