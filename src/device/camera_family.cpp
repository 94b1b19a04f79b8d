// SPDX-License-Identifier: Apache-2.0
#include "device/camera_family.h"

namespace quarlin::device {

void CameraFamily::Initialize() {
    state_ = State::kInitializing;
    light_.reset();
    auto light = std::make_unique<CameraLight>(*source_);
    Require(light->IsSupported(), QLERR_OP_UNSUPPORTED, "Camera light API is unsupported .");
    light_ = std::move(light);
    state_ = State::kInitialized;
}

void CameraFamily::Uninitialize() {
    Light();
    light_.reset();
    state_ = State::kNotInitialized;
}

}  // namespace quarlin::device
