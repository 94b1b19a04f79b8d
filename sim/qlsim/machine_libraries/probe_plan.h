// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "core/device.h"
#include "probe/probe_state.h"

namespace quarlin::sim {

// The kind "probe": what HwProbeLib.dll tells about built-in devices and batteries. Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadProbePlan(TableReader& table);
ProbeState ReadProbeState(TableReader& table);

}  // namespace quarlin::sim
