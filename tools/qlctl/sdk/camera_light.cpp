// SPDX-License-Identifier: Apache-2.0
#include "sdk/camera_light.h"

#include "quarlin/camera.h"
#include "sdk/check.h"

namespace quarlin::qlctl {

CameraLight::CameraLight() {
    Check(QLCAM_Initialize());
}

CameraLight::~CameraLight() {
    QLCAM_Uninitialize();
}

void CameraLight::SwitchOn() {
    Check(QLCAM_SetCameraLightOn());
}

void CameraLight::SwitchOff() {
    Check(QLCAM_SetCameraLightOff());
}

void CameraLight::SwitchOnFor(int seconds) {
    Check(QLCAM_TurnCameraLightOnForTime(seconds));
}

LightState CameraLight::State() const {
    LightState state;
    Check(QLCAM_IsCameraLightOn(&state.on));
    uint8_t timer = 0;
    Check(QLCAM_GetCameraLightTime(&timer));
    state.timer = timer;
    return state;
}

}  // namespace quarlin::qlctl
