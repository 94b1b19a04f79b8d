// SPDX-License-Identifier: Apache-2.0
// The native methods of com.norvane.quarlin.device.DeviceManager.
#include "jni/java_objects.h"
#include "jni/wrapper.h"

#include <quarlin/device.h>

#include <iterator>

#include "com_norvane_quarlin_device_DeviceManager.h"

using namespace quarlin::jni;

namespace {

jboolean QueryDevice(JNIEnv* env, QLerr (*function)(int, bool*), jint device) noexcept {
    return Query<ResultGroup, jboolean, bool>(env, [&](bool* out) { return function(device, out); });
}

void Fill(JNIEnv* env, jobject object, const BatteryInfo& info) {
    Fields fields(env, object);
    // All of the characters: nothing says that one of them ends the text.
    fields.SetText("BatteryName", NewJavaString(env, info.BatteryName, std::size(info.BatteryName)));
    fields.SetInt("Chemistry", info.Chemistry);
    fields.SetInt("PowerState", info.PowerState);
    fields.SetInt("RemainingCapacity", info.RemainingCapacity);
    fields.SetInt("FullChargedCapacity", info.FullChargedCapacity);
    fields.SetInt("DesignedCapacity", info.DesignedCapacity);
    fields.SetInt("Voltage", info.Voltage);
    fields.SetInt("Rate", info.Rate);
    fields.SetInt("TotalChargeIndex", info.TotalChargeIndex);
    fields.SetInt("Temperature", info.Temperature);
    fields.SetInt("BatteryHealth", info.BatteryHealth);
    fields.SetText("BatteryID", NewJavaString(env, info.BatteryID, std::size(info.BatteryID)));
    fields.SetInt("LastRecalibrationDate", info.LastRecalibrationDate);
    fields.SetInt("EnvironmentStatus", info.EnvironmentStatus);
}

}  // namespace

jint Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1Initialize(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLDEVICE_Initialize);
}

// The one method of this group that raises nothing: its result is all that Java gets.
jint Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1Uninitialize(JNIEnv* /*env*/, jclass /*self*/) {
    try {
        return QLDEVICE_Uninitialize();
    } catch (...) {
        return QLERR_INTERNAL_ERROR;
    }
}

jboolean Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDeviceAvailable(JNIEnv* env, jclass /*self*/,
                                                                                    jint device) {
    return QueryDevice(env, QLDEVICE_GetDeviceAvailable, device);
}

jboolean Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDeviceEnabledInBios(JNIEnv* env, jclass /*self*/,
                                                                                        jint device) {
    return QueryDevice(env, QLDEVICE_GetDeviceEnabledInBios, device);
}

jboolean Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDevicePoweredOn(JNIEnv* env, jclass /*self*/,
                                                                                    jint device) {
    return QueryDevice(env, QLDEVICE_GetDevicePoweredOn, device);
}

jint Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetBatteryInfo(JNIEnv* env, jclass /*self*/, jint battery,
                                                                            jobject object) {
    return Contain<ResultGroup>(env, kUnknownFailure, [&]() -> jint {
        RequireObject(env, object, "info cannot be NULL");
        BatteryInfo info{};
        const QLerr result = QLDEVICE_GetBatteryInfo(battery, &info);
        if (Succeeded<ResultGroup>(env, result)) {
            Fill(env, object, info);
        }
        return result;
    });
}
