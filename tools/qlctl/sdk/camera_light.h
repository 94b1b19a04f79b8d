// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/light_state.h"

namespace quarlin::qlctl {

// The camera light, opened and closed again. Opening switches it off: the library does so. Failing calls throw a
// Failure.
class CameraLight {
  public:
    CameraLight();
    ~CameraLight();
    CameraLight(const CameraLight&) = delete;
    CameraLight& operator=(const CameraLight&) = delete;

    void SwitchOn();
    void SwitchOff();
    void SwitchOnFor(int seconds);
    LightState State() const;
};

}  // namespace quarlin::qlctl
