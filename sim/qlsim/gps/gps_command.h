// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/command.h"

namespace quarlin::sim {

// A command to the receiver, read and checked.
struct GpsCommand {
    enum class Verb {
        kLoseFix,
        kRegainFix,
        kUnplug,
        kPlug,
        kSilence,
        kNoise,
        kDrop,
        kBadChecksum,
        kSatellites,
        kReplay,
        kSend,
        kSendBytes,
        kStatus
    };

    Verb verb = Verb::kStatus;
    bool on = false;                        // silence
    double probability = 0;                 // noise, drop, bad-checksum
    std::optional<std::size_t> satellites;  // none: as many as there are
    std::string text;                       // send, send-bytes: what goes out; replay: the file
    bool fullSpeed = false;                 // replay
    bool thenSilent = false;                // replay
};

// Throws CommandError.
GpsCommand ParseGpsCommand(const Words& words);

// One line for each command.
std::vector<std::string> GpsCommandUsage();

}  // namespace quarlin::sim
