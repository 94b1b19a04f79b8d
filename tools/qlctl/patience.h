// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "failure.h"

#include <chrono>
#include <functional>

namespace quarlin::qlctl {

// Waits for calls of the library that have no end of their own: each runs on a thread, and is left behind when it
// takes too long or the user wants to stop.
//
// With a time-out, a command has that long for everything; a call that begins near its end still gets a second, so that
// a reader that answers is not taken for a dead one. Without, each call has kUsualLimit.
class Patience {
  public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds kUsualLimit{10};

    // The time begins now. wantsToStop is asked now and then.
    Patience(std::optional<Clock::duration> timeout, std::function<bool()> wantsToStop);

    // Runs the call to its end; what it throws is thrown here. Throws an AbandonedCall when it takes too long: the call
    // then goes on behind the caller's back and must have all that it uses in its own captures.
    void Await(std::function<void()> call) const;

    // Whether something that began then has lasted too long.
    bool IsExhausted(Clock::time_point begin) const { return Clock::now() >= LimitOf(begin); }
    // The end of the command's time, when there is one.
    std::optional<Clock::time_point> End() const { return end_; }
    bool WantsToStop() const { return wantsToStop_(); }
    // "10.0 s": what the user has to be told that nothing came within.
    std::string Span() const;

  private:
    Clock::time_point LimitOf(Clock::time_point begin) const;

    std::optional<Clock::duration> timeout_;
    std::optional<Clock::time_point> end_;
    std::function<bool()> wantsToStop_;
};

}  // namespace quarlin::qlctl
