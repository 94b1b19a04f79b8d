// SPDX-License-Identifier: Apache-2.0
#include "msr/hid_paths_win.h"

#include "core/device_owners_win.h"

#include <algorithm>
#include <cstddef>
#include <cwctype>
#include <memory>
#include <new>
#include <optional>

namespace quarlin::msr {

namespace {

// Nothing when the system does not give it.
std::optional<std::wstring> InterfacePath(HDEVINFO set, SP_DEVICE_INTERFACE_DATA& interfaceData) {
    DWORD size = 0;
    if (SetupDiGetDeviceInterfaceDetailW(set, &interfaceData, nullptr, 0, &size, nullptr) ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER || size < sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W)) {
        return std::nullopt;
    }
    const std::unique_ptr<std::byte[]> buffer(new std::byte[size]());
    auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(buffer.get());
    static_assert(sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) == 8);
    detail->cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W);
    if (!SetupDiGetDeviceInterfaceDetailW(set, &interfaceData, detail, size, nullptr, nullptr)) {
        return std::nullopt;
    }
    std::wstring path(detail->DevicePath);
    std::ranges::transform(path, path.begin(), [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return path;
}

}  // namespace

void AppendHidPaths(std::vector<std::wstring>& paths) {
    GUID hidClass;
    HidD_GetHidGuid(&hidClass);
    const DeviceInterfaceList set(
        SetupDiGetClassDevsW(&hidClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
    if (!set.IsValid()) {
        return;
    }
    try {
        for (DWORD index = 0;; ++index) {
            SP_DEVICE_INTERFACE_DATA interfaceData{};
            interfaceData.cbSize = sizeof interfaceData;
            if (!SetupDiEnumDeviceInterfaces(set.Get(), nullptr, &hidClass, index, &interfaceData)) {
                return;
            }
            std::optional<std::wstring> path = InterfacePath(set.Get(), interfaceData);
            if (!path) {
                return;
            }
            paths.push_back(*std::move(path));
        }
    } catch (const std::bad_alloc&) {
        // The list ends here.
    }
}

}  // namespace quarlin::msr
