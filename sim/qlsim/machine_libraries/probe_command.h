// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>

#include "machine_libraries/library_command.h"
#include "probe/probe_state.h"

namespace quarlin::sim {

// The numbers of a battery by the names that scenarios and commands have for them.
struct BatteryNumber {
    const char* name;
    std::int32_t ProbeBatteryRecord::*number;
};
std::span<const BatteryNumber> BatteryNumbers();

// The two texts of a battery hold this many characters.
inline constexpr std::size_t kBatteryTextRoom = 12;
// The text fits.
void SetBatteryText(char16_t (&place)[kBatteryTextRoom], const std::string& text);
std::string BatteryText(const char16_t (&place)[kBatteryTextRoom]);

std::span<const LibraryCommand<ProbeState>> ProbeCommands();

}  // namespace quarlin::sim
