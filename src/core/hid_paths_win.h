// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace quarlin {

// Appends the path of every HID interface that is present, as the system gives it and at most that many. A failure in
// the middle ends the list and is not told: what was found counts.
void AppendHidPaths(std::vector<std::wstring>& paths, std::uint32_t most = std::numeric_limits<std::uint32_t>::max());

}  // namespace quarlin
