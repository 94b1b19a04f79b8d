// SPDX-License-Identifier: Apache-2.0
#include "jni/card_delivery.h"

#include <windows.h>

namespace quarlin::jni {

void ShowMissingSwipeMethod() noexcept {
    MessageBoxA(nullptr, "Unable to find callback event!", "MessageBox", MB_OK);
}

}  // namespace quarlin::jni
