// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/gps_reading.h"

#include <string>

namespace quarlin::qlctl {

// The GPS receiver from initialised and reading to closed again: the destructor disables and uninitialises. Failing
// calls throw a Failure. One at a time: the library knows one receiver.
class GpsSession {
  public:
    explicit GpsSession(int port);

    const std::string& PortName() const { return portName_; }
    bool IsSending() const;
    GpsReading Read() const;

  private:
    // Two members, so that a port which cannot be opened is uninitialised all the same.
    struct Initialized {
        explicit Initialized(int port);
        ~Initialized();
        Initialized(const Initialized&) = delete;
        Initialized& operator=(const Initialized&) = delete;
    };
    struct Enabled {
        Enabled();
        ~Enabled();
        Enabled(const Enabled&) = delete;
        Enabled& operator=(const Enabled&) = delete;
    };

    std::string portName_;
    Initialized initialized_;
    Enabled enabled_;
};

}  // namespace quarlin::qlctl
