// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <string>

namespace qlsim {

// An open serial port. Reads give up after `kReadPatience` ms without a byte.
class Port {
  public:
    static constexpr DWORD kReadPatience = 2000;

    Port() = default;
    explicit Port(const std::string& name);
    ~Port() { Close(); }
    Port(Port&& other) noexcept;
    Port& operator=(Port&& other) noexcept;

    bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    // Why it is not open.
    DWORD Error() const { return error_; }
    HANDLE Handle() const { return handle_; }
    void Close();

    void SetPatience(DWORD milliseconds);
    bool Write(const std::string& bytes);
    // What arrives until `count` bytes are there or nothing comes any more.
    std::string Read(size_t count);

  private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
    DWORD error_ = ERROR_SUCCESS;
};

// Whether the condition comes true within five seconds.
template <typename Condition>
bool ComesTrue(Condition condition) {
    const ULONGLONG deadline = GetTickCount64() + 5000;
    while (!condition()) {
        if (GetTickCount64() > deadline) {
            return false;
        }
        SwitchToThread();
    }
    return true;
}

// Opens a port that is about to appear; the result is not open when it does not.
Port OpenWhenThere(const std::string& name);
bool IsGoneSoon(const std::string& name);

}  // namespace qlsim
