// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace quarlin::device {

// Raises the failure that a status of the device-check library stands for; 0 and 1 are successes.
void RequireProbeSuccess(std::int32_t status);

// The failure of a status that is none of the known ones, and of an answer that makes no sense.
[[noreturn]] void FailUnknownProbeError();

}  // namespace quarlin::device
