// SPDX-License-Identifier: Apache-2.0
#include "gps/nmea.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace quarlin::sim {
namespace {

constexpr double kKnots = 3600.0 / 1852.0;  // knots in one metre per second
constexpr double kKmh = 3.6;                // kilometres per hour in one metre per second
constexpr double kGeoidHeight = 43.5;       // metres; one value for everywhere, nobody computes with it
constexpr std::size_t kGsaSlots = 12;
constexpr std::size_t kGsvBlocks = 4;

std::string Fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string Digits(long long value, int width) {
    char text[32];
    std::snprintf(text, sizeof text, "%0*lld", width, value);
    return text;
}

// hhmmss.sss
std::string TimeField(const Epoch& epoch) {
    if (!epoch.utc) {
        return {};
    }
    constexpr std::int64_t kDay = 86400000;
    const std::int64_t inDay = ((*epoch.utc % kDay) + kDay) % kDay;
    return Digits(inDay / 3600000, 2) + Digits(inDay / 60000 % 60, 2) + Digits(inDay / 1000 % 60, 2) + "." +
           Digits(inDay % 1000, 3);
}

// ddmmyy
std::string DateField(const Epoch& epoch) {
    if (!epoch.utc) {
        return {};
    }
    const std::chrono::sys_time<std::chrono::milliseconds> time{std::chrono::milliseconds{*epoch.utc}};
    const std::chrono::year_month_day date{std::chrono::floor<std::chrono::days>(time)};
    return Digits(static_cast<unsigned>(date.day()), 2) + Digits(static_cast<unsigned>(date.month()), 2) +
           Digits(static_cast<int>(date.year()) % 100, 2);
}

// dddmm.mmmm and the hemisphere. Rounded as a whole number of ten-thousandths of a minute first, so that the minutes
// never read 60.
std::string AngleField(double degrees, int degreeDigits, char positive, char negative) {
    const long long units = std::llround(std::abs(degrees) * 60 * 10000);
    const long long minutes = units % 600000;
    return Digits(units / 600000, degreeDigits) + Digits(minutes / 10000, 2) + "." + Digits(minutes % 10000, 4) + "," +
           (degrees < 0 ? negative : positive);
}

std::string PositionFields(const Epoch& epoch) {
    if (epoch.fix == Fix::kNone) {
        return ",,,";
    }
    return AngleField(epoch.position.latitude, 2, 'N', 'S') + "," + AngleField(epoch.position.longitude, 3, 'E', 'W');
}

std::vector<std::string> Gsv(const Epoch& epoch, SatelliteSystem system) {
    std::vector<const ReceivedSatellite*> inView;
    for (const ReceivedSatellite& satellite : epoch.satellites) {
        if (satellite.sky.system == system) {
            inView.push_back(&satellite);
        }
    }
    const std::string name = system == SatelliteSystem::kGps ? "GPGSV," : "GLGSV,";
    const std::size_t messages = std::max<std::size_t>(1, (inView.size() + kGsvBlocks - 1) / kGsvBlocks);
    std::vector<std::string> cycle;
    for (std::size_t message = 0; message < messages; ++message) {
        std::string body = name + std::to_string(messages) + "," + std::to_string(message + 1) + "," +
                           Digits(static_cast<long long>(inView.size()), 2);
        const std::size_t end = std::min(inView.size(), (message + 1) * kGsvBlocks);
        for (std::size_t i = message * kGsvBlocks; i < end; ++i) {
            const ReceivedSatellite& satellite = *inView[i];
            body += "," + Digits(satellite.sky.number, 2) + "," + Digits(std::lround(satellite.sky.elevation), 2) +
                    "," + Digits(std::lround(satellite.sky.azimuth) % 360, 3) + "," +
                    (satellite.snr ? Digits(*satellite.snr, 2) : std::string());
        }
        cycle.push_back(Framed(body));
    }
    return cycle;
}

}  // namespace

std::string Framed(std::string_view body) {
    unsigned sum = 0;
    for (const char c : body) {
        sum ^= static_cast<unsigned char>(c);
    }
    char tail[8];
    std::snprintf(tail, sizeof tail, "*%02X", sum);
    return "$" + std::string(body) + tail;
}

std::vector<std::string> SentenceWriter::Write(const Epoch& epoch) {
    const bool withGsv = epochs_++ % settings_.gsvEvery == 0;
    std::vector<std::string> sentences;
    for (const Sentence kind : settings_.order) {
        switch (kind) {
            case Sentence::kGga:
                sentences.push_back(Gga(epoch));
                break;
            case Sentence::kGsa:
                sentences.push_back(Gsa(epoch, SatelliteSystem::kGps));
                if (settings_.glonass) {
                    sentences.push_back(Gsa(epoch, SatelliteSystem::kGlonass));
                }
                break;
            case Sentence::kGsv:
                if (withGsv) {
                    for (std::string& sentence : Gsv(epoch, SatelliteSystem::kGps)) {
                        sentences.push_back(std::move(sentence));
                    }
                    for (std::string& sentence :
                         settings_.glonass ? Gsv(epoch, SatelliteSystem::kGlonass) : std::vector<std::string>()) {
                        sentences.push_back(std::move(sentence));
                    }
                }
                break;
            case Sentence::kRmc:
                sentences.push_back(Rmc(epoch));
                break;
            case Sentence::kVtg:
                sentences.push_back(Vtg(epoch));
                break;
        }
    }
    return sentences;
}

// $GNGGA,083000.000,4812.4920,N,01622.4280,E,1,09,0.92,171.0,M,43.5,M,,*hh
std::string SentenceWriter::Gga(const Epoch& epoch) const {
    std::string body = settings_.talker + "GGA," + TimeField(epoch) + "," + PositionFields(epoch);
    if (epoch.fix == Fix::kNone) {
        return Framed(body + ",0,00,,,M,,M,,");
    }
    long long used = 0;
    for (const ReceivedSatellite& satellite : epoch.satellites) {
        used += satellite.used ? 1 : 0;
    }
    return Framed(body + ",1," + Digits(used, 2) + "," + Fixed(epoch.dilution.horizontal, 2) + "," +
                  Fixed(epoch.altitude, 1) + ",M," + Fixed(kGeoidHeight, 1) + ",M,,");
}

// $GNGSA,A,3,02,05,07,,,,,,,,,,1.62,0.92,1.33*hh
std::string SentenceWriter::Gsa(const Epoch& epoch, SatelliteSystem system) const {
    std::string body = settings_.talker + "GSA,A," + std::to_string(static_cast<int>(epoch.fix));
    std::size_t slots = 0;
    for (const ReceivedSatellite& satellite : epoch.satellites) {
        if (satellite.used && satellite.sky.system == system && slots < kGsaSlots) {
            body += "," + Digits(satellite.sky.number, 2);
            ++slots;
        }
    }
    body.append(kGsaSlots - slots, ',');
    if (epoch.fix == Fix::kNone) {
        return Framed(body + ",,,");
    }
    return Framed(body + "," + Fixed(epoch.dilution.position, 2) + "," + Fixed(epoch.dilution.horizontal, 2) + "," +
                  Fixed(epoch.dilution.vertical, 2));
}

// $GNRMC,083000.000,A,4812.4920,N,01622.4280,E,26.99,90.00,120526,,,A*hh
std::string SentenceWriter::Rmc(const Epoch& epoch) const {
    const bool valid = epoch.fix != Fix::kNone;
    std::string body = settings_.talker + "RMC," + TimeField(epoch) + (valid ? ",A," : ",V,") + PositionFields(epoch);
    body += valid ? "," + Fixed(epoch.speed * kKnots, 2) + "," + Fixed(epoch.course, 2) : std::string(",,");
    return Framed(body + "," + DateField(epoch) + ",,," + (valid ? "A" : "N"));
}

// $GNVTG,90.00,T,,M,26.99,N,49.99,K,A*hh
std::string SentenceWriter::Vtg(const Epoch& epoch) const {
    const std::string body = settings_.talker + "VTG,";
    if (epoch.fix == Fix::kNone) {
        return Framed(body + ",T,,M,,N,,K,N");
    }
    return Framed(body + Fixed(epoch.course, 2) + ",T,,M," + Fixed(epoch.speed * kKnots, 2) + ",N," +
                  Fixed(epoch.speed * kKmh, 2) + ",K,A");
}

}  // namespace quarlin::sim
