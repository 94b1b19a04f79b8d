// SPDX-License-Identifier: Apache-2.0
#include "core/hid_paths_win.h"

#include "core/device_owners_win.h"

#include <cstddef>
#include <memory>
#include <new>
#include <optional>

namespace quarlin {

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
    return detail->DevicePath;
}

}  // namespace

void AppendHidPaths(std::vector<std::wstring>& paths, std::uint32_t most) {
    GUID hidClass;
    HidD_GetHidGuid(&hidClass);
    const DeviceInterfaceList set(
        SetupDiGetClassDevsW(&hidClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
    if (!set.IsValid()) {
        return;
    }
    try {
        for (DWORD index = 0; index < most; ++index) {
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

}  // namespace quarlin
