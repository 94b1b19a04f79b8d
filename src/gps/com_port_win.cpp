// SPDX-License-Identifier: Apache-2.0
#include "gps/com_port.h"

#include "core/quarlin_exception.h"

#include <windows.h>

namespace quarlin::gps {

bool IsComPortAvailable(const char* name) {
    COMMCONFIG config{};
    config.dwSize = sizeof config;
    config.wVersion = 1;
    DWORD size = sizeof config;
    if (!GetDefaultCommConfigA(name, &config, &size)) {
        const DWORD error = GetLastError();
        if (error == ERROR_INVALID_PARAMETER) {
            return false;
        }
        ThrowWin32Error("Failed to check COM port availability!", error);
        // Back here for an error without a system text.
        return false;
    }
    return config.dwProviderSubType == PST_RS232;
}

}  // namespace quarlin::gps
