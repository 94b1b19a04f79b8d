// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}
#include <utility>

namespace quarlin::uhfrfid {

// Each owns one thing of the system and gives it back.

class FileHandle {
  public:
    explicit FileHandle(HANDLE handle) : handle_(handle) {}
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() {
        if (IsValid()) {
            CloseHandle(handle_);
        }
    }

    bool IsValid() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }
    HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

  private:
    HANDLE handle_;
};

// What a HID device says of its reports.
class PreparsedData {
  public:
    explicit PreparsedData(HANDLE device) {
        if (!HidD_GetPreparsedData(device, &data_)) {
            data_ = nullptr;
        }
    }
    PreparsedData(const PreparsedData&) = delete;
    PreparsedData& operator=(const PreparsedData&) = delete;
    ~PreparsedData() {
        if (data_ != nullptr) {
            HidD_FreePreparsedData(data_);
        }
    }

    bool GetCapabilities(HIDP_CAPS& capabilities) const {
        return data_ != nullptr && HidP_GetCaps(data_, &capabilities) == HIDP_STATUS_SUCCESS;
    }

  private:
    PHIDP_PREPARSED_DATA data_ = nullptr;
};

// The interfaces of one class that are present.
class DeviceInterfaceList {
  public:
    explicit DeviceInterfaceList(const GUID& interfaceClass)
        : list_(SetupDiGetClassDevsA(&interfaceClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE)) {}
    DeviceInterfaceList(const DeviceInterfaceList&) = delete;
    DeviceInterfaceList& operator=(const DeviceInterfaceList&) = delete;
    ~DeviceInterfaceList() {
        if (IsValid()) {
            SetupDiDestroyDeviceInfoList(list_);
        }
    }

    bool IsValid() const { return list_ != INVALID_HANDLE_VALUE; }
    HDEVINFO Get() const { return list_; }

  private:
    HDEVINFO list_;
};

}  // namespace quarlin::uhfrfid
