// SPDX-License-Identifier: Apache-2.0
#include "jni/java_vm.h"

#include <cstdio>

namespace quarlin::jni {

constinit std::atomic<JavaVM*> bcrVm{nullptr};
constinit std::atomic<jclass> bcrExceptionClass{nullptr};
constinit Published<CallbackClass> bcrCallbackClass{};

constinit std::atomic<JavaVM*> msrVm{nullptr};
constinit Published<CallbackClass> msrCallbackClass{};

constinit std::atomic<JavaVM*> rfidVm{nullptr};
constinit std::atomic<jclass> rfidExceptionClass{nullptr};

void Diagnose(const char* text) noexcept {
    std::fputs(text, stdout);
    std::fflush(stdout);
}

bool KeepVm(JNIEnv* env, std::atomic<JavaVM*>& vm) noexcept {
    JavaVM* found = nullptr;
    if (env->GetJavaVM(&found) != JNI_OK || found == nullptr) {
        return false;
    }
    vm = found;
    return true;
}

jclass KeepClass(JNIEnv* env, jclass local) noexcept {
    return local == nullptr ? nullptr : static_cast<jclass>(env->NewGlobalRef(local));
}

CallbackClass KeepCallbackClass(JNIEnv* env, jclass local, const char* method, const char* signature) noexcept {
    CallbackClass kept{.type = KeepClass(env, local)};
    if (kept.type != nullptr) {
        kept.method = env->GetStaticMethodID(kept.type, method, signature);
    }
    if (kept.method == nullptr) {
        env->ExceptionClear();
    }
    return kept;
}

}  // namespace quarlin::jni
