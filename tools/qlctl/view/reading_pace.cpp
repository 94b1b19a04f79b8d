// SPDX-License-Identifier: Apache-2.0
#include "view/reading_pace.h"

#include <algorithm>

namespace quarlin::qlctl {
namespace {

using std::chrono::milliseconds;

// The pause, and a look or two to see it begin.
constexpr milliseconds kLookAhead{250};
constexpr milliseconds kLongestPatience{400};

}  // namespace

ReadingPace::ReadingPace(Clock::duration interval, Clock::time_point firstReading)
    : interval_(interval), due_(firstReading + interval) {
}

ReadingPace::Clock::time_point ReadingPace::LookFrom() const {
    return due_ - kLookAhead;
}

bool ReadingPace::IsTime(Clock::time_point now, Clock::duration unchangedFor) const {
    if (now < due_) {
        return false;
    }
    // Shorter than the interval, so that a line without pauses misses no reading.
    const Clock::duration patience = std::min<Clock::duration>(kLongestPatience, interval_ * 4 / 5);
    return unchangedFor >= kPause || now - due_ >= patience;
}

void ReadingPace::Taken(Clock::time_point now) {
    const auto missed = (now - due_) / interval_;
    due_ += interval_ * (missed + 1);
}

}  // namespace quarlin::qlctl
