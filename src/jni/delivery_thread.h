// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <jni.h>

namespace quarlin::jni {

// Detaches the calling thread from the VM at the end of the scope, which also frees its local references.
class DetachAtEnd {
  public:
    explicit DetachAtEnd(JavaVM* vm) noexcept : vm_(vm) {}
    DetachAtEnd(const DetachAtEnd&) = delete;
    DetachAtEnd& operator=(const DetachAtEnd&) = delete;
    ~DetachAtEnd() { vm_->DetachCurrentThread(); }

  private:
    JavaVM* vm_;
};

}  // namespace quarlin::jni
