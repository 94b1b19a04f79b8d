// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

namespace quarlin::sim {

// How the simulation's seconds follow the clock on the wall.
class Pace {
  public:
    using Clock = std::chrono::steady_clock;

    // speedFactor: seconds of simulation in one real second; 0 means that nothing waits.
    Pace(Clock::time_point start, double speedFactor) : start_(start), speedFactor_(speedFactor) {}

    bool Waits() const { return speedFactor_ > 0; }
    Clock::time_point MomentOf(double seconds) const {
        return start_ +
               std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds / speedFactor_));
    }
    double SecondsAt(Clock::time_point moment) const {
        return std::chrono::duration<double>(moment - start_).count() * speedFactor_;
    }

  private:
    Clock::time_point start_;
    double speedFactor_;
};

}  // namespace quarlin::sim
