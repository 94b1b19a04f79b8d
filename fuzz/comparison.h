// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "gps/fix_state.h"
#include "reference/reference_receiver.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quarlin::fuzz {

// Each of these prints what is wrong and ends the process with abort, which the fuzzer takes for a finding.

// The product's state holds what it promises, and every value of it is that of the reference.
void CheckState(const gps::FixState& fix, const reference::Receiver& expected);

// A buffer that is one record too small is refused and stays as it was.
void CheckRefusedCopy(const gps::FixState& fix);

// A line as the product's line reader gave it.
void CheckLine(const char* line, const std::string& expected);

inline std::vector<unsigned char> Bytes(const std::uint8_t* data, std::size_t size) {
    return {data, data + size};
}

}  // namespace quarlin::fuzz
