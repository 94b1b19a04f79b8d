// SPDX-License-Identifier: Apache-2.0
// Logs of real receivers, which are no part of the sources: the build is told their folder by QUARLIN_NMEA_DIR.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace quarlin::test {

constexpr const char* kNoReceiverLogs =
    "no receiver logs: set QUARLIN_NMEA_DIR to their folder when the build is configured";

// The bytes of a log; empty when the build knows no folder. Throws std::runtime_error when the folder has no such log.
std::string ReadReceiverLog(const std::string& name);

// The fields of the last sentence of a kind ("RMC") with talker GP or GN, its name first, its checksum left out; empty
// when there is none.
std::vector<std::string> LastSentence(const std::string& log, const std::string& kind);

// The log up to the last complete cycle of satellites in view: a log may end in the middle of one.
std::string UpToCompleteSatellites(const std::string& log);

// A position as a text, so that positions can be compared and kept in sets.
std::string PositionText(double latitude, double longitude, double altitude);

// The positions of the complete GGA sentences of a log.
std::set<std::string> PositionsOf(const std::string& log);

// A number as a text, for the same.
std::string NumberText(double number);

// What one field of the sentences of a kind holds in the course of a log, first nothing, which reads as 0.
std::set<std::string> NumbersOf(const std::string& log, const std::string& kind, size_t field);

// The time stamps in the course of a log: the time of a GGA sentence, the date of an RMC sentence, whichever came last.
std::set<std::string> TimeStampsOf(const std::string& log);

}  // namespace quarlin::test
