// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/gps_reading.h"

namespace quarlin::qlctl {

// Nothing new for so long means that the receiver's burst of sentences is over.
inline constexpr std::chrono::milliseconds kPause{180};

// Says when the next reading is to be taken: in the first pause from its time on, or a little later on a line that
// does not pause. The times are an interval apart, counted from the first reading, so that waiting for pauses does not
// add up.
class ReadingPace {
  public:
    using Clock = ChangeTracker::Clock;

    ReadingPace(Clock::duration interval, Clock::time_point firstReading);

    // From here on somebody has to look at the receiver to know at the reading's time whether it pauses.
    Clock::time_point LookFrom() const;
    bool IsTime(Clock::time_point now, Clock::duration unchangedFor) const;
    // Times that have passed meanwhile are left out: nobody wants readings in a heap after the output was held up.
    void Taken(Clock::time_point now);

  private:
    Clock::duration interval_;
    Clock::time_point due_;
};

}  // namespace quarlin::qlctl
