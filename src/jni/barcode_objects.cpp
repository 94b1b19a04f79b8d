// SPDX-License-Identifier: Apache-2.0
#include "jni/barcode_objects.h"

#include "jni/java_objects.h"
#include "jni/java_text.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace quarlin::jni {
namespace {

jobject NewObject(JNIEnv* env, const char* className) {
    const Local<jclass> type(env, FindClass(env, className));
    return Made(env->NewObject(type.Get(), FindConstructor(env, type.Get())));
}

// A machine has one scanner. The room for more entries than this could be all of its memory.
constexpr jint kMostDevices = 1'000'000;

std::size_t RecordsFor(jint capacity) {
    if (capacity > kMostDevices) {
        throw std::length_error("Too many barcode devices");
    }
    return static_cast<std::size_t>(std::max(capacity, 1));
}

}  // namespace

jobject NewFixData(JNIEnv* env, bool asTop, const char* text) {
    jobject data = NewObject(env, "com/norvane/quarlin/bcr/FixData");
    Fields fields(env, data);
    fields.SetBoolean("bAsTop", asTop);
    fields.SetText("strFixData", NewJavaString(env, text));
    return data;
}

jobject NewEditModeData(JNIEnv* env, const EditMode& mode) {
    jobject data = NewObject(env, "com/norvane/quarlin/bcr/EditModeData");
    Fields fields(env, data);
    fields.SetInt("iEditMode", static_cast<jint>(mode.mode));
    fields.SetInt("iStart", mode.start);
    fields.SetInt("iEnd", mode.end);
    fields.SetText("strTarget", NewJavaString(env, mode.target.data()));
    fields.SetText("strCont", NewJavaString(env, mode.cont.data()));
    return data;
}

BarcodeDevices::BarcodeDevices(jint capacity) : records_(RecordsFor(capacity)), count_(capacity) {
}

jobjectArray BarcodeDevices::ToJava(JNIEnv* env, jclass deviceClass) {
    // With a capacity of 0 the library counts, and fills nothing.
    const auto count = static_cast<std::size_t>(std::max(count_, 0));
    records_.resize(std::max(count, records_.size()));

    jmethodID constructor = FindConstructor(env, deviceClass);
    jobjectArray array = Made(env->NewObjectArray(static_cast<jsize>(count), deviceClass, nullptr));
    for (std::size_t index = 0; index < count; ++index) {
        const QLBCR_DEVICE_INFO& record = records_[index];
        jobject device = Made(env->NewObject(deviceClass, constructor));
        {
            Fields fields(env, device);
            if (record.deviceName != nullptr) {
                fields.SetText("deviceName", NewJavaString(env, record.deviceName));
            }
            fields.SetInt("index", record.index);
            fields.SetInt("iDeviceType", record.iDeviceType);
            fields.SetInt("iInternalNoofDevices", static_cast<jint>(count));
        }
        StoreElement(env, array, index, device);
    }
    return array;
}

}  // namespace quarlin::jni
