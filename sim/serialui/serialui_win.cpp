// SPDX-License-Identifier: Apache-2.0
// The port provider of the simulated machine: what GetDefaultCommConfig asks about a port. Windows has such a library
// under this name; Wine's own knows no port at all.
#include <windows.h>

#include "settings/settings_win.h"

namespace {

constexpr DWORD kRs232 = PST_RS232;

bool IsMapped(const wchar_t* port) {
    return RegGetValueW(HKEY_LOCAL_MACHINE, L"Software\\Norvane\\QuarlinSim\\Ports", port, RRF_RT_REG_SZ, nullptr,
                        nullptr, nullptr) == ERROR_SUCCESS;
}

// The text after `word` when `text` begins with it, else null.
const wchar_t* After(const wchar_t* text, const wchar_t* word) {
    while (*word != 0 && *text == *word) {
        ++text;
        ++word;
    }
    return *word == 0 ? text : nullptr;
}

// What a setting says about a port: "rs232", "subtype:N" or "error:N". Anything else is a mistake in the test, and an
// error code that no test expects shows it.
DWORD FollowSetting(const wchar_t* setting, DWORD* subtype) {
    DWORD error = ERROR_BAD_ENVIRONMENT;
    const wchar_t* number = After(setting, L"error:");
    if (number != nullptr) {
        return qlsim::ParseNumber(number, &error) ? error : ERROR_BAD_ENVIRONMENT;
    }
    number = After(setting, L"subtype:");
    if (number != nullptr) {
        return qlsim::ParseNumber(number, subtype) ? ERROR_SUCCESS : ERROR_BAD_ENVIRONMENT;
    }
    const wchar_t* rest = After(setting, L"rs232");
    if (rest == nullptr || *rest != 0) {
        return ERROR_BAD_ENVIRONMENT;
    }
    *subtype = kRs232;
    return ERROR_SUCCESS;
}

DWORD Identify(const wchar_t* port, DWORD* subtype) {
    qlsim::SettingValue setting;
    if (qlsim::FindSetting(L"QLSIM_PORT_PROVIDER", port, &setting)) {
        return FollowSetting(setting.text, subtype);
    }
    *subtype = kRs232;
    return IsMapped(port) ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

void FillDefaults(COMMCONFIG* config, DWORD subtype) {
    *config = COMMCONFIG{};
    config->dwSize = sizeof(COMMCONFIG);
    config->wVersion = 1;
    config->dwProviderSubType = subtype;
    config->dcb.DCBlength = sizeof(DCB);
    config->dcb.BaudRate = CBR_9600;
    config->dcb.fBinary = TRUE;
    config->dcb.fDtrControl = DTR_CONTROL_ENABLE;
    config->dcb.fRtsControl = RTS_CONTROL_ENABLE;
    config->dcb.XonLim = 2048;
    config->dcb.XoffLim = 512;
    config->dcb.ByteSize = 8;
    config->dcb.Parity = NOPARITY;
    config->dcb.StopBits = ONESTOPBIT;
    config->dcb.XonChar = 0x11;
    config->dcb.XoffChar = 0x13;
}

}  // namespace

// The result is a Win32 error, which GetDefaultCommConfig turns into its last error.
extern "C" __declspec(dllexport) DWORD WINAPI
    drvGetDefaultCommConfigW(const wchar_t* port, COMMCONFIG* config, DWORD* size) {
    if (port == nullptr || config == nullptr || size == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    DWORD subtype = 0;
    const DWORD error = Identify(port, &subtype);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    const bool fits = *size >= sizeof(COMMCONFIG);
    *size = sizeof(COMMCONFIG);
    if (!fits) {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    FillDefaults(config, subtype);
    return ERROR_SUCCESS;
}
