// SPDX-License-Identifier: Apache-2.0
// What the program machine_hid_player and the tests that start it have in common.
#pragma once

namespace quarlin::sim::testing {

inline constexpr char kPlayersInstance[] = "6&2f9a1b0c&0&0000";
// Set when the player's device is there, and when it is asked for something.
inline constexpr char kReadyEvent[] = "Local\\QuarlinHidPlayerReady";
inline constexpr char kBusyEvent[] = "Local\\QuarlinHidPlayerBusy";

}  // namespace quarlin::sim::testing
