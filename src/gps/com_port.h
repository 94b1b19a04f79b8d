// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace quarlin::gps {

// Whether the machine has a port of this name ("COM3") and it is an RS-232 port. Raises QuarlinException when the
// system cannot tell.
bool IsComPortAvailable(const char* name);

}  // namespace quarlin::gps
