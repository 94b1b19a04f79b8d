// SPDX-License-Identifier: Apache-2.0
// The native methods of com.norvane.quarlin.bcr.QlBarcode.
#include "jni/barcode_delivery.h"
#include "jni/barcode_objects.h"
#include "jni/wrapper.h"

#include <quarlin/barcode.h>

#include <array>

#include "com_norvane_quarlin_bcr_QlBarcode.h"

using namespace quarlin::jni;

namespace {

template <typename Call>
jint Perform(JNIEnv* env, Call&& call) noexcept {
    return quarlin::jni::Perform<BarcodeGroup>(env, std::forward<Call>(call));
}

template <typename Java, typename Native>
Java Query(JNIEnv* env, QLerr (*function)(Native*)) noexcept {
    return quarlin::jni::Query<BarcodeGroup, Java, Native>(env, function);
}

jstring QueryText(JNIEnv* env, QLerr (*function)(char*, unsigned int*), const char* failure) noexcept {
    return Contain<BarcodeGroup>(env, failure, [&]() -> jstring {
        std::array<char, 1024> text{};
        unsigned int size = text.size();
        if (!Succeeded<BarcodeGroup>(env, function(text.data(), &size))) {
            return nullptr;
        }
        return NewJavaString(env, text.data());
    });
}

jint SetFixedText(JNIEnv* env, QLerr (*function)(unsigned int, const char*), jboolean asTop, jstring text) noexcept {
    return Perform(env, [&] {
        const NarrowArgument narrow(env, text);
        return function(IsTrue(asTop) ? 1 : 0, narrow.Get());
    });
}

// The object is made before the result is looked at: a failure of the VM comes before one of the scanner.
jobject QueryFixedText(JNIEnv* env, QLerr (*function)(unsigned int*, char*)) noexcept {
    return Contain<BarcodeGroup>(env, kUnknownFailure, [&]() -> jobject {
        unsigned int asTop = 0;
        std::array<char, QLBCR_TEXT_SIZE> text{};
        const QLerr result = function(&asTop, text.data());
        jobject data = NewFixData(env, asTop != 0, text.data());
        return Succeeded<BarcodeGroup>(env, result) ? data : nullptr;
    });
}

}  // namespace

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1Initialize(JNIEnv* env, jclass /*self*/) {
    return Perform(env, QLBCR_Initialize);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1Uninitialize(JNIEnv* env, jclass /*self*/) {
    return Perform(env, QLBCR_Uninitialize);
}

// What setting the callback gives is returned, and not raised.
jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1Enable(JNIEnv* env, jclass /*self*/) {
    return Contain<BarcodeGroup>(env, "Java Wrapper:Unable to set callback for the device", [&]() -> jint {
        if (const QLerr result = QLBCR_Enable(); result != QLERR_OK) {
            return BarcodeGroup::Raise(env, result);
        }
        return QLBCR_SetCallback(DeliverBarcodeEvent);
    });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1Disable(JNIEnv* env, jclass /*self*/) {
    return Perform(env, QLBCR_Disable);
}

jboolean Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1IsEnabled(JNIEnv* env, jclass /*self*/) {
    return Query<jboolean>(env, QLBCR_IsEnabled);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1StartScanning(JNIEnv* env, jclass /*self*/) {
    return Perform(env, QLBCR_StartScanning);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1StopScanning(JNIEnv* env, jclass /*self*/) {
    return Perform(env, QLBCR_StopScanning);
}

jobjectArray Java_com_norvane_quarlin_bcr_QlBarcode_QLBCR_1GetBarcodeDevices(JNIEnv* env, jclass /*self*/,
                                                                             jclass deviceClass, jint capacity) {
    return Contain<BarcodeGroup>(
        env, "Java Wrapper: Error while trying to return barcode devices", [&]() -> jobjectArray {
            if (deviceClass == nullptr) {
                ThrowBarcodeJavaException(QLERR_INVALID_ARGUMENT, "deviceClass cannot be NULL");
                return nullptr;
            }
            BarcodeDevices devices(capacity);
            if (!Succeeded<BarcodeGroup>(env, QLBCR_GetBarcodeDevices(devices.Records(), devices.Count()))) {
                return nullptr;
            }
            return devices.ToJava(env, deviceClass);
        });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SelectDevice(JNIEnv* env, jclass /*self*/, jint index) {
    return Perform(env, [&] { return QLBCR_SelectDevice(index); });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1GetNoOfBarcodeDevices(JNIEnv* env, jclass /*self*/) {
    return Query<jint>(env, QLBCR_dotNet_GetNoOfDevices);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1GetDeviceType(JNIEnv* env, jclass /*self*/) {
    return Query<jint>(env, QLBCR_GetDeviceType);
}

jstring Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1GetDeviceName(JNIEnv* env, jclass /*self*/) {
    return QueryText(env, QLBCR_GetDeviceName, "Java Wrapper: Unable to return device name");
}

jstring Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1GetDeviceFirmwareVersion(JNIEnv* env, jclass /*self*/) {
    return QueryText(env, QLBCR_GetDeviceFirmwareVersion, "Java Wrapper: Unable to return firmware version");
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetAllowExternalBarcodeDevice(JNIEnv* env, jclass /*self*/,
                                                                                  jboolean allow) {
    return Perform(env, [&] { return QLBCR_SetAllowExternalBarcodeDevice(IsTrue(allow) ? 1 : 0); });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1EnableSymbology(JNIEnv* env, jclass /*self*/, jboolean enable,
                                                                    jstring name) {
    return Perform(env, [&] {
        const WideArgument wide(env, name);
        return QLBCR_EnableSymbology(IsTrue(enable) ? 1 : 0, wide.Get());
    });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1EnableSymbologies(JNIEnv* env, jclass /*self*/, jboolean enable,
                                                                      jint symbology) {
    return Perform(
        env, [&] { return QLBCR_EnableSymbologies(IsTrue(enable) ? 1 : 0, static_cast<unsigned int>(symbology)); });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetTriggerMode(JNIEnv* env, jclass /*self*/, jint mode) {
    return Perform(env, [&] { return QLBCR_SetTriggerMode(static_cast<unsigned int>(mode)); });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetHardwareTriggerEnabled(JNIEnv* env, jclass /*self*/,
                                                                              jboolean enable) {
    return Perform(env, [&] { return QLBCR_SetHardwareTriggerEnabled(IsTrue(enable) ? 1 : 0); });
}

jboolean Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1IsHardwareTriggerEnabled(JNIEnv* env, jclass /*self*/) {
    return Query<jboolean>(env, QLBCR_IsHardwareTriggerEnabled);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetSoundEnabled(JNIEnv* env, jclass /*self*/, jboolean enable) {
    return Perform(env, [&] { return QLBCR_SetSoundEnabled(IsTrue(enable) ? 1 : 0); });
}

jboolean Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1IsSoundEnabled(JNIEnv* env, jclass /*self*/) {
    return Query<jboolean>(env, QLBCR_IsSoundEnabled);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetSReadSuccessSoundFile(JNIEnv* env, jclass /*self*/,
                                                                             jstring path) {
    return Perform(env, [&] {
        const WideArgument wide(env, path);
        return QLBCR_SetReadSuccessSoundFile(wide.Get());
    });
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetPrefixData(JNIEnv* env, jclass /*self*/, jboolean asTop,
                                                                  jstring text) {
    return SetFixedText(env, QLBCR_SetPrefixData, asTop, text);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetSuffixData(JNIEnv* env, jclass /*self*/, jboolean asTop,
                                                                  jstring text) {
    return SetFixedText(env, QLBCR_SetSuffixData, asTop, text);
}

jobject Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1GetPrefixData(JNIEnv* env, jclass /*self*/) {
    return QueryFixedText(env, QLBCR_GetPrefixData);
}

jobject Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1GetSuffixData(JNIEnv* env, jclass /*self*/) {
    return QueryFixedText(env, QLBCR_GetSuffixData);
}

jint Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1SetDataEditingMode(JNIEnv* env, jclass /*self*/, jint mode,
                                                                       jstring target, jstring cont, jint start,
                                                                       jint end) {
    return Perform(env, [&] {
        const NarrowArgument narrowTarget(env, target);
        const NarrowArgument narrowCont(env, cont);
        return QLBCR_SetDataEditingMode(static_cast<unsigned int>(mode), narrowTarget.Get(), narrowCont.Get(), start,
                                        end);
    });
}

jobject Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1GetDataEditingMode(JNIEnv* env, jclass /*self*/) {
    return Contain<BarcodeGroup>(env, kUnknownFailure, [&]() -> jobject {
        EditMode mode;
        if (!Succeeded<BarcodeGroup>(env, QLBCR_GetDataEditingMode(&mode.mode, mode.target.data(), mode.cont.data(),
                                                                   &mode.start, &mode.end))) {
            return nullptr;
        }
        return NewEditModeData(env, mode);
    });
}
