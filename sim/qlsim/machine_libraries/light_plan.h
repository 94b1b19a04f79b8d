// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "camera_light/light_state.h"
#include "core/device.h"

namespace quarlin::sim {

// The kind "camera-light": the light that camlamp_x64.dll switches. Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadLightPlan(TableReader& table);
LightState ReadLightState(TableReader& table);

}  // namespace quarlin::sim
