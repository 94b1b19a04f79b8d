// SPDX-License-Identifier: Apache-2.0
// The VM's own table: environments, and threads that come and go.
#include "vm_core.h"

#include <algorithm>
#include <array>

namespace quarlin::test {

namespace {

VmCore& CoreOf(JavaVM* vm) {
    return *static_cast<VmCore*>(vm);
}

bool IsSupported(jint version) {
    static constexpr std::array kVersions{JNI_VERSION_1_1, JNI_VERSION_1_2, JNI_VERSION_1_4, JNI_VERSION_1_6,
                                          JNI_VERSION_1_8, JNI_VERSION_9,   JNI_VERSION_10};
    return std::ranges::find(kVersions, version) != kVersions.end();
}

jint JNICALL DestroyJavaVM(JavaVM* vm) {
    VmCore& core = CoreOf(vm);
    const std::lock_guard lock(core.mutex);
    core.Violate("DestroyJavaVM: the VM belongs to its program");
    return JNI_ERR;
}

jint Attach(JavaVM* vm, void** env, void* arguments, const char* name, bool asDaemon) {
    VmCore& core = CoreOf(vm);
    const std::lock_guard lock(core.mutex);
    const auto failure = core.Enter(name);
    *env = nullptr;
    if (core.closed) {
        return JNI_ERR;
    }
    if (arguments != nullptr && !IsSupported(static_cast<const JavaVMAttachArgs*>(arguments)->version)) {
        core.Violate(std::string(name) + ": arguments of an unknown version");
        return JNI_EVERSION;
    }
    if (failure) {
        return failure->code.value_or(JNI_ERR);
    }
    VmThread* thread = core.CurrentThread();
    if (thread == nullptr) {
        thread = &core.Attach(false);
        ++core.counts.attaches;
        core.counts.daemons += asDaemon ? 1 : 0;
    }
    *env = static_cast<JNIEnv*>(thread);
    return JNI_OK;
}

jint JNICALL AttachCurrentThread(JavaVM* vm, void** env, void* arguments) {
    return Attach(vm, env, arguments, "AttachCurrentThread", false);
}

jint JNICALL AttachCurrentThreadAsDaemon(JavaVM* vm, void** env, void* arguments) {
    return Attach(vm, env, arguments, "AttachCurrentThreadAsDaemon", true);
}

jint JNICALL DetachCurrentThread(JavaVM* vm) {
    VmCore& core = CoreOf(vm);
    const std::lock_guard lock(core.mutex);
    core.Enter("DetachCurrentThread");
    VmThread* const thread = core.CurrentThread();
    if (thread == nullptr) {
        return JNI_OK;
    }
    if (thread->calls > 0) {
        // A thread that runs Java code stays.
        return JNI_ERR;
    }
    ++core.counts.detaches;
    core.Detach(*thread);
    return JNI_OK;
}

jint JNICALL GetEnv(JavaVM* vm, void** env, jint version) {
    VmCore& core = CoreOf(vm);
    const std::lock_guard lock(core.mutex);
    const auto failure = core.Enter("GetEnv");
    *env = nullptr;
    if (failure) {
        return failure->code.value_or(JNI_ERR);
    }
    VmThread* const thread = core.CurrentThread();
    if (thread == nullptr) {
        return JNI_EDETACHED;
    }
    if (!IsSupported(version)) {
        return JNI_EVERSION;
    }
    *env = static_cast<JNIEnv*>(thread);
    return JNI_OK;
}

}  // namespace

const JNIInvokeInterface_& InvokeTable() {
    static const JNIInvokeInterface_ table{nullptr,
                                           nullptr,
                                           nullptr,
                                           DestroyJavaVM,
                                           AttachCurrentThread,
                                           DetachCurrentThread,
                                           GetEnv,
                                           AttachCurrentThreadAsDaemon};
    return table;
}

}  // namespace quarlin::test
