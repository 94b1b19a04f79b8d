// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "hidbus/hid_device.h"

namespace quarlin::sim {

// A socket of this machine's bus. Throws HidBusError when the machine has none. When the process ends, however it ends,
// its devices are unplugged.
std::unique_ptr<HidSocket> MakeHidSocket();

}  // namespace quarlin::sim
