// SPDX-License-Identifier: Apache-2.0
#include "bcr/attached_devices_win.h"

#include "core/device_owners_win.h"
#include "core/hid_paths_win.h"

#include <array>
#include <optional>

namespace quarlin::bcr {
namespace {

// The setup class "Ports": {4D36E978-E325-11CE-BFC1-08002BE10318}.
constexpr GUID kPortsClass{0x4D36E978, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

std::optional<std::wstring> Property(HDEVINFO list, SP_DEVINFO_DATA& device, DWORD property) {
    // With room for a terminator, which the system does not promise.
    std::array<wchar_t, 512> text{};
    DWORD type = 0;
    if (!SetupDiGetDeviceRegistryPropertyW(list, &device, property, &type, reinterpret_cast<BYTE*>(text.data()),
                                           sizeof text - sizeof(wchar_t), nullptr) ||
        type != REG_SZ) {
        return std::nullopt;
    }
    return text.data();
}

}  // namespace

std::vector<std::wstring> SystemDevices::HidPaths(std::uint32_t most) {
    std::vector<std::wstring> paths;
    AppendHidPaths(paths, most);
    return paths;
}

std::vector<std::wstring> SystemDevices::PortNames() {
    std::vector<std::wstring> names;
    const DeviceInterfaceList list(SetupDiGetClassDevsW(&kPortsClass, nullptr, nullptr, DIGCF_PRESENT));
    if (!list.IsValid()) {
        return names;
    }
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD index = 0; SetupDiEnumDeviceInfo(list.Get(), index, &device); ++index) {
        std::optional<std::wstring> name = Property(list.Get(), device, SPDRP_FRIENDLYNAME);
        if (!name) {
            name = Property(list.Get(), device, SPDRP_DEVICEDESC);
        }
        if (name) {
            names.push_back(*std::move(name));
        }
    }
    return names;
}

}  // namespace quarlin::bcr
