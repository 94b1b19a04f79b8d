// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

extern "C" {
#include <hidsdi.h>
}

#include <utility>

namespace quarlin::msr {

// Owns a kernel handle. None is what the call that makes it answers on failure: null or INVALID_HANDLE_VALUE.
class KernelHandle {
  public:
    explicit KernelHandle(HANDLE none) : none_(none), handle_(none) {}
    KernelHandle(const KernelHandle&) = delete;
    KernelHandle& operator=(const KernelHandle&) = delete;
    ~KernelHandle() { Reset(); }

    HANDLE Get() const { return handle_; }
    bool IsValid() const { return handle_ != none_; }

    void Reset() {
        if (IsValid()) {
            CloseHandle(std::exchange(handle_, none_));
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

// Owns what HidD_GetPreparsedData gives.
class PreparsedData {
  public:
    PreparsedData() = default;
    PreparsedData(const PreparsedData&) = delete;
    PreparsedData& operator=(const PreparsedData&) = delete;
    ~PreparsedData() { Reset(); }

    PHIDP_PREPARSED_DATA Get() const { return data_; }
    // For a call that fills it; empty before.
    PHIDP_PREPARSED_DATA* Out() {
        Reset();
        return &data_;
    }

    void Reset() {
        if (data_ != nullptr) {
            HidD_FreePreparsedData(std::exchange(data_, nullptr));
        }
    }

  private:
    PHIDP_PREPARSED_DATA data_ = nullptr;
};

}  // namespace quarlin::msr
