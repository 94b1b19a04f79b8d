// SPDX-License-Identifier: Apache-2.0
#include "nmea_feed_win.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

// Longer than the pause that qlctl looks for.
constexpr DWORD kBurstEveryMs = 300;

std::string Burst(const std::vector<std::string>& sentences) {
    std::string burst;
    for (const std::string& sentence : sentences) {
        burst += sentence + "\r\n";
    }
    return burst;
}

}  // namespace

NmeaFeed::NmeaFeed(const std::vector<std::string>& sentences)
    : stop_(CreateEventW(nullptr, TRUE, FALSE, nullptr)), burst_(Burst(sentences)) {
    const HANDLE port = CreateFileW(L"COM4", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(port, INVALID_HANDLE_VALUE) << GetLastError();
    port_.reset(port);
    thread_ = std::thread(&NmeaFeed::Send, this);
}

NmeaFeed::~NmeaFeed() {
    SetEvent(stop_.get());
    thread_.join();
}

void NmeaFeed::Change(const std::vector<std::string>& sentences) {
    const std::lock_guard lock(mutex_);
    burst_ = Burst(sentences);
}

void NmeaFeed::Send() {
    do {
        const std::lock_guard lock(mutex_);
        DWORD written = 0;
        WriteFile(port_.get(), burst_.data(), static_cast<DWORD>(burst_.size()), &written, nullptr);
    } while (WaitForSingleObject(stop_.get(), kBurstEveryMs) == WAIT_TIMEOUT);
}

std::vector<std::string> SampleBurst() {
    return {
        "$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,08,1.03,61.7,M,55.2,M,,*46",
        "$GPGSA,A,3,10,07,05,02,29,04,08,71,,,,,1.72,1.03,1.38*08",
        "$GPGSV,3,1,11,10,63,137,17,07,61,098,15,05,59,290,20,08,54,157,30*70",
        "$GPGSV,3,2,11,02,39,223,19,13,28,070,17,26,23,252,,04,14,186,14*79",
        "$GPGSV,3,3,11,29,09,301,24,16,09,020,,36,,,*76",
        "$GLGSV,1,1,02,71,42,300,25,72,10,040,33*66",
        "$GPRMC,092750.000,A,5321.6802,N,00630.3372,W,10.0,54.7,191126,,,A*4C",
    };
}

std::vector<std::string> ColdBurst() {
    return {"$GPGGA,,,,,,0,00,,,M,,M,,*66", "$GPGSA,A,1,,,,,,,,,,,,,,,*1E", "$GPRMC,,V,,,,,,,,,,N*53"};
}

}  // namespace quarlin::qlctl
