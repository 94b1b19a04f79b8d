// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "gps/gps_command.h"

namespace quarlin::sim {

// The bytes of a file; a relative name is looked for in the current folder, then beside the scenario. Throws
// CommandError.
std::string LoadReplayFile(const std::string& name, const std::filesystem::path& scenarioFolder);

// A recording on its way to the port, byte for byte as it is: line by line at the pace of the serial line, or at full
// speed, which takes no time of the simulation.
class Replay {
  public:
    // start: seconds.
    Replay(std::string bytes, const GpsCommand& command, double start, std::uint32_t baud)
        : name_(command.text),
          bytes_(std::move(bytes)),
          fullSpeed_(command.fullSpeed),
          thenSilent_(command.thenSilent),
          next_(start),
          baud_(baud) {}

    const std::string& Name() const { return name_; }
    bool ThenSilent() const { return thenSilent_; }
    bool AtEnd() const { return at_ == bytes_.size(); }
    double NextPiece() const { return next_; }
    std::string TakePiece();

  private:
    std::string name_;
    std::string bytes_;
    std::size_t at_ = 0;
    bool fullSpeed_;
    bool thenSilent_;
    double next_;
    std::uint32_t baud_;
};

}  // namespace quarlin::sim
