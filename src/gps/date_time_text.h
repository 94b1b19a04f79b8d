// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>

namespace quarlin::gps {

using DateTimeText = std::array<char, 40>;

// "9:27:50" from hhmmss.sss; the hour has no leading zero.
void FormatTime(double hhmmss, DateTimeText& text);

// " 19/11/2094" from ddmmyy; the blank in front parts it from the time. The century is taken to be 20.
void FormatDate(std::int32_t ddmmyy, DateTimeText& text);

}  // namespace quarlin::gps
