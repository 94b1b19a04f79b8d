// SPDX-License-Identifier: Apache-2.0
#include "edge/computer_parts_win.h"

#include <windows.h>

#include <array>

#include "core/device.h"
#include "edge/system_error_win.h"

namespace quarlin::sim {
namespace {

constexpr wchar_t kKey[] = L"HARDWARE\\Description\\System\\BIOS";
constexpr wchar_t kValue[] = L"SystemProductName";

class RegistryProductName final : public ProductName {
  public:
    std::optional<std::string> Read() override {
        std::array<wchar_t, 512> text{};
        DWORD size = sizeof text;
        const LSTATUS status =
            RegGetValueW(HKEY_LOCAL_MACHINE, kKey, kValue, RRF_RT_REG_SZ, nullptr, text.data(), &size);
        if (status == ERROR_FILE_NOT_FOUND) {
            return std::nullopt;
        }
        Check(status, "read");
        return Narrow(text.data());
    }
    void Write(const std::optional<std::string>& name) override {
        if (!name) {
            const LSTATUS status = RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kKey, kValue);
            Check(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status, "removed");
            return;
        }
        const std::wstring wide = Wide(*name);
        Check(RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, kValue, REG_SZ, wide.c_str(),
                              static_cast<DWORD>((wide.size() + 1) * sizeof(wchar_t))),
              "written");
    }

  private:
    static void Check(LSTATUS status, const char* what) {
        if (status != ERROR_SUCCESS) {
            throw DeviceError(std::string("the firmware's product name cannot be ") + what + ": " +
                              SystemMessage(static_cast<std::uint32_t>(status)));
        }
    }
};

}  // namespace

std::unique_ptr<ProductName> FirmwareProductName() {
    return std::make_unique<RegistryProductName>();
}

}  // namespace quarlin::sim
