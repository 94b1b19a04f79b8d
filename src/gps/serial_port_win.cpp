// SPDX-License-Identifier: Apache-2.0
#include "gps/serial_port_win.h"

#include "core/quarlin_exception.h"

namespace quarlin::gps {
namespace {

void ApplyReceiverSettings(DCB& settings) {
    settings.DCBlength = sizeof settings;
    settings.BaudRate = CBR_9600;
    settings.fBinary = TRUE;
    settings.fParity = FALSE;
    settings.fOutxCtsFlow = TRUE;
    settings.fOutxDsrFlow = FALSE;
    settings.fDtrControl = DTR_CONTROL_HANDSHAKE;
    settings.fDsrSensitivity = FALSE;
    settings.fTXContinueOnXoff = TRUE;
    settings.fOutX = FALSE;
    settings.fInX = FALSE;
    settings.fErrorChar = FALSE;
    settings.fNull = FALSE;
    settings.fRtsControl = RTS_CONTROL_HANDSHAKE;
    settings.fAbortOnError = FALSE;
    settings.ByteSize = 8;
    settings.Parity = NOPARITY;
    settings.StopBits = ONESTOPBIT;
}

// Milliseconds.
constexpr COMMTIMEOUTS kTimeouts{
    .ReadIntervalTimeout = 1000,
    .ReadTotalTimeoutMultiplier = 0,
    .ReadTotalTimeoutConstant = 1500,
    .WriteTotalTimeoutMultiplier = 0,
    .WriteTotalTimeoutConstant = 1000,
};

}  // namespace

void SerialPort::Open(const char* name) {
    handle_ = CreateFileA(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    Require(handle_ != INVALID_HANDLE_VALUE, QLERR_INVALID_STATE, "CreateFile failed");
    Configure();
    PurgeComm(handle_, PURGE_RXCLEAR);
}

void SerialPort::Configure() {
    DCB settings{};
    // Unchecked: a port that does not tell its settings gets ours all the same.
    GetCommState(handle_, &settings);
    ApplyReceiverSettings(settings);
    Require(SetCommState(handle_, &settings), QLERR_INVALID_STATE, "SetCommState failed");
    COMMTIMEOUTS timeouts = kTimeouts;
    Require(SetCommTimeouts(handle_, &timeouts), QLERR_INVALID_STATE, "SetComTimeouts failed");
}

void SerialPort::Close() {
    CloseHandle(handle_.exchange(INVALID_HANDLE_VALUE));
}

SerialPort::ReadResult SerialPort::ReadByte(unsigned char& byte) const {
    auto* const handle = handle_.load();
    if (handle == INVALID_HANDLE_VALUE) {
        // The number of the closed handle may belong to another file by now. (A read that starts in the very instant of
        // the close can still meet that file.)
        return ReadResult::kClosed;
    }
    // A read that times out need not set an error: an old one must not be taken for its own.
    SetLastError(ERROR_SUCCESS);
    DWORD bytesRead = 0;
    if (ReadFile(handle, &byte, 1, &bytesRead, nullptr) && bytesRead == 1) {
        return ReadResult::kByte;
    }
    return GetLastError() == ERROR_INVALID_HANDLE ? ReadResult::kClosed : ReadResult::kNothing;
}

}  // namespace quarlin::gps
