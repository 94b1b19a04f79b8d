// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jni/java_text.h"

#include <jni.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace quarlin::jni {

// A local reference that is let go at the end of the scope: in loops they would pile up.
template <typename Reference>
class Local {
  public:
    Local(JNIEnv* env, Reference reference) noexcept : env_(env), reference_(reference) {}
    Local(const Local&) = delete;
    Local& operator=(const Local&) = delete;
    ~Local() { env_->DeleteLocalRef(reference_); }

    [[nodiscard]] Reference Get() const noexcept { return reference_; }

  private:
    JNIEnv* env_;
    Reference reference_;
};

inline jclass FindClass(JNIEnv* env, const char* name) {
    return Made(env->FindClass(name));
}

inline jmethodID FindConstructor(JNIEnv* env, jclass ofClass, const char* signature = "()V") {
    return Made(env->GetMethodID(ofClass, "<init>", signature));
}

// Members of one object, by name. A class without such a member is an error of the VM.
class Fields {
  public:
    Fields(JNIEnv* env, jobject object) : env_(env), object_(object), class_(env, env->GetObjectClass(object)) {}

    void SetInt(const char* name, jint value) { env_->SetIntField(object_, Find(name, "I"), value); }
    void SetBoolean(const char* name, bool value) {
        env_->SetBooleanField(object_, Find(name, "Z"), value ? JNI_TRUE : JNI_FALSE);
    }
    void SetDouble(const char* name, jdouble value) { env_->SetDoubleField(object_, Find(name, "D"), value); }
    void SetText(const char* name, jstring value) {
        const Local<jstring> text(env_, value);
        env_->SetObjectField(object_, Find(name, "Ljava/lang/String;"), text.Get());
    }

  private:
    jfieldID Find(const char* name, const char* signature) {
        return Made(env_->GetFieldID(class_.Get(), name, signature));
    }

    JNIEnv* env_;
    jobject object_;
    Local<jclass> class_;
};

// For methods that fill an object of the caller's.
inline void RequireObject(JNIEnv* env, jobject object, const char* message) {
    if (object == nullptr) {
        const Local<jclass> refusal(env, FindClass(env, "java/lang/IllegalArgumentException"));
        env->ThrowNew(refusal.Get(), message);
        throw JavaErrorPending{};
    }
}

// Stores what was made at its place, and lets the reference to it go.
inline void StoreElement(JNIEnv* env, jobjectArray array, std::size_t index, jobject element) {
    const Local<jobject> held(env, element);
    env->SetObjectArrayElement(array, static_cast<jsize>(index), held.Get());
    if (env->ExceptionCheck() == JNI_TRUE) {
        throw JavaErrorPending{};
    }
}

// As many bytes as there are.
inline jbyteArray NewByteArray(JNIEnv* env, std::span<const std::uint8_t> bytes) {
    const auto length = static_cast<jsize>(bytes.size());
    jbyteArray array = Made(env->NewByteArray(length));
    if (length != 0) {
        env->SetByteArrayRegion(array, 0, length, reinterpret_cast<const jbyte*>(bytes.data()));
    }
    return array;
}

}  // namespace quarlin::jni
