// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>
#include <utility>

namespace quarlin::sim {

// Owns a kernel handle. Some functions fail with null and some with INVALID_HANDLE_VALUE; neither is a handle.
class OwnedHandle {
  public:
    OwnedHandle() = default;
    explicit OwnedHandle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept {
        if (this != &other) {
            Reset();
            handle_ = std::exchange(other.handle_, nullptr);
        }
        return *this;
    }
    ~OwnedHandle() { Reset(); }

    void Reset() {
        if (HANDLE const handle = std::exchange(handle_, nullptr)) {
            CloseHandle(handle);
        }
    }
    HANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    HANDLE handle_ = nullptr;
};

}  // namespace quarlin::sim
