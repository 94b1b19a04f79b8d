// SPDX-License-Identifier: Apache-2.0
#include "jni/java_exceptions.h"

#include "core/error_table.h"
#include "jni/java_objects.h"
#include "jni/java_text.h"
#include "jni/java_vm.h"
#include "jni/modified_utf8.h"

#include <array>
#include <atomic>
#include <cstdio>

namespace quarlin::jni {
namespace {

constexpr std::size_t kMessageSize = 1000;

jint ThrowNew(JNIEnv* env, jclass thrown, const char* message) noexcept {
    if (message == nullptr || IsModifiedUtf8(message)) {
        return env->ThrowNew(thrown, message);
    }
    try {
        return env->ThrowNew(thrown, ToModifiedUtf8(message).c_str());
    } catch (...) {
        // No memory to mend the message: the class alone tells of the failure.
        return env->ThrowNew(thrown, nullptr);
    }
}

// A new exception takes the place of one that is pending.
void ForgetPending(JNIEnv* env) noexcept {
    if (env->ExceptionCheck() == JNI_TRUE) {
        env->ExceptionClear();
    }
}

// Throws an exception of a class whose constructor takes no message. The message is that of its cause then.
void ThrowWithCause(JNIEnv* env, jclass thrown, const char* message) {
    const Local<jobject> exception(env, Made(env->NewObject(thrown, FindConstructor(env, thrown))));
    const Local<jclass> causeClass(env, FindClass(env, "java/lang/RuntimeException"));
    const Local<jstring> text(env, NewJavaString(env, message));
    const Local<jobject> cause(
        env, Made(env->NewObject(causeClass.Get(), FindConstructor(env, causeClass.Get(), "(Ljava/lang/String;)V"),
                                 text.Get())));
    jmethodID initCause = Made(env->GetMethodID(thrown, "initCause", "(Ljava/lang/Throwable;)Ljava/lang/Throwable;"));
    const Local<jobject> itself(env, env->CallObjectMethod(exception.Get(), initCause, cause.Get()));
    // Asked for by name: a VM that checks its callers does not take the result for an answer.
    if (env->ExceptionCheck() == JNI_TRUE) {
        throw JavaErrorPending{};
    }
    env->Throw(static_cast<jthrowable>(exception.Get()));
}

// Java's class for a buffer that is too small is one of those, and ThrowNew would give an error of the VM in its place.
void ThrowBufferOverflow(JNIEnv* env, jclass thrown, const char* message) noexcept {
    if (env->GetMethodID(thrown, "<init>", "(Ljava/lang/String;)V") != nullptr) {
        ThrowNew(env, thrown, message);
        return;
    }
    env->ExceptionClear();
    try {
        ThrowWithCause(env, thrown, message);
    } catch (...) {
        // The VM's own error is on its way, or there is no memory for the text.
        if (env->ExceptionCheck() == JNI_FALSE) {
            env->ThrowNew(thrown, nullptr);
        }
    }
}

// Null for codes without one.
const char* GroupClassName(QLerr code) noexcept {
    switch (code) {
        case QLERR_INVALID_ARGUMENT:
            return "java/lang/IllegalArgumentException";
        case QLERR_INVALID_STATE:
            return "java/lang/IllegalStateException";
        case QLERR_IO_ERROR:
            return "java/io/IOException";
        case QLERR_OP_UNSUPPORTED:
            return "java/lang/UnsupportedOperationException";
        case QLERR_BUFFER_OVERFLOW:
            // No VM has a class of this name, and callers rely on the group's class for this code.
            return "java/lang/java.nio.BufferOverflowException";
        default:
            return nullptr;
    }
}

const char* ResultClassName(QLerr code) noexcept {
    switch (code) {
        case QLERR_BUFFER_OVERFLOW:
            return "java/nio/BufferOverflowException";
        case QLERR_INVALID_ARGUMENT:
        case QLERR_INVALID_STATE:
        case QLERR_IO_ERROR:
        case QLERR_OP_UNSUPPORTED:
            return GroupClassName(code);
        default:
            return "java/lang/RuntimeException";
    }
}

jint ThrowWithText(JNIEnv* env, jclass thrown, const char* text, const char* message) noexcept {
    std::array<char, kMessageSize> whole{};
    // printf's own word for a null text, which not every library has.
    std::snprintf(whole.data(), whole.size(), "%s,%s", text, message == nullptr ? "(null)" : message);
    return ThrowNew(env, thrown, whole.data());
}

jint ThrowForGroup(const std::atomic<JavaVM*>& groupVm, const std::atomic<jclass>& groupClass, QLerr code,
                   const char* message) noexcept {
    JavaVM* const vm = groupVm;
    if (vm == nullptr) {
        Diagnose("Cannot find JVM\n");
        return JNI_ERR;
    }
    void* found = nullptr;
    if (vm->GetEnv(&found, kJniVersion) != JNI_OK || found == nullptr) {
        Diagnose("JNI Env == NULL\n");
        return JNI_ERR;
    }
    auto* const env = static_cast<JNIEnv*>(found);
    jclass exceptionClass = groupClass;
    if (exceptionClass == nullptr) {
        Diagnose("exceptionClass == NULL\n");
        return JNI_ERR;
    }
    ForgetPending(env);

    if (code == QLERR_OK) {
        return ThrowNew(env, exceptionClass, "");
    }
    if (const char* const name = GroupClassName(code)) {
        if (jclass standard = env->FindClass(name)) {
            const jint thrown = ThrowNew(env, standard, message);
            env->DeleteLocalRef(standard);
            return thrown;
        }
        ForgetPending(env);
        std::array<char, kErrorNameSize> text{"Unknown"};
        if (message != nullptr) {
            QlGeneralErrorName(code, text.data());
        }
        return ThrowWithText(env, exceptionClass, text.data(), message);
    }
    if (code == QLERR_INTERNAL_ERROR) {
        return ThrowWithText(env, exceptionClass, "Unknown", message);
    }
    return ThrowWithText(env, exceptionClass, "Unexpected behaviour encountered", message);
}

}  // namespace

jint ThrowBarcodeJavaException(QLerr code, const char* message) noexcept {
    return ThrowForGroup(bcrVm, bcrExceptionClass, code, message);
}

jint ThrowRfidJavaException(QLerr code, const char* message) noexcept {
    return ThrowForGroup(rfidVm, rfidExceptionClass, code, message);
}

void ThrowJavaExceptionForResult(JNIEnv* env, QLerr code) noexcept {
    if (code == QLERR_OK) {
        return;
    }
    ForgetPending(env);
    jclass thrown = env->FindClass(ResultClassName(code));
    if (thrown == nullptr) {
        return;
    }
    const LastError error = FetchLastError(code);
    if (code == QLERR_BUFFER_OVERFLOW) {
        ThrowBufferOverflow(env, thrown, error.message.data());
    } else {
        ThrowNew(env, thrown, error.message.data());
    }
    env->DeleteLocalRef(thrown);
}

void ThrowInternalError(JNIEnv* env, const char* message) noexcept {
    ForgetPending(env);
    if (jclass thrown = env->FindClass(ResultClassName(QLERR_INTERNAL_ERROR))) {
        ThrowNew(env, thrown, message);
        env->DeleteLocalRef(thrown);
    }
}

}  // namespace quarlin::jni
