// SPDX-License-Identifier: Apache-2.0
#include "gps/line_faults.h"

#include <string_view>

namespace quarlin::sim {
namespace {

// Another hexadecimal digit than this one.
char WrongDigit(char digit, Random& random) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const std::size_t value = kDigits.find(digit);
    return kDigits[(value + 1 + random.Below(15)) % kDigits.size()];
}

}  // namespace

std::string LineFaults::Send(std::string sentence) {
    if (rates_.badChecksum > 0 && random_.Chance(rates_.badChecksum) && !sentence.empty()) {
        sentence.back() = WrongDigit(sentence.back(), random_);
    }
    sentence += "\r\n";
    if (rates_.drop <= 0 && rates_.noise <= 0) {
        return sentence;
    }
    std::string arrived;
    for (const char sent : sentence) {
        if (rates_.noise > 0 && random_.Chance(rates_.noise)) {
            if (random_.Chance(0.5)) {
                arrived += static_cast<char>(random_.Below(256));
                arrived += sent;
            } else {
                arrived += static_cast<char>(static_cast<unsigned char>(sent) ^ (1u << random_.Below(8)));
            }
            continue;
        }
        if (rates_.drop > 0 && random_.Chance(rates_.drop)) {
            continue;
        }
        arrived += sent;
    }
    return arrived;
}

}  // namespace quarlin::sim
