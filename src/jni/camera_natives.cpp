// SPDX-License-Identifier: Apache-2.0
// The native methods of com.norvane.quarlin.camera.CameraLight.
#include "jni/wrapper.h"

#include <quarlin/camera.h>

#include <cstdint>

#include "com_norvane_quarlin_camera_CameraLight.h"

using namespace quarlin::jni;

jint Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1Initialize(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLCAM_Initialize);
}

jint Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1Uninitialize(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLCAM_Uninitialize);
}

jint Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1SetCameraLightOn(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLCAM_SetCameraLightOn);
}

jint Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1SetCameraLightOff(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLCAM_SetCameraLightOff);
}

jint Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1TurnCameraLightOnForTime(JNIEnv* env, jclass /*self*/,
                                                                                 jint seconds) {
    return Perform<ResultGroup>(env, [&] { return QLCAM_TurnCameraLightOnForTime(seconds); });
}

jboolean Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1IsCameraLightOn(JNIEnv* env, jclass /*self*/) {
    return Query<ResultGroup, jboolean, bool>(env, QLCAM_IsCameraLightOn);
}

jint Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1GetCameraLightTime(JNIEnv* env, jclass /*self*/) {
    return Query<ResultGroup, jint, std::uint8_t>(env, QLCAM_GetCameraLightTime);
}
