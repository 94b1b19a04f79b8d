// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/info_report.h"

namespace quarlin::qlctl {

// Asks the library everything that it can tell without a device. An answer that fails does not stop the others.
InfoReport GatherInfo();

}  // namespace quarlin::qlctl
