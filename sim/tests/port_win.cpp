// SPDX-License-Identifier: Apache-2.0
#include "port_win.h"

#include <algorithm>
#include <utility>

namespace qlsim {

Port::Port(const std::string& name)
    : handle_(CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
    if (!IsOpen()) {
        error_ = GetLastError();
        return;
    }
    SetPatience(kReadPatience);
}

Port::Port(Port&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)), error_(other.error_) {
}

Port& Port::operator=(Port&& other) noexcept {
    if (this != &other) {
        Close();
        handle_ = std::exchange(other.handle_, INVALID_HANDLE_VALUE);
        error_ = other.error_;
    }
    return *this;
}

void Port::Close() {
    if (IsOpen()) {
        CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
    }
}

void Port::SetPatience(DWORD milliseconds) {
    // A read ends with the first bytes that are there, or after the patience.
    COMMTIMEOUTS timeouts = {};
    timeouts.ReadIntervalTimeout = MAXDWORD;
    timeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
    timeouts.ReadTotalTimeoutConstant = milliseconds;
    timeouts.WriteTotalTimeoutConstant = 5000;
    SetCommTimeouts(handle_, &timeouts);
}

bool Port::Write(const std::string& bytes) {
    DWORD written = 0;
    return WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
           written == bytes.size();
}

std::string Port::Read(size_t count) {
    std::string bytes;
    while (bytes.size() < count) {
        char chunk[4096];
        const DWORD wanted = static_cast<DWORD>(std::min(sizeof(chunk), count - bytes.size()));
        DWORD got = 0;
        if (ReadFile(handle_, chunk, wanted, &got, nullptr) == FALSE || got == 0) {
            break;
        }
        bytes.append(chunk, got);
    }
    return bytes;
}

Port OpenWhenThere(const std::string& name) {
    Port port;
    ComesTrue([&] {
        port = Port(name);
        return port.IsOpen();
    });
    return port;
}

bool IsGoneSoon(const std::string& name) {
    return ComesTrue([&] { return !Port(name).IsOpen(); });
}

}  // namespace qlsim
