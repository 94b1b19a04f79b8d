// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jni/java_text.h"

#include <quarlin/error.h>

#include <jni.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace quarlin::jni {

// A Java array is shorter than what the function would read or write. Nothing has been asked of the reader.
struct ArrayTooShort {
    const char* message;
};

// The elements of a Java array while a function works on them. A null array is a null pointer. What the function wrote
// goes back to Java with WriteBack alone.
template <typename Array, typename Element, Element* (JNIEnv::*Pin)(Array, jboolean*),
          void (JNIEnv::*Unpin)(Array, Element*, jint)>
class PinnedArray {
  public:
    // The function may touch this many elements of it. A number below 0 is not looked at here: the functions refuse it.
    PinnedArray(JNIEnv* env, Array array, std::int64_t needed, const char* tooShort) : env_(env), array_(array) {
        if (array == nullptr) {
            return;
        }
        if (env->GetArrayLength(array) < needed) {
            throw ArrayTooShort{tooShort};
        }
        elements_ = Made((env->*Pin)(array, nullptr));
    }
    PinnedArray(const PinnedArray&) = delete;
    PinnedArray& operator=(const PinnedArray&) = delete;
    ~PinnedArray() {
        if (elements_ != nullptr) {
            (env_->*Unpin)(array_, elements_, release_);
        }
    }

    [[nodiscard]] Element* Get() const { return elements_; }
    void WriteBack() { release_ = 0; }

  private:
    JNIEnv* env_;
    Array array_;
    Element* elements_ = nullptr;
    jint release_ = JNI_ABORT;
};

using PinnedBytes = PinnedArray<jbyteArray, jbyte, &JNIEnv::GetByteArrayElements, &JNIEnv::ReleaseByteArrayElements>;
using PinnedInts = PinnedArray<jintArray, jint, &JNIEnv::GetIntArrayElements, &JNIEnv::ReleaseIntArrayElements>;

}  // namespace quarlin::jni
