// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "msr/swipe_report.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace quarlin::test {

// Exactly as long as a report, on the heap: a byte read beside it is noticed.
using CardReport = std::vector<std::uint8_t>;

inline CardReport EmptyReport() {
    return CardReport(888);
}

// Each stretch of it differs from every other stretch, so that a field taken from a wrong place is seen.
inline CardReport NumberedReport() {
    CardReport report = EmptyReport();
    for (std::size_t at = 0; at < report.size(); ++at) {
        report[at] = static_cast<std::uint8_t>(at * 7 + at / 256 * 3);
    }
    return report;
}

inline void Put(CardReport& report, std::size_t at, std::string_view text) {
    for (const char c : text) {
        report.at(at++) = static_cast<std::uint8_t>(c);
    }
}

// A bank card, read without a fault.
inline CardReport GoodReport() {
    constexpr std::string_view kTrack1 = "%B4111111111111111^MUSTERMANN/ERIKA^29101010000000000?";
    constexpr std::string_view kTrack2 = ";4111111111111111=29101010000000000?";
    constexpr std::string_view kTrack3 = "+1234567890?";
    CardReport report = EmptyReport();
    for (const std::size_t length : {4, 506}) {
        report[length] = kTrack1.size();
        report[length + 1] = kTrack2.size();
        report[length + 2] = kTrack3.size();
    }
    Put(report, 8, kTrack1);
    Put(report, 120, kTrack2);
    Put(report, 232, kTrack3);
    Put(report, 509, "%B4111000000001111^MUSTERMANN/ERIKA^2910000000000000?");
    Put(report, 621, ";4111000000001111=2910000000000000?");
    Put(report, 733, "+0000000000?");
    return report;
}

inline msr::SwipeRecord Parse(const CardReport& report) {
    return msr::SwipeRecord(std::span<const std::uint8_t, 888>(report.data(), report.size()));
}

}  // namespace quarlin::test
