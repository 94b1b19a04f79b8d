// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jni/java_exceptions.h"
#include "jni/java_text.h"

#include <quarlin/error.h>

#include <jni.h>

#include <new>
#include <type_traits>
#include <utility>

namespace quarlin::jni {

// What all native methods do, written once: call the function of the interface, fetch the message of a failure, raise
// it in Java, return. A native method says which function, and what becomes of its values.
//
// No C++ exception leaves a method. Where a call into the VM failed, the VM's own error is what Java gets.

// How the groups of families tell Java of a failure, each in its own way. Raise gives what the method then returns.
template <jint (*Throw)(QLerr, const char*) noexcept>
struct GroupWithMessage {
    static jint Raise(JNIEnv* /*env*/, QLerr result) noexcept {
        const LastError error = FetchLastError(result);
        return Throw(error.code, error.message.data());
    }

    static void RaiseInternal(JNIEnv* /*env*/, const char* message) noexcept { Throw(QLERR_INTERNAL_ERROR, message); }
};

using BarcodeGroup = GroupWithMessage<ThrowBarcodeJavaException>;
using RfidGroup = GroupWithMessage<ThrowRfidJavaException>;

// Camera light, devices, GPS and card reader.
struct ResultGroup {
    static jint Raise(JNIEnv* env, QLerr result) noexcept {
        ThrowJavaExceptionForResult(env, result);
        return result;
    }

    static void RaiseInternal(JNIEnv* env, const char* message) noexcept { ThrowInternalError(env, message); }
};

// The body of a method, contained. `failure` is what Java is told of an exception of ours.
template <typename Group, typename Body>
std::invoke_result_t<Body> Contain(JNIEnv* env, const char* failure, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const JavaErrorPending&) {
        // It is on its way, unless the VM had no memory for a copy of a text or an array: it gives null then, and often
        // no error with it.
        if (env->ExceptionCheck() == JNI_FALSE) {
            Group::RaiseInternal(env, failure);
        }
    } catch (...) {
        Group::RaiseInternal(env, failure);
    }
    return {};
}

inline constexpr const char* kUnknownFailure = "An unknown error occurred";

// Raises a failure. True when there is none.
template <typename Group>
bool Succeeded(JNIEnv* env, QLerr result) noexcept {
    if (result != QLERR_OK) {
        Group::Raise(env, result);
    }
    return result == QLERR_OK;
}

// A method that gives nothing but its success: 0, or what raising gives.
template <typename Group, typename Call>
jint Perform(JNIEnv* env, Call&& call) noexcept {
    return Contain<Group>(env, kUnknownFailure, [&]() -> jint {
        const QLerr result = std::forward<Call>(call)();
        return result == QLERR_OK ? 0 : Group::Raise(env, result);
    });
}

template <typename Java, typename Native>
Java ToJava(Native value) {
    if constexpr (std::is_same_v<Java, jboolean>) {
        return value != Native{} ? JNI_TRUE : JNI_FALSE;
    } else {
        return static_cast<Java>(value);
    }
}

// A method that gives the one value of its function: Query<Group, jint, unsigned>(env, [&](unsigned* out) { … }). The
// value is zero before the call, so that a failure gives zero unless the function has written something else.
template <typename Group, typename Java, typename Native, typename Call>
Java Query(JNIEnv* env, Call&& call) noexcept {
    return Contain<Group>(env, kUnknownFailure, [&]() -> Java {
        Native value{};
        if (const QLerr result = std::forward<Call>(call)(&value); result != QLERR_OK) {
            Group::Raise(env, result);
        }
        return ToJava<Java>(value);
    });
}

inline bool IsTrue(jboolean value) {
    return value != JNI_FALSE;
}

}  // namespace quarlin::jni
