// SPDX-License-Identifier: Apache-2.0
#include "reference/reference_receiver.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace quarlin::reference {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMostUsed = 24;

// The line from behind its number-th comma on; null when it has fewer commas.
using Field = const char*;

Field From(const std::string& line, int number) {
    std::size_t start = 0;
    for (int i = 0; i < number; ++i) {
        const std::size_t comma = line.find(',', start);
        if (comma == std::string::npos) {
            return nullptr;
        }
        start = comma + 1;
    }
    return line.c_str() + start;
}

bool IsEmpty(Field field) {
    return *field == ',';
}

std::int32_t Integer(Field field) {
    const long long value = std::strtoll(field, nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long long>(value, kLowest, kHighest));
}

double Real(Field field) {
    // Cut to the part that is a number here: the C library would take exponents and other notations too.
    const Field start = field + std::strspn(field, " \t\n\v\f\r");
    Field end = start;
    if (*end == '+' || *end == '-') {
        ++end;
    }
    bool digits = false;
    bool point = false;
    for (;; ++end) {
        if (*end >= '0' && *end <= '9') {
            digits = true;
        } else if (*end == '.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    return digits ? std::strtod(std::string(start, end).c_str(), nullptr) : 0;
}

// Numbers that no receiver sends: held at the limits, and 0 for what is no number at all.
std::int32_t Held(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= static_cast<double>(kHighest)) {
        return kHighest;
    }
    if (value <= static_cast<double>(kLowest)) {
        return kLowest;
    }
    return static_cast<std::int32_t>(value);
}

double Degrees(double v) {
    const double degrees = std::trunc(v / 100);
    return degrees + (v - degrees * 100) / 60;
}

template <typename... Numbers>
std::string Printed(const char* format, Numbers... numbers) {
    char text[200];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text, sizeof text, format, numbers...);
#pragma GCC diagnostic pop
    return text;
}

}  // namespace

void Receiver::Take(const std::string& line) {
    const std::string type = line.substr(0, 6);
    if (type == "$GPGSV") {
        lastWasGsa = false;
        TakeGsv(line, gps);
    } else if (type == "$GLGSV") {
        lastWasGsa = false;
        TakeGsv(line, glonass);
    } else if (type == "$GPGGA" || type == "$GNGGA") {
        lastWasGsa = false;
        TakeGga(line);
    } else if (type == "$GPGSA" || type == "$GNGSA") {
        if (!lastWasGsa) {
            used.clear();
        }
        lastWasGsa = true;
        TakeGsa(line);
    } else if (type == "$GPRMC" || type == "$GNRMC") {
        TakeRmc(line);
    }
}

void Receiver::TakeGga(const std::string& line) {
    const Field time = From(line, 1);
    if (!time) {
        return;
    }
    if (!IsEmpty(time)) {
        const double t = Real(time);
        const double h = std::trunc(t / 10000);
        const double r = t - h * 10000;
        const double m = std::trunc(r / 100);
        const double s = std::trunc(r - m * 100);
        timeText = Printed("%d:%02d:%02d", Held(h), Held(m), Held(s));
    }
    const Field latitudeField = From(line, 2);
    if (!latitudeField || IsEmpty(latitudeField)) {
        return;
    }
    latitude = Degrees(Real(latitudeField));
    const Field south = From(line, 3);
    if (!south) {
        return;
    }
    if (*south == 'S') {
        latitude = -latitude;
    }
    const Field longitudeField = From(line, 4);
    if (!longitudeField || IsEmpty(longitudeField)) {
        return;
    }
    longitude = Degrees(Real(longitudeField));
    const Field west = From(line, 5);
    if (!west) {
        return;
    }
    if (*west == 'W') {
        longitude = -longitude;
    }
    const Field quality = From(line, 6);
    if (!quality || IsEmpty(quality)) {
        return;
    }
    fixQuality = Integer(quality);
    for (const int skipped : {7, 8}) {
        const Field field = From(line, skipped);
        if (!field || IsEmpty(field)) {
            return;
        }
    }
    const Field height = From(line, 9);
    if (!height || IsEmpty(height)) {
        return;
    }
    altitude = Real(height);
}

void Receiver::TakeGsa(const std::string& line) {
    if (used.size() == kMostUsed) {
        return;
    }
    const Field selection = From(line, 1);
    if (!selection) {
        return;
    }
    if (*selection == 'A') {
        fixSelection = 1;
    } else if (*selection == 'M') {
        fixSelection = 0;
    }
    const Field type = From(line, 2);
    if (!type) {
        return;
    }
    if (*type >= '1' && *type <= '3') {
        fixType = *type - '0';
    }
    for (int number = 3; number <= 14; ++number) {
        const Field field = From(line, number);
        if (!field) {
            return;
        }
        if (IsEmpty(field) || *field == '\0') {
            continue;
        }
        const std::int32_t prn = Integer(field);
        if (used.size() < kMostUsed && std::ranges::find(used, prn) == used.end()) {
            used.push_back(prn);
        }
    }
    double* const dilutions[] = {&pdop, &hdop, &vdop};
    for (int i = 0; i < 3; ++i) {
        const Field field = From(line, 15 + i);
        if (!field) {
            return;
        }
        *dilutions[i] = Real(field);
    }
}

void Receiver::TakeRmc(const std::string& line) {
    const Field speedField = From(line, 7);
    if (!speedField) {
        return;
    }
    speed = Real(speedField);
    const Field course = From(line, 8);
    if (!course) {
        return;
    }
    bearing = Real(course);
    const Field date = From(line, 9);
    if (!date || IsEmpty(date)) {
        return;
    }
    const std::int32_t d = Integer(date);
    dateText = Printed(" %02d/%02d/20%02d", d / 10000, d % 10000 / 100, d % 100);
}

void Receiver::Store(System& system, const GpsGlonassSatellite& satellite) {
    if (system.count >= system.capacity) {
        system.count = system.capacity + 1;
    } else {
        system.working.at(static_cast<std::size_t>(system.count)) = satellite;
        ++system.count;
    }
    inViewTotal = std::clamp(gps.count + glonass.count, 0, 150);
}

void Receiver::TakeGsv(const std::string& line, System& system) {
    const Field totalField = From(line, 1);
    const Field messageField = From(line, 2);
    const Field inViewField = From(line, 3);
    if (!totalField || !messageField || !inViewField) {
        return;
    }
    const std::int64_t total = Integer(totalField);
    const std::int64_t message = Integer(messageField);
    const std::int64_t inView = Integer(inViewField);

    if (message == 1) {
        system.count = 0;
    }
    if (&system == &gps) {
        --glonassCountdown;
    } else {
        glonassCountdown = 10;
    }
    if (system.cycleDone && message != 1) {
        system.count = 0;
    }
    system.cycleDone = false;
    if (message != std::int64_t{system.lastMessage} + 1) {
        const std::int64_t count = system.count + (message - system.lastMessage) * 4 - 4;
        system.count = static_cast<std::int32_t>(std::clamp<std::int64_t>(count, 0, kHighest));
    }
    system.lastMessage = static_cast<std::int32_t>(message);

    const std::int64_t sum = std::int64_t{gps.count} + glonass.count;
    if (sum >= 150) {
        inViewTotal = 150;
        return;
    }
    inViewTotal = static_cast<std::int32_t>(sum);

    for (int i = 0; i < 4 && 4 * (message - 1) + i < inView; ++i) {
        const int first = 4 + 4 * i;
        const Field prn = From(line, first);
        if (!prn) {
            return;
        }
        if (IsEmpty(prn) || *prn == '\0') {
            Store(system, {-1, 0, 0, 0, 0});
            if (!From(line, first + 3)) {
                return;
            }
            continue;
        }
        const Field elevation = From(line, first + 1);
        const Field azimuth = From(line, first + 2);
        const Field snr = From(line, first + 3);
        if (!elevation || !azimuth || !snr) {
            return;
        }
        const std::int32_t number = Integer(prn);
        const bool isUsed = std::ranges::find(used, number) != used.end();
        Store(system, {number, Integer(elevation), Integer(azimuth), Integer(snr), isUsed ? 1 : 0});
    }

    if (total < message) {
        return;
    }
    system.cycleDone = true;
    system.lastMessage = 0;
    if (glonassCountdown <= 0) {
        glonassCountdown = 0;
        glonass.count = 0;
        inViewTotal = gps.count;
    }
    publishedTotal = inViewTotal;
    for (System* each : {&gps, &glonass}) {
        each->publishedCount = each->count;
        const auto copied = std::min(each->count, each->capacity);
        std::copy_n(each->working.begin(), copied, each->published.begin());
    }
}

std::string Receiver::TimeStamp() const {
    return (timeText + dateText).substr(0, 79);
}

std::int32_t Receiver::MappedFixQuality() const {
    return fixQuality >= 0 && fixQuality <= 2 ? fixQuality : 3;
}

std::vector<GpsGlonassSatellite> Receiver::Satellites() const {
    std::vector<GpsGlonassSatellite> all;
    for (const System* each : {&gps, &glonass}) {
        const auto copied = std::min(each->publishedCount, each->capacity);
        all.insert(all.end(), each->published.begin(), each->published.begin() + copied);
    }
    return all;
}

std::vector<std::string> SplitLines(const std::vector<unsigned char>& bytes) {
    std::vector<std::string> lines;
    std::string kept;
    bool bad = false;
    for (const unsigned char byte : bytes) {
        if (byte == '\n') {
            // Every 1024 characters the reader starts over at the front of its buffer.
            lines.push_back(bad ? "\n" : kept.substr(kept.size() - kept.size() % 1024));
            kept.clear();
            bad = false;
        } else if (byte == '\r') {
            continue;
        } else if (byte < 32 || byte > 125) {
            bad = true;
        } else {
            kept.push_back(static_cast<char>(byte));
        }
    }
    return lines;
}

}  // namespace quarlin::reference
