// SPDX-License-Identifier: Apache-2.0
// References, and exceptions.
#include "text_forms.h"
#include "vm_core.h"

#include <algorithm>

namespace quarlin::test {

namespace {

// --- references ---

jobject JNICALL NewGlobalRef(JNIEnv* env, jobject reference) {
    Entry entry(env, "NewGlobalRef");
    const JavaRef object = entry.Refused() ? nullptr : entry.Object(reference);
    // A VM without room gives null, and no error.
    return object && !entry.Failed() ? entry.core.NewGlobal(object) : nullptr;
}

void JNICALL DeleteGlobalRef(JNIEnv* env, jobject reference) {
    Entry entry(env, "DeleteGlobalRef", Entry::kMayBePending);
    if (!entry.Refused() && reference != nullptr && !entry.core.DeleteGlobal(reference)) {
        entry.Violate("not a global reference, or freed before");
    }
}

jobject JNICALL NewLocalRef(JNIEnv* env, jobject reference) {
    Entry entry(env, "NewLocalRef");
    return entry.Refused() ? nullptr : entry.Local(entry.Object(reference));
}

void JNICALL DeleteLocalRef(JNIEnv* env, jobject reference) {
    Entry entry(env, "DeleteLocalRef", Entry::kMayBePending);
    if (!entry.Refused() && reference != nullptr && !entry.core.DeleteLocal(entry.thread, reference)) {
        entry.Violate("not a local reference of this thread, or freed before");
    }
}

jboolean JNICALL IsSameObject(JNIEnv* env, jobject first, jobject second) {
    Entry entry(env, "IsSameObject");
    return !entry.Refused() && entry.Object(first) == entry.Object(second) ? JNI_TRUE : JNI_FALSE;
}

jint JNICALL EnsureLocalCapacity(JNIEnv* env, jint capacity) {
    Entry entry(env, "EnsureLocalCapacity");
    if (entry.Refused()) {
        return JNI_ERR;
    }
    if (capacity < 0) {
        entry.Violate("a negative capacity");
        return JNI_ERR;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return entry.FailureCode();
    }
    LocalFrame& frame = entry.thread.frames.back();
    frame.room = std::max(frame.room, frame.locals.size() + static_cast<std::size_t>(capacity));
    return JNI_OK;
}

jint JNICALL PushLocalFrame(JNIEnv* env, jint capacity) {
    Entry entry(env, "PushLocalFrame", Entry::kMayBePending);
    if (entry.Refused()) {
        return JNI_ERR;
    }
    if (capacity < 0) {
        entry.Violate("a negative capacity");
        return JNI_ERR;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return entry.FailureCode();
    }
    LocalFrame frame;
    frame.room = static_cast<std::size_t>(std::max(capacity, kFrameRoom));
    frame.pushed = true;
    entry.thread.frames.push_back(std::move(frame));
    return JNI_OK;
}

jobject JNICALL PopLocalFrame(JNIEnv* env, jobject result) {
    Entry entry(env, "PopLocalFrame", Entry::kMayBePending);
    if (entry.Refused()) {
        return nullptr;
    }
    if (!entry.thread.frames.back().pushed) {
        entry.Violate("no frame was pushed");
        return nullptr;
    }
    const JavaRef object = entry.Object(result);
    entry.core.LeaveFrame(entry.thread);
    return entry.Local(object);
}

// --- exceptions ---

jint JNICALL Throw(JNIEnv* env, jthrowable reference) {
    Entry entry(env, "Throw");
    const JavaRef throwable = entry.Refused() ? nullptr : entry.Needed(reference);
    if (!throwable) {
        return JNI_ERR;
    }
    if (!throwable->type->IsA("java/lang/Throwable")) {
        entry.Violate("not a throwable: an object of " + throwable->type->Name());
        return JNI_ERR;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return entry.FailureCode();
    }
    entry.thread.pending = throwable;
    return JNI_OK;
}

jint JNICALL ThrowNew(JNIEnv* env, jclass reference, const char* message) {
    Entry entry(env, "ThrowNew");
    JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    if (type == nullptr) {
        return JNI_ERR;
    }
    if (!type->IsA("java/lang/Throwable")) {
        entry.Violate("not a class of throwables: " + type->Name());
        return JNI_ERR;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return entry.FailureCode();
    }
    if (type->FindMethod("<init>", message == nullptr ? "()V" : "(Ljava/lang/String;)V", false) == nullptr) {
        entry.Raise("java/lang/NoSuchMethodError", "<init>");
        return JNI_ERR;
    }
    JavaRef throwable = entry.core.New(*type);
    if (message != nullptr) {
        throwable->message = FromModifiedUtf8(message);
        if (!throwable->message) {
            entry.Violate("the message is not modified UTF-8");
            throwable->message = FromUtf8(message);
        }
    }
    entry.thread.pending = std::move(throwable);
    return JNI_OK;
}

jthrowable JNICALL ExceptionOccurred(JNIEnv* env) {
    Entry entry(env, "ExceptionOccurred", Entry::kAsks);
    return entry.Refused() ? nullptr : static_cast<jthrowable>(entry.Local(entry.thread.pending));
}

void JNICALL ExceptionDescribe(JNIEnv* env) {
    // A real VM prints here. The exception counts as told: it is not pending afterwards.
    const Entry entry(env, "ExceptionDescribe", Entry::kAsks);
    if (!entry.Refused()) {
        entry.thread.pending = nullptr;
    }
}

void JNICALL ExceptionClear(JNIEnv* env) {
    const Entry entry(env, "ExceptionClear", Entry::kAsks);
    if (!entry.Refused()) {
        entry.thread.pending = nullptr;
    }
}

jboolean JNICALL ExceptionCheck(JNIEnv* env) {
    const Entry entry(env, "ExceptionCheck", Entry::kAsks);
    return !entry.Refused() && entry.thread.pending ? JNI_TRUE : JNI_FALSE;
}

}  // namespace

void FillReferences(JNINativeInterface_& table) {
    table.NewGlobalRef = NewGlobalRef;
    table.DeleteGlobalRef = DeleteGlobalRef;
    table.NewLocalRef = NewLocalRef;
    table.DeleteLocalRef = DeleteLocalRef;
    table.IsSameObject = IsSameObject;
    table.EnsureLocalCapacity = EnsureLocalCapacity;
    table.PushLocalFrame = PushLocalFrame;
    table.PopLocalFrame = PopLocalFrame;
}

void FillExceptions(JNINativeInterface_& table) {
    table.Throw = Throw;
    table.ThrowNew = ThrowNew;
    table.ExceptionOccurred = ExceptionOccurred;
    table.ExceptionDescribe = ExceptionDescribe;
    table.ExceptionClear = ExceptionClear;
    table.ExceptionCheck = ExceptionCheck;
}

}  // namespace quarlin::test
