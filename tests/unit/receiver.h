// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "gps/fix_state.h"
#include "gps/nmea_parser.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

inline bool operator==(const GpsGlonassSatellite& a, const GpsGlonassSatellite& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline std::ostream& operator<<(std::ostream& stream, const GpsGlonassSatellite& s) {
    return stream << '{' << s.PRN << ' ' << s.Elevation << ' ' << s.Azimuth << ' ' << s.SNR << ' ' << s.used << '}';
}

namespace quarlin::test {

using Satellites = std::vector<GpsGlonassSatellite>;

// A fix state that takes sentences.
struct Receiver {
    gps::FixState fix;

    void Take(const std::string& sentence) { gps::ParseSentence(fix, sentence.c_str()); }

    void Take(std::initializer_list<const char*> sentences) {
        for (const char* const sentence : sentences) {
            Take(std::string(sentence));
        }
    }

    std::string Time() const { return fix.timeText.data(); }
    std::string Date() const { return fix.dateText.data(); }

    // The published satellites: as many records as were written into a buffer of the largest size.
    Satellites Published() const {
        constexpr GpsGlonassSatellite kUntouched{-77, -77, -77, -77, -77};
        Satellites records(gps::kInViewLimit, kUntouched);
        fix.CopySatellites(records.data(), gps::kInViewLimit);
        while (!records.empty() && records.back() == kUntouched) {
            records.pop_back();
        }
        return records;
    }
};

// "$GPGSV,3,2,11,5,1,2,3,6,1,2,3,...": blocks of successive satellites with fixed values.
inline std::string Gsv(const char* talker, int messages, int message, int inView, int firstPrn, int blocks) {
    std::string line = std::string("$") + talker + "GSV," + std::to_string(messages) + ',' + std::to_string(message) +
                       ',' + std::to_string(inView);
    for (int i = 0; i < blocks; ++i) {
        line += ',' + std::to_string(firstPrn + i) + ",10,20,30";
    }
    return line + "*00";
}

// All messages of a cycle for satellites firstPrn and on.
inline void TakeCycle(Receiver& receiver, const char* talker, int inView, int firstPrn) {
    const int messages = (inView + 3) / 4;
    for (int message = 1; message <= messages; ++message) {
        const int done = 4 * (message - 1);
        receiver.Take(Gsv(talker, messages, message, inView, firstPrn + done, std::min(4, inView - done)));
    }
}

}  // namespace quarlin::test
