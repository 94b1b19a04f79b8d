// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

namespace quarlin::qlctl {

// The user's wish to end: Ctrl-C, Ctrl-Break, the console closed. From construction on it no longer ends the process
// but is told by Wait. One per process.
class StopSignal {
  public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    // Waits for the wish, at most so long; true when it has come, now or earlier.
    bool Wait(std::chrono::milliseconds atMost) const;
    bool HasCome() const { return Wait(std::chrono::milliseconds(0)); }
};

}  // namespace quarlin::qlctl
