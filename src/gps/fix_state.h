// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "gps/date_time_text.h"
#include "gps/satellite_table.h"
#include "gps/used_satellites.h"

#include <quarlin/gps.h>

#include <cstdint>
#include <string>

namespace quarlin::gps {

// What the receiver has told: the latest value of everything, zero or empty until it was sent. Whoever shares it
// between threads locks it for a whole sentence and for each read.
struct FixState {
    std::int32_t inViewTotal = 0;
    SatelliteTable<kGpsCapacity> gps;
    SatelliteTable<kGlonassCapacity> glonass;
    std::int32_t publishedTotal = 0;
    // GPS sentences that may still come before GLONASS counts as absent.
    std::int32_t glonassCountdown = 0;

    // Whether the sentences since the last one of another kind are GSA: their satellites belong to one list.
    bool lastWasGsa = false;
    UsedSatellites used;

    double latitude = 0;   // decimal degrees, south negative
    double longitude = 0;  // decimal degrees, west negative
    double altitude = 0;   // metres above mean sea level
    double hdop = 0;
    double vdop = 0;
    double pdop = 0;
    double speed = 0;    // knots
    double bearing = 0;  // degrees
    DateTimeText timeText{};
    DateTimeText dateText{};
    std::int32_t fixQuality = 0;
    std::int32_t fixType = 0;
    std::int32_t fixSelection = 0;

    // Time, and date behind it.
    std::string TimeStamp() const;

    // 0, 1 and 2 as they are, 3 for every other quality.
    std::int32_t MappedFixQuality() const;

    // The published GPS satellites, then the GLONASS ones. Raises QuarlinException for a null pointer and for a
    // capacity below the published total, and then writes nothing.
    void CopySatellites(GpsGlonassSatellite* records, std::int32_t capacity) const;
};

}  // namespace quarlin::gps
