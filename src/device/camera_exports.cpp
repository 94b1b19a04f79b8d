// SPDX-License-Identifier: Apache-2.0
#include "core/export_frame.h"
#include "device/camera_family.h"

#include <quarlin/camera.h>

using namespace quarlin;
using namespace quarlin::device;

namespace {

template <typename Value>
QLerr Get(Value* out, Value (CameraLight::*getter)() const) {
    return Export([&] {
        const CameraLight& light = cameraFamily.Light();
        Require(out != nullptr, QLERR_INVALID_ARGUMENT, "Camera light parameter is null.");
        *out = (light.*getter)();
    });
}

}  // namespace

QLerr QLCAM_Initialize() {
    return Export([] { cameraFamily.Initialize(); });
}

QLerr QLCAM_Uninitialize() {
    return Export([] { cameraFamily.Uninitialize(); });
}

QLerr QLCAM_SetCameraLightOn() {
    return Export([] { cameraFamily.Light().TurnOn(); });
}

QLerr QLCAM_SetCameraLightOff() {
    return Export([] { cameraFamily.Light().TurnOff(); });
}

QLerr QLCAM_TurnCameraLightOnForTime(int seconds) {
    return Export([&] { cameraFamily.Light().TurnOnForTime(seconds); });
}

QLerr QLCAM_IsCameraLightOn(bool* on) {
    return Get(on, &CameraLight::IsOn);
}

QLerr QLCAM_GetCameraLightTime(uint8_t* time) {
    return Get(time, &CameraLight::Time);
}
