// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

namespace quarlin {

// Owns one reference to a COM object.
template <typename Interface>
class ComPointer {
  public:
    ComPointer() = default;
    ComPointer(const ComPointer&) = delete;
    ComPointer& operator=(const ComPointer&) = delete;
    ~ComPointer() { Reset(); }

    void Reset() {
        if (Interface* const object = std::exchange(object_, nullptr)) {
            object->Release();
        }
    }

    // For calls that hand an object out.
    Interface** Receive() {
        Reset();
        return &object_;
    }

    Interface* get() const { return object_; }
    Interface* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

  private:
    Interface* object_ = nullptr;
};

}  // namespace quarlin
