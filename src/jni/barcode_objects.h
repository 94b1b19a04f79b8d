// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/barcode.h>

#include <jni.h>

#include <array>
#include <vector>

namespace quarlin::jni {

// The objects that barcode methods hand out. What fails in the VM is thrown as JavaErrorPending.

// com.norvane.quarlin.bcr.FixData.
jobject NewFixData(JNIEnv* env, bool asTop, const char* text);

// What QLBCR_GetDataEditingMode fills.
struct EditMode {
    unsigned int mode = 0;
    std::array<char, QLBCR_TEXT_SIZE> target{};
    std::array<char, QLBCR_TEXT_SIZE> cont{};
    int start = 0;
    int end = 0;
};

// com.norvane.quarlin.bcr.EditModeData.
jobject NewEditModeData(JNIEnv* env, const EditMode& mode);

// The list that QLBCR_GetBarcodeDevices fills, and objects of a class of the caller's made of it.
class BarcodeDevices {
  public:
    explicit BarcodeDevices(jint capacity);

    QLBCR_DEVICE_INFO* Records() { return records_.data(); }
    int* Count() { return &count_; }

    // One object for each device that the library has counted.
    jobjectArray ToJava(JNIEnv* env, jclass deviceClass);

  private:
    std::vector<QLBCR_DEVICE_INFO> records_;
    int count_;
};

}  // namespace quarlin::jni
