// SPDX-License-Identifier: Apache-2.0
#include "gps/gps_family.h"

#include "core/quarlin_exception.h"
#include "gps/com_port.h"
#include "gps/gps_impl_gen_win.h"

#include <cstdio>

namespace quarlin::gps {

GpsFamily gpsFamily;

void GpsFamily::Initialize(std::int32_t portNumber) {
    constexpr const char* kIncorrectPort = "Incorrect COM port";
    constexpr std::int32_t kHighestPort = 255;
    if (initialized_) {
        Require(receiverCount_ >= 1, QLERR_INVALID_ARGUMENT, kIncorrectPort);
        return;
    }
    Require(portNumber >= 1 && portNumber <= kHighestPort, QLERR_INVALID_ARGUMENT, "COM port value is out of bounds");
    // Without the prefix of the device namespace: the system opens COM1 to COM9 by these names.
    std::snprintf(portName_.data(), portName_.size(), "COM%d", static_cast<int>(portNumber));
    // No receiver until the check has succeeded, also when it raises.
    receiverCount_ = 0;
    if (!IsComPortAvailable(portName_.data())) {
        throw QuarlinException(QLERR_INVALID_ARGUMENT, kIncorrectPort);
    }
    gps_ = std::make_unique<GpsImplGen>();
    gps_->SetPortName(portName_.data());
    receiverCount_ = 1;
    initialized_ = true;
}

void GpsFamily::Uninitialize() {
    Gps().Close();
    initialized_ = false;
    gps_.reset();
}

void GpsFamily::RequireInitialized() const {
    Require(initialized_, QLERR_INVALID_STATE, "Incorrect COM port");
}

}  // namespace quarlin::gps
