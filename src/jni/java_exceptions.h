// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/error.h>

#include <jni.h>

namespace quarlin::jni {

// How a failure becomes a Java exception. Nothing here lets a C++ exception out.

// For the barcode and the UHF RFID wrappers, and deliveries: on the calling thread, whose environment the group's VM
// tells. Gives what ThrowNew gave (0), or JNI_ERR when nothing could be thrown; why is on standard output then.
//
// Codes 1 to 4 are classes of Java's own with the message as it stands; all others are the group's exception class with
// a text, a comma and the message.
jint ThrowBarcodeJavaException(QLerr code, const char* message) noexcept;
jint ThrowRfidJavaException(QLerr code, const char* message) noexcept;

// For all other wrappers. Does nothing for QLERR_OK; takes the message from the thread's last error, and consumes it.
// Java's class for QLERR_BUFFER_OVERFLOW takes no message: there it is the message of the exception's cause. Where the
// VM cannot find the class, its own error is what Java gets, and the last error stays.
void ThrowJavaExceptionForResult(JNIEnv* env, QLerr code) noexcept;

// For what went wrong inside a wrapper that has no text of its own for it.
void ThrowInternalError(JNIEnv* env, const char* message) noexcept;

}  // namespace quarlin::jni
