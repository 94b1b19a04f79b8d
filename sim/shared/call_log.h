// SPDX-License-Identifier: Apache-2.0
// The calls that a stand-in library received, in a record that several processes share.
#pragma once

#include <cstdint>

namespace quarlin::sim {

struct LoggedCall {
    std::uint32_t function;  // its place in the library's list of functions
    std::uint32_t process;
    std::int64_t arguments[3];
    std::int32_t status;  // what was answered
    std::uint32_t reserved;
};

struct CallLog {
    static constexpr std::uint64_t kRoom = 256;

    std::uint64_t count;      // all calls since the log was cleared
    LoggedCall calls[kRoom];  // the last ones: call n is at n modulo kRoom

    void Add(const LoggedCall& call) { calls[count++ % kRoom] = call; }
    void Clear() { count = 0; }
    std::uint64_t First() const { return count < kRoom ? 0 : count - kRoom; }
    const LoggedCall& At(std::uint64_t number) const { return calls[number % kRoom]; }
};

}  // namespace quarlin::sim
