// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/loaded_library.h"
#include "core/quarlin_exception.h"
#include "device/camera_light.h"

#include <memory>

namespace quarlin::device {

// The family's process-wide state: one light. Not locked: its callers take turns.
class CameraFamily {
  public:
    constexpr explicit CameraFamily(LibrarySource& source) : source_(&source) {}

    void Initialize();
    void Uninitialize();

    // The light; raises QLERR_INVALID_STATE when not initialised.
    const CameraLight& Light() const {
        Require(state_ == State::kInitialized, QLERR_INVALID_STATE, "Camera light API has not been initialized.");
        return *light_;
    }

  private:
    enum class State {
        kNotInitialized,
        // Under way, or failed.
        kInitializing,
        kInitialized,
    };

    LibrarySource* source_;
    State state_ = State::kNotInitialized;
    std::unique_ptr<CameraLight> light_;
};

extern CameraFamily cameraFamily;

}  // namespace quarlin::device
