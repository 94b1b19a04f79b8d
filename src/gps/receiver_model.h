// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace quarlin::gps {

// Name of the receiver that a machine carries, by the first five characters of the machine's model; null when none is
// known.
const char* ReceiverName(std::string_view machineModel);

}  // namespace quarlin::gps
