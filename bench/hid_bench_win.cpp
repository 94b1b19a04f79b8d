// SPDX-License-Identifier: Apache-2.0
#include "hid_bench_win.h"

#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}

#include <array>
#include <cwchar>
#include <stdexcept>
#include <string>

namespace quarlin::bench {

namespace {

std::wstring Lower(std::wstring text) {
    for (wchar_t& character : text) {
        character = static_cast<wchar_t>(std::towlower(character));
    }
    return text;
}

std::wstring PathOf(HDEVINFO list, SP_DEVICE_INTERFACE_DATA& entry) {
    std::array<std::uint8_t, 1024> buffer{};
    auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(buffer.data());
    detail->cbSize = sizeof *detail;
    if (!SetupDiGetDeviceInterfaceDetailW(list, &entry, detail, buffer.size(), nullptr, nullptr)) {
        return {};
    }
    return detail->DevicePath;
}

std::wstring FindPath(const wchar_t* vendorAndProduct) {
    GUID hid;
    HidD_GetHidGuid(&hid);
    const HDEVINFO list = SetupDiGetClassDevsW(&hid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    std::wstring found;
    SP_DEVICE_INTERFACE_DATA entry{};
    entry.cbSize = sizeof entry;
    for (DWORD i = 0; found.empty() && SetupDiEnumDeviceInterfaces(list, nullptr, &hid, i, &entry); ++i) {
        const std::wstring path = PathOf(list, entry);
        if (Lower(path).find(vendorAndProduct) != std::wstring::npos) {
            found = path;
        }
    }
    SetupDiDestroyDeviceInfoList(list);
    return found;
}

}  // namespace

BareDevice::BareDevice(const wchar_t* vendorAndProduct, DWORD flags)
    : handle_(CreateFileW(FindPath(vendorAndProduct).c_str(), GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, flags, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("the virtual device cannot be opened");
    }
}

BareDevice::~BareDevice() {
    CloseHandle(handle_);
}

}  // namespace quarlin::bench
