// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/gps_reading.h"

#include <string>

namespace quarlin::qlctl {

// One reading as one line of JSON, line end included. The field names are part of qlctl's interface (README.md).
std::string ReadingJson(const GpsReading& reading);

}  // namespace quarlin::qlctl
