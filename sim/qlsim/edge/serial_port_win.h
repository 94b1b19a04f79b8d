// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/byte_port.h"

namespace quarlin::sim {

// A COM port, 8 data bits, no parity, one stop bit, without flow control.
std::unique_ptr<BytePort> MakeSerialPort(const std::string& name, std::uint32_t baud);

}  // namespace quarlin::sim
