// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>

#include "camera_light/light_state.h"
#include "machine_libraries/library_command.h"

namespace quarlin::sim {

std::span<const LibraryCommand<LightState>> LightCommands();

}  // namespace quarlin::sim
