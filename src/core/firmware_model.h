// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace quarlin {

// The machine's product name as its firmware gives it. Raises QLERR_INTERNAL_ERROR, "error.", when there is none.
std::wstring FirmwareProductName();

}  // namespace quarlin
