// SPDX-License-Identifier: Apache-2.0
#include "edge/computer_parts_win.h"

#include <initguid.h>
#include <windows.h>

#include <devguid.h>
#include <setupapi.h>

#include <array>
#include <cstdlib>

#include "core/device.h"
#include "edge/handle_win.h"
#include "edge/system_error_win.h"

namespace quarlin::sim {
namespace {

constexpr wchar_t kDeviceName[] = L"QLSIMPORT";
// A list of texts, with the zero that ends it.
constexpr wchar_t kHardwareId[] = L"QLSIM\\PORT\0";

class DeviceList {
  public:
    explicit DeviceList(HDEVINFO list) : list_(list) {
        if (list_ == INVALID_HANDLE_VALUE) {
            throw DeviceError("the list of devices is not to be had: " + SystemMessage(GetLastError()));
        }
    }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;
    ~DeviceList() { SetupDiDestroyDeviceInfoList(list_); }

    HDEVINFO Get() const { return list_; }
    std::wstring Text(SP_DEVINFO_DATA& device, DWORD property) const {
        std::array<wchar_t, 256> text{};
        if (SetupDiGetDeviceRegistryPropertyW(list_, &device, property, nullptr, reinterpret_cast<BYTE*>(text.data()),
                                              sizeof text - sizeof(wchar_t), nullptr) == FALSE) {
            return {};
        }
        return text.data();
    }
    void SetText(SP_DEVINFO_DATA& device, DWORD property, const wchar_t* text, std::size_t characters) const {
        if (SetupDiSetDeviceRegistryPropertyW(list_, &device, property, reinterpret_cast<const BYTE*>(text),
                                              static_cast<DWORD>(characters * sizeof(wchar_t))) == FALSE) {
            Fail();
        }
    }
    void Call(DI_FUNCTION function, SP_DEVINFO_DATA& device) const {
        if (SetupDiCallClassInstaller(function, list_, &device) == FALSE) {
            Fail();
        }
    }
    [[noreturn]] static void Fail() {
        const DWORD error = GetLastError();
        throw DeviceError("the port does not come into the list of devices: " + SystemMessage(error));
    }

  private:
    HDEVINFO list_;
};

bool IsAlive(const std::wstring& process) {
    const OwnedHandle handle(
        OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(std::wcstoul(process.c_str(), nullptr, 10))));
    return handle && WaitForSingleObject(handle.get(), 0) == WAIT_TIMEOUT;
}

// What a program that was killed has left. Each entry says whose it is, as its place in the computer.
void RemoveLeftovers() {
    const DeviceList list(SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, 0));
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD i = 0; SetupDiEnumDeviceInfo(list.Get(), i, &device) != FALSE; ++i) {
        if (list.Text(device, SPDRP_HARDWAREID) == kHardwareId &&
            !IsAlive(list.Text(device, SPDRP_LOCATION_INFORMATION))) {
            SetupDiCallClassInstaller(DIF_REMOVE, list.Get(), &device);
        }
    }
}

class PortInList final : public ListedPort {
  public:
    explicit PortInList(const std::wstring& friendlyName)
        : list_(SetupDiCreateDeviceInfoList(&GUID_DEVCLASS_PORTS, nullptr)) {
        device_.cbSize = sizeof device_;
        if (SetupDiCreateDeviceInfoW(list_.Get(), kDeviceName, &GUID_DEVCLASS_PORTS, nullptr, nullptr, DICD_GENERATE_ID,
                                     &device_) == FALSE) {
            DeviceList::Fail();
        }
        const std::wstring owner = std::to_wstring(GetCurrentProcessId());
        list_.SetText(device_, SPDRP_HARDWAREID, kHardwareId, sizeof kHardwareId / sizeof(wchar_t));
        list_.SetText(device_, SPDRP_LOCATION_INFORMATION, owner.c_str(), owner.size() + 1);
        list_.SetText(device_, SPDRP_FRIENDLYNAME, friendlyName.c_str(), friendlyName.size() + 1);
        list_.Call(DIF_REGISTERDEVICE, device_);
    }
    PortInList(const PortInList&) = delete;
    PortInList& operator=(const PortInList&) = delete;
    ~PortInList() override { SetupDiCallClassInstaller(DIF_REMOVE, list_.Get(), &device_); }

  private:
    DeviceList list_;
    SP_DEVINFO_DATA device_{};
};

}  // namespace

std::unique_ptr<ListedPort> ListPort(const std::string& friendlyName) {
    RemoveLeftovers();
    return std::make_unique<PortInList>(Wide(friendlyName));
}

}  // namespace quarlin::sim
