// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/reader_search_win.h"

#include "core/device_owners_win.h"
#include "uhfrfid/result_text.h"

#include <memory>
#include <new>

namespace quarlin::uhfrfid {
namespace {

constexpr USHORT kVendor = 0x24E9;
constexpr USHORT kProduct = 0x3993;

// A path of a device interface, in the record that the system hands it out in.
class InterfacePath {
  public:
    // False when the system does not tell the path: the interface is passed over.
    bool Load(const DeviceInterfaceList& list, SP_DEVICE_INTERFACE_DATA& deviceInterface) {
        DWORD size = 0;
        if (SetupDiGetDeviceInterfaceDetailA(list.Get(), &deviceInterface, nullptr, 0, &size, nullptr) ||
            GetLastError() != ERROR_INSUFFICIENT_BUFFER || size < sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A)) {
            return false;
        }
        memory_.reset(new (std::nothrow) std::byte[size]);
        Require(memory_ != nullptr, QLERR_UHFRFID_SYSTEM, CodeName);
        detail_ = new (memory_.get()) SP_DEVICE_INTERFACE_DETAIL_DATA_A{};
        detail_->cbSize = sizeof *detail_;
        return SetupDiGetDeviceInterfaceDetailA(list.Get(), &deviceInterface, detail_, size, nullptr, nullptr);
    }

    FileHandle Open(DWORD access) const {
        constexpr DWORD kNotShared = 0;
        return FileHandle(CreateFileA(detail_->DevicePath, access, kNotShared, nullptr, OPEN_EXISTING, 0, nullptr));
    }

  private:
    std::unique_ptr<std::byte[]> memory_;
    SP_DEVICE_INTERFACE_DETAIL_DATA_A* detail_ = nullptr;
};

bool IsReader(const FileHandle& device) {
    HIDD_ATTRIBUTES attributes{};
    attributes.Size = sizeof attributes;
    return HidD_GetAttributes(device.Get(), &attributes) && attributes.VendorID == kVendor &&
           attributes.ProductID == kProduct;
}

// The interface is a reader, which was opened for reading to ask it.
bool LeadsToReader(const InterfacePath& path) {
    const FileHandle candidate = path.Open(GENERIC_READ);
    return candidate.IsValid() && IsReader(candidate);
}

// False when no interface is a reader.
bool FindPath(const DeviceInterfaceList& list, const GUID& interfaceClass, InterfacePath& path) {
    SP_DEVICE_INTERFACE_DATA deviceInterface{};
    deviceInterface.cbSize = sizeof deviceInterface;
    for (DWORD i = 0; SetupDiEnumDeviceInterfaces(list.Get(), nullptr, &interfaceClass, i, &deviceInterface); ++i) {
        if (path.Load(list, deviceInterface) && LeadsToReader(path)) {
            return true;
        }
    }
    return false;
}

}  // namespace

FoundReader OpenFirstReader() {
    GUID hidClass{};
    HidD_GetHidGuid(&hidClass);
    const DeviceInterfaceList list(
        SetupDiGetClassDevsA(&hidClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
    Require(list.IsValid(), QLERR_UHFRFID_SYSTEM, CodeName);

    InterfacePath path;
    Require(FindPath(list, hidClass, path), QLERR_UHFRFID_DEVICENOTFOUND, CodeName);
    FileHandle reader = path.Open(GENERIC_READ | GENERIC_WRITE);
    Require(reader.IsValid(), QLERR_UHFRFID_INVALID_HANDLE, CodeName);
    PreparsedData preparsedData;
    HIDP_CAPS capabilities{};
    Require(HidD_GetPreparsedData(reader.Get(), preparsedData.Out()) && preparsedData.GetCapabilities(capabilities),
            QLERR_UHFRFID_INVALID_HANDLE, CodeName);
    return {reader.Release(), capabilities.OutputReportByteLength};
}

}  // namespace quarlin::uhfrfid
