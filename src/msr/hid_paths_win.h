// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace quarlin::msr {

// Appends the path of every HID interface that is present, in lower case. A failure in the middle ends the list and is
// not told: what was found counts.
void AppendHidPaths(std::vector<std::wstring>& paths);

}  // namespace quarlin::msr
