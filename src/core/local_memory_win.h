// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

namespace quarlin {

// Text that the system allocated for us with LocalAlloc.
class LocalText {
  public:
    LocalText() = default;
    LocalText(const LocalText&) = delete;
    LocalText& operator=(const LocalText&) = delete;
    ~LocalText() {
        if (text_ != nullptr) {
            LocalFree(text_);
        }
    }

    const wchar_t* get() const { return text_; }

    // For FORMAT_MESSAGE_ALLOCATE_BUFFER, which takes the address of the pointer as if it were the buffer.
    wchar_t* Receive() { return reinterpret_cast<wchar_t*>(&text_); }

  private:
    wchar_t* text_ = nullptr;
};

}  // namespace quarlin
