// SPDX-License-Identifier: Apache-2.0
#include "jni/barcode_delivery.h"

#include "jni/delivery_thread.h"
#include "jni/java_exceptions.h"
#include "jni/java_objects.h"
#include "jni/java_text.h"
#include "jni/java_vm.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <span>
#include <string>

#include "com_norvane_quarlin_bcr_CoreNatives.h"

namespace quarlin::jni {
namespace {

std::span<const std::uint8_t> Bytes(const std::uint8_t* data, std::int32_t length) {
    if (data == nullptr || length <= 0) {
        return {};
    }
    return {data, static_cast<std::size_t>(length)};
}

// Null when the thread may not deliver.
JNIEnv* AttachForScan(JavaVM* vm) {
    void* env = nullptr;
    const jint state = vm->GetEnv(&env, kJniVersion);
    if (state == JNI_EVERSION) {
        Diagnose("Version of JVM not supported");
        return nullptr;
    }
    if (state != JNI_EDETACHED) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "Get JVM failed: %d\n", static_cast<int>(state));
        Diagnose(text.data());
        return nullptr;
    }
    if (vm->AttachCurrentThread(&env, nullptr) != JNI_OK) {
        Diagnose("Failed to attach JVM");
        return nullptr;
    }
    return static_cast<JNIEnv*>(env);
}

void CallWithScan(JNIEnv* env, const CallbackClass& callback, const QLBCR_BARCODE_DATA& scan) {
    const auto data = Bytes(scan.data, scan.dataLength);
    const auto symbology = Bytes(scan.symbologyId, scan.symbologyIdLength);
    // Copies with a terminator, which neither has.
    const std::string dataCopy(data.begin(), data.end());
    const std::string symbologyCopy(symbology.begin(), symbology.end());

    jstring dataText = NewJavaString(env, dataCopy.c_str());
    jbyteArray dataBytes = NewByteArray(env, data);
    jstring symbologyText = NewJavaString(env, symbologyCopy.c_str());
    jbyteArray symbologyBytes = NewByteArray(env, symbology);
    env->CallStaticVoidMethod(callback.type, callback.method, static_cast<jint>(scan.deviceIndex), dataText,
                              static_cast<jint>(data.size()), dataBytes, symbologyText,
                              static_cast<jint>(symbology.size()), symbologyBytes);
}

}  // namespace

void DeliverBarcodeEvent(const QLBCR_BARCODE_DATA* scan) {
    JavaVM* const vm = bcrVm;
    if (vm == nullptr) {
        Diagnose("Cannot find JVM\n");
        return;
    }
    JNIEnv* const env = AttachForScan(vm);
    if (env == nullptr) {
        return;
    }
    const DetachAtEnd attached(vm);
    const CallbackClass callback = bcrCallbackClass.Load();
    if (callback.method == nullptr) {
        Diagnose("Unable to find callback");
        return;
    }
    try {
        CallWithScan(env, callback, *scan);
    } catch (const JavaErrorPending&) {
        // The VM hands its error to the thread's handler of uncaught exceptions when the thread is detached.
    } catch (const std::exception& failure) {
        std::array<char, 1000> text{};
        std::snprintf(text.data(), text.size(), "%s,%s", "Error in sdfsdfsd", failure.what());
        ThrowBarcodeJavaException(QLERR_INTERNAL_ERROR, text.data());
    }
}

}  // namespace quarlin::jni

using namespace quarlin::jni;

jboolean Java_com_norvane_quarlin_bcr_CoreNatives_nInit(JNIEnv* env, jclass /*self*/, jclass exceptionClass,
                                                        jclass callbackClass) {
    if (!KeepVm(env, bcrVm)) {
        return JNI_FALSE;
    }
    bcrExceptionClass = KeepClass(env, exceptionClass);
    const CallbackClass callback =
        KeepCallbackClass(env, callbackClass, "nativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V");
    bcrCallbackClass.Store(callback);
    if (callback.method == nullptr) {
        Diagnose("Unable to find callback");
        return JNI_FALSE;
    }
    return JNI_TRUE;
}
