// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>
#include <atomic>

namespace quarlin::gps {

// The receiver's serial port, opened for reading only: nothing is ever written to a receiver.
//
// An Open that fails after the port itself was opened keeps the handle, and nothing closes it: neither Close, which is
// for a port that is in use, nor the destructor. The next Open opens the port anew. Callers rely on the port staying
// taken.
class SerialPort {
  public:
    SerialPort() = default;
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    // Opens the port with the receiver's settings and drops stale input. Raises QLERR_INVALID_STATE with the step that
    // failed.
    void Open(const char* name);

    // A read that is pending on another thread ends, by its time-out at the latest, and every later one fails.
    void Close();

    enum class ReadResult {
        kByte,
        kNothing,  // silence, or an error that may pass
        kClosed,
    };
    ReadResult ReadByte(unsigned char& byte) const;

  private:
    void Configure();

    // Read by the reading thread while another closes the port.
    std::atomic<HANDLE> handle_{INVALID_HANDLE_VALUE};
};

}  // namespace quarlin::gps
