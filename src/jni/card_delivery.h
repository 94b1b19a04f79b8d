// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/card_reader.h>

#include <jni.h>

namespace quarlin::jni {

// Calls the registered class's static method with a swipe, on the calling thread, which must not be attached to the VM:
// an attached one gets nothing. The thread is detached afterwards in any case. Nothing is told on standard output.
void DeliverCardSwipe(const MagStripeData* record);

// Keeps the VM and both classes for deliveries. Shows a message box when the second has no method for swipes.
void KeepCardReaderClasses(JNIEnv* env, jclass firstClass, jclass callbackClass) noexcept;

// Returns when the user has answered.
void ShowMissingSwipeMethod() noexcept;

}  // namespace quarlin::jni
