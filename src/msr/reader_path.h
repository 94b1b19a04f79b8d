// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace quarlin::msr {

// Whether the path of a HID interface, in lower case, is that of a MagneSafe V5 reader. The path alone decides.
inline bool IsMagneSafePath(std::wstring_view path) {
    constexpr std::wstring_view kVendorAndProduct = L"vid_0801&pid_0011";
    return path.find(kVendorAndProduct) != std::wstring_view::npos;
}

}  // namespace quarlin::msr
