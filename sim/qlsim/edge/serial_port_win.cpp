// SPDX-License-Identifier: Apache-2.0
#include "edge/serial_port_win.h"

#include <algorithm>

#include "edge/handle_win.h"
#include "edge/system_error_win.h"

namespace quarlin::sim {
namespace {

constexpr DWORD kWriteTimeout = 100;  // milliseconds

class SerialPort final : public BytePort {
  public:
    SerialPort(std::string name, std::uint32_t baud) : name_(std::move(name)), baud_(baud) {}

    void Open() override {
        // The device prefix opens ports above COM9 too.
        OwnedHandle handle(CreateFileW(Wide("\\\\.\\" + name_).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                       OPEN_EXISTING, 0, nullptr));
        if (!handle) {
            Fail("cannot be opened");
        }
        DCB settings{};
        settings.DCBlength = sizeof settings;
        if (!GetCommState(handle.get(), &settings)) {
            Fail("does not tell its settings");
        }
        settings.BaudRate = baud_;
        settings.fBinary = TRUE;
        settings.fParity = FALSE;
        settings.fOutxCtsFlow = FALSE;
        settings.fOutxDsrFlow = FALSE;
        settings.fDtrControl = DTR_CONTROL_ENABLE;
        settings.fDsrSensitivity = FALSE;
        settings.fOutX = FALSE;
        settings.fInX = FALSE;
        settings.fNull = FALSE;
        settings.fErrorChar = FALSE;
        settings.fRtsControl = RTS_CONTROL_ENABLE;
        settings.fAbortOnError = FALSE;
        settings.ByteSize = 8;
        settings.Parity = NOPARITY;
        settings.StopBits = ONESTOPBIT;
        if (!SetCommState(handle.get(), &settings)) {
            Fail("refuses its settings");
        }
        COMMTIMEOUTS timeouts{};
        timeouts.ReadIntervalTimeout = MAXDWORD;
        timeouts.WriteTotalTimeoutConstant = kWriteTimeout;
        if (!SetCommTimeouts(handle.get(), &timeouts)) {
            Fail("refuses its time-outs");
        }
        handle_ = std::move(handle);
    }

    void Close() override { handle_.Reset(); }
    bool IsOpen() const override { return static_cast<bool>(handle_); }

    std::size_t Write(std::string_view bytes) override {
        // In pieces: a write that times out must not take long for a text of any length.
        constexpr std::size_t kPiece = 1024;
        const DWORD wanted = static_cast<DWORD>(std::min(bytes.size(), kPiece));
        DWORD written = 0;
        if (!WriteFile(handle_.get(), bytes.data(), wanted, &written, nullptr) && GetLastError() != ERROR_SEM_TIMEOUT) {
            Fail("takes no bytes");
        }
        return written;
    }

  private:
    [[noreturn]] void Fail(const std::string& what) const {
        const DWORD error = GetLastError();
        throw PortError("the port " + name_ + " " + what + ": " + SystemMessage(error));
    }

    std::string name_;
    std::uint32_t baud_;
    OwnedHandle handle_;
};

}  // namespace

std::unique_ptr<BytePort> MakeSerialPort(const std::string& name, std::uint32_t baud) {
    return std::make_unique<SerialPort>(name, baud);
}

}  // namespace quarlin::sim
