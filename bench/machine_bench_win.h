// SPDX-License-Identifier: Apache-2.0
// What the benchmarks on the simulated machine share.
#pragma once

#include <windows.h>

#include "measure.h"

#include <cstddef>
#include <cstdint>

namespace quarlin::bench {

// Counts events on one thread, and lets another wait until there are enough of them.
class Arrivals {
  public:
    void Add();
    std::uint64_t Count() const;
    // Throws std::runtime_error when they do not come within half a minute.
    void WaitFor(std::uint64_t count);

  private:
    mutable SRWLOCK lock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE added_ = CONDITION_VARIABLE_INIT;
    std::uint64_t count_ = 0;
};

std::int64_t Now();  // in ticks
double MicrosecondsOf(std::int64_t ticks);

// What this process holds: must not grow in a long run.
struct Holdings {
    std::size_t handles = 0;
    std::size_t workingSetKb = 0;
};
Holdings HoldingsNow();

// Held while this machine's readers are ours: tests use the same name.
class Turn {
  public:
    explicit Turn(const wchar_t* mutexName);
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();

  private:
    HANDLE mutex_;
};

// Throws std::runtime_error with the library's own words when a call has failed.
void Check(std::int32_t code, const char* call);

}  // namespace quarlin::bench
