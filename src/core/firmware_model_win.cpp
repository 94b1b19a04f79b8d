// SPDX-License-Identifier: Apache-2.0
#include "core/firmware_model.h"

#include "core/quarlin_exception.h"
#include "core/registry_win.h"

#include <array>

namespace quarlin {

std::wstring FirmwareProductName() {
    std::array<wchar_t, 260> text{};
    DWORD textBytes = sizeof text;
    CReg registry;
    if (!registry.ReadString(HKEY_LOCAL_MACHINE, L"HARDWARE\\Description\\System\\BIOS", L"SystemProductName",
                             text.data(), &textBytes, 0)) {
        throw QuarlinException(QLERR_INTERNAL_ERROR, "error.");
    }
    return text.data();
}

}  // namespace quarlin
