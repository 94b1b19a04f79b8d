// SPDX-License-Identifier: Apache-2.0
// NMEA sentences for the tests to send.
#pragma once

#include <string>
#include <string_view>

namespace quarlin::test {

// "$", the text, "*", its checksum, and the line end.
std::string Sentence(std::string_view text);

// RMC cut off behind its speed, so that it sets nothing else. Knots.
std::string SpeedOnly(double speed);

// What a receiver with a fix sends: every value that the interface tells is set, and none is 0.
std::string FullReport();

}  // namespace quarlin::test
