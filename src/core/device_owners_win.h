// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}

#include <utility>

namespace quarlin {

// Each owns one thing that the system hands out for a device, and gives it back.

// None is what the call that makes the handle answers on failure: null or INVALID_HANDLE_VALUE.
class KernelHandle {
  public:
    explicit KernelHandle(HANDLE none) : none_(none), handle_(none) {}
    KernelHandle(HANDLE none, HANDLE handle) : none_(none), handle_(handle) {}
    KernelHandle(const KernelHandle&) = delete;
    KernelHandle& operator=(const KernelHandle&) = delete;
    ~KernelHandle() { Reset(); }

    HANDLE Get() const { return handle_; }
    bool IsValid() const { return handle_ != none_; }

    HANDLE Release() { return std::exchange(handle_, none_); }
    void Reset() {
        if (IsValid()) {
            CloseHandle(Release());
        }
    }
    void Reset(HANDLE handle) {
        Reset();
        handle_ = handle;
    }

  private:
    HANDLE none_;
    HANDLE handle_;
};

// A file or a device, opened.
class FileHandle : public KernelHandle {
  public:
    explicit FileHandle(HANDLE handle = INVALID_HANDLE_VALUE) : KernelHandle(INVALID_HANDLE_VALUE, handle) {}
};

// What a HID device says of its reports.
class PreparsedData {
  public:
    PreparsedData() = default;
    PreparsedData(const PreparsedData&) = delete;
    PreparsedData& operator=(const PreparsedData&) = delete;
    ~PreparsedData() { Reset(); }

    // For the call that fills it; empty before.
    PHIDP_PREPARSED_DATA* Out() {
        Reset();
        return &data_;
    }
    bool GetCapabilities(HIDP_CAPS& capabilities) const {
        return data_ != nullptr && HidP_GetCaps(data_, &capabilities) == HIDP_STATUS_SUCCESS;
    }
    void Reset() {
        if (data_ != nullptr) {
            HidD_FreePreparsedData(std::exchange(data_, nullptr));
        }
    }

  private:
    PHIDP_PREPARSED_DATA data_ = nullptr;
};

// The interfaces of one class that are present, from SetupDiGetClassDevs.
class DeviceInterfaceList {
  public:
    explicit DeviceInterfaceList(HDEVINFO list) : list_(list) {}
    DeviceInterfaceList(const DeviceInterfaceList&) = delete;
    DeviceInterfaceList& operator=(const DeviceInterfaceList&) = delete;
    ~DeviceInterfaceList() {
        if (IsValid()) {
            SetupDiDestroyDeviceInfoList(list_);
        }
    }

    bool IsValid() const { return list_ != nullptr && list_ != INVALID_HANDLE_VALUE; }
    HDEVINFO Get() const { return list_; }

  private:
    HDEVINFO list_;
};

}  // namespace quarlin
