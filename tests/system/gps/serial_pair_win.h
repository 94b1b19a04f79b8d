// SPDX-License-Identifier: Apache-2.0
// One serial cable of the simulated machine for one test. The library under test opens the near end, the test is the
// receiver at the far end.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "support/owners_win.h"

namespace quarlin::test {

class SerialPair {
  public:
    enum class Cable {
        kNullModem,  // both ends are always there
        kUsb,        // the near end is there while the far end is open
    };

    // Takes a free cable, which no other test gets until the end of the scope, and opens its far end. Throws
    // std::runtime_error when none becomes free.
    explicit SerialPair(Cable cable = Cable::kNullModem);
    SerialPair(const SerialPair&) = delete;
    SerialPair& operator=(const SerialPair&) = delete;
    ~SerialPair();

    // The number of the near end's port.
    int Port() const { return port_; }
    // Its name, "COM3".
    std::string PortName() const { return "COM" + std::to_string(port_); }

    // Writes at the far end, and returns when the cable has taken everything.
    void Send(std::string_view bytes);

    // On a USB cable these are plugging in and unplugging: they return when the near end has come or gone.
    void OpenFarEnd();
    void CloseFarEnd();
    bool FarEndIsOpen() const { return farEnd_.Valid(); }

    // The near end once more, as another program would open it; not valid when the port is not there.
    UniqueHandle OpenNearEnd() const;

  private:
    Cable cable_;
    int port_ = 0;
    UniqueHandle turn_;
    UniqueHandle farEnd_;
};

}  // namespace quarlin::test
