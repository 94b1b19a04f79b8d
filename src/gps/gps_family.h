// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/quarlin_exception.h"
#include "gps/gps_impl.h"

#include <array>
#include <cstdint>
#include <memory>

namespace quarlin::gps {

// The family's process-wide state: one receiver at most. Not locked: initialising, uninitialising, enabling and
// disabling belong to one thread.
class GpsFamily {
  public:
    void Initialize(std::int32_t portNumber);
    void Uninitialize();

    // The receiver; raises QLERR_INVALID_STATE when not initialised.
    GpsImpl& Gps() const {
        Require(gps_ != nullptr, QLERR_INVALID_STATE, "GPS has not been initialized.");
        return *gps_;
    }
    // Raises QLERR_INVALID_STATE, in words of its own, when not initialised. A second line of defence of two functions:
    // the receiver exists exactly while the family is initialised.
    void RequireInitialized() const;

    // 1 after a port check that succeeded, 0 after one that failed. Outlives Uninitialize.
    std::int32_t ReceiverCount() const { return receiverCount_; }

  private:
    std::unique_ptr<GpsImpl> gps_;
    bool initialized_ = false;
    std::int32_t receiverCount_ = 0;
    std::array<char, 8> portName_{};
};

extern GpsFamily gpsFamily;

}  // namespace quarlin::gps
