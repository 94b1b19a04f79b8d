// SPDX-License-Identifier: Apache-2.0
#include "comparison.h"

#include "core/quarlin_exception.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace quarlin::fuzz {
namespace {

template <typename Got, typename Expected>
[[noreturn]] void Fail(const char* what, const Got& got, const Expected& expected) {
    std::cerr.precision(17);
    std::cerr << what << ": got " << got << ", expected " << expected << '\n';
    std::abort();
}

void Check(const char* what, std::integral auto got, std::integral auto expected) {
    if (std::int64_t{got} != std::int64_t{expected}) {
        Fail(what, got, expected);
    }
}

// To the last bit, zero's sign included.
void Check(const char* what, double got, double expected) {
    const bool same = std::bit_cast<std::uint64_t>(got) == std::bit_cast<std::uint64_t>(expected);
    if (!same && !(std::isnan(got) && std::isnan(expected))) {
        Fail(what, got, expected);
    }
}

void Check(const char* what, const std::string& got, const std::string& expected) {
    if (got != expected) {
        Fail(what, got, expected);
    }
}

template <std::size_t Size>
void CheckText(const char* what, const std::array<char, Size>& got, const std::string& expected) {
    if (std::ranges::find(got, '\0') == got.end()) {
        Fail(what, "a text without terminator", expected);
    }
    Check(what, std::string(got.data()), expected);
}

void CheckRange(const char* what, std::int64_t value, std::int64_t lowest, std::int64_t highest) {
    if (value < lowest || value > highest) {
        Fail(what, value, "a value within the limits");
    }
}

constexpr GpsGlonassSatellite kCanary{0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A};

bool IsSame(const GpsGlonassSatellite& a, const GpsGlonassSatellite& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// The capacity is just enough, and a canary lies behind it.
void CheckSatellites(const gps::FixState& fix, const reference::Receiver& expected) {
    const std::vector<GpsGlonassSatellite> satellites = expected.Satellites();
    const auto capacity = static_cast<std::size_t>(expected.publishedTotal);
    const std::size_t room = std::max(capacity, satellites.size());
    std::vector<GpsGlonassSatellite> records(room + 1, kCanary);
    fix.CopySatellites(records.data(), expected.publishedTotal);
    if (satellites.size() > capacity) {
        Fail("satellites published", satellites.size(), capacity);
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!IsSame(records[i], i < satellites.size() ? satellites[i] : kCanary)) {
            Fail("satellite record", i, "the reference's record, or none");
        }
    }
}

template <typename Table>
void CheckTable(const Table& table, const reference::System& expected) {
    CheckRange("count", table.Count(), 0, INT32_MAX);
    Check("count", table.Count(), expected.count);
    Check("published count", table.PublishedCount(), expected.publishedCount);
}

}  // namespace

void CheckState(const gps::FixState& fix, const reference::Receiver& expected) {
    CheckRange("in view", fix.inViewTotal, 0, 150);
    CheckRange("published total", fix.publishedTotal, 0, 150);
    CheckRange("used count", fix.used.Count(), 0, 24);
    CheckRange("fix type", fix.fixType, 0, 3);
    CheckRange("fix selection", fix.fixSelection, 0, 1);
    CheckRange("mapped fix quality", fix.MappedFixQuality(), 0, 3);
    CheckRange("GLONASS countdown", fix.glonassCountdown, 0, 10);

    Check("in view", fix.inViewTotal, expected.inViewTotal);
    Check("published total", fix.publishedTotal, expected.publishedTotal);
    // Below 0 it means what 0 means.
    Check("GLONASS countdown", fix.glonassCountdown, std::max(expected.glonassCountdown, 0));
    CheckTable(fix.gps, expected.gps);
    CheckTable(fix.glonass, expected.glonass);
    CheckSatellites(fix, expected);

    Check("last was GSA", fix.lastWasGsa, expected.lastWasGsa);
    Check("used count", fix.used.Count(), static_cast<std::int64_t>(expected.used.size()));
    for (const std::int32_t prn : expected.used) {
        if (!fix.used.Contains(prn)) {
            Fail("used satellites", "not there", prn);
        }
    }

    Check("latitude", fix.latitude, expected.latitude);
    Check("longitude", fix.longitude, expected.longitude);
    Check("altitude", fix.altitude, expected.altitude);
    Check("HDOP", fix.hdop, expected.hdop);
    Check("VDOP", fix.vdop, expected.vdop);
    Check("PDOP", fix.pdop, expected.pdop);
    Check("speed", fix.speed, expected.speed);
    Check("bearing", fix.bearing, expected.bearing);
    CheckText("time", fix.timeText, expected.timeText);
    CheckText("date", fix.dateText, expected.dateText);
    Check("time stamp", fix.TimeStamp(), expected.TimeStamp());
    Check("fix quality", fix.fixQuality, expected.fixQuality);
    Check("mapped fix quality", fix.MappedFixQuality(), expected.MappedFixQuality());
    Check("fix type", fix.fixType, expected.fixType);
    Check("fix selection", fix.fixSelection, expected.fixSelection);
}

void CheckRefusedCopy(const gps::FixState& fix) {
    if (fix.publishedTotal == 0) {
        return;
    }
    std::vector<GpsGlonassSatellite> records(static_cast<std::size_t>(fix.publishedTotal), kCanary);
    try {
        fix.CopySatellites(records.data(), fix.publishedTotal - 1);
        Fail("a capacity that is too small", "success", "a failure");
    } catch (const QuarlinException& failure) {
        Check("code of a capacity that is too small", std::int32_t{failure.code}, std::int32_t{QLERR_BUFFER_OVERFLOW});
    }
    if (!std::ranges::all_of(records, [](const auto& record) { return IsSame(record, kCanary); })) {
        Fail("records after a refused copy", "written", "untouched");
    }
}

void CheckLine(const char* line, const std::string& expected) {
    Check("line", std::string(line), expected);
}

}  // namespace quarlin::fuzz
