// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quarlin::reference {

// What names say, once more: whole copies in one letter case, and numbers by the C++ library.

// 2 or 3 for the path of a USB scanner, 0 for any other.
int ReferenceEngineOfHidPath(const std::wstring& path);
std::optional<std::int32_t> ReferencePortNumber(const std::wstring& name);
// 1 to 4, or 0.
int ReferenceModel(const std::wstring& name);

}  // namespace quarlin::reference
