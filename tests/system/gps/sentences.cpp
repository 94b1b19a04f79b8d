// SPDX-License-Identifier: Apache-2.0
#include "gps/sentences.h"

#include <array>
#include <cstdio>

namespace quarlin::test {

std::string Sentence(std::string_view text) {
    unsigned checksum = 0;
    std::string sentence = "$";
    for (const char character : text) {
        checksum ^= static_cast<unsigned char>(character);
        sentence += character;
    }
    std::array<char, 8> tail{};
    std::snprintf(tail.data(), tail.size(), "*%02X\r\n", checksum);
    return sentence += tail.data();
}

std::string SpeedOnly(double speed) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "GPRMC,,,,,,,%.3f", speed);
    return Sentence(text.data());
}

std::string FullReport() {
    return Sentence("GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,") +
           Sentence("GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38") +
           Sentence("GPGSV,2,1,06,10,63,137,17,07,61,098,15,05,59,290,20,08,54,157,30") +
           Sentence("GPGSV,2,2,06,02,39,223,19,13,28,070,17") + Sentence("GLGSV,1,1,02,65,40,157,19,,,,") +
           Sentence("GPRMC,092750.000,A,5321.6802,N,00630.3372,W,0.5,54.7,191194,,,A");
}

}  // namespace quarlin::test
