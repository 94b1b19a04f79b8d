// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/scanner_choice.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quarlin::bcr {

// The engine behind a HID interface's path, in whatever letter case the system gives it; kNone when it is no scanner.
BarcodeEngineKind EngineOfHidPath(std::wstring_view path);

// The number of an Intermec scanner's port by the name that the system shows for it ("... VID_067... (COM9)"); nothing
// when it is no such port.
std::optional<std::int32_t> ScannerPortNumber(std::wstring_view portName);

}  // namespace quarlin::bcr
