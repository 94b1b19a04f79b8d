// SPDX-License-Identifier: Apache-2.0
// Classes, and members by name.
#include "vm_core.h"

namespace quarlin::test {

namespace {

jint JNICALL GetVersion(JNIEnv* env) {
    const Entry entry(env, "GetVersion");
    return entry.Refused() ? 0 : JNI_VERSION_10;
}

jint JNICALL GetJavaVM(JNIEnv* env, JavaVM** vm) {
    const Entry entry(env, "GetJavaVM");
    *vm = nullptr;
    if (entry.Refused() || entry.Failed()) {
        return entry.Refused() ? JNI_ERR : entry.FailureCode();
    }
    *vm = &entry.core;
    return JNI_OK;
}

// --- classes ---

jclass JNICALL FindClass(JNIEnv* env, const char* name) {
    Entry entry(env, "FindClass");
    if (entry.Refused()) {
        return nullptr;
    }
    const std::string wanted = name == nullptr ? "" : name;
    if (wanted.size() > 1 && wanted.front() == 'L' && wanted.back() == ';') {
        entry.Violate("a type's signature instead of a class's name: " + wanted);
    }
    JavaClass* const type = entry.core.FindClass(wanted);
    if (type == nullptr || entry.core.hidden.contains(wanted) || entry.Failed()) {
        entry.Raise("java/lang/NoClassDefFoundError", wanted);
        return nullptr;
    }
    return static_cast<jclass>(entry.Local(type->object));
}

jclass JNICALL GetObjectClass(JNIEnv* env, jobject reference) {
    Entry entry(env, "GetObjectClass");
    const JavaRef object = entry.Refused() ? nullptr : entry.Needed(reference);
    return object ? static_cast<jclass>(entry.Local(object->type->object)) : nullptr;
}

jclass JNICALL GetSuperclass(JNIEnv* env, jclass reference) {
    Entry entry(env, "GetSuperclass");
    const JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    return type != nullptr && type->Parent() != nullptr ? static_cast<jclass>(entry.Local(type->Parent()->object))
                                                        : nullptr;
}

jboolean JNICALL IsInstanceOf(JNIEnv* env, jobject reference, jclass of) {
    Entry entry(env, "IsInstanceOf");
    const JavaClass* const type = entry.Refused() ? nullptr : entry.Class(of);
    if (type == nullptr) {
        return JNI_FALSE;
    }
    const JavaRef object = entry.Object(reference);
    return !object || object->type->IsA(*type) ? JNI_TRUE : JNI_FALSE;
}

jboolean JNICALL IsAssignableFrom(JNIEnv* env, jclass sub, jclass super) {
    Entry entry(env, "IsAssignableFrom");
    const JavaClass* const from = entry.Refused() ? nullptr : entry.Class(sub);
    const JavaClass* const to = entry.Refused() ? nullptr : entry.Class(super);
    return from != nullptr && to != nullptr && from->IsA(*to) ? JNI_TRUE : JNI_FALSE;
}

// --- members ---

jmethodID LookUpMethod(JNIEnv* env, jclass reference, const char* name, const char* signature, bool isStatic) {
    Entry entry(env, isStatic ? "GetStaticMethodID" : "GetMethodID");
    JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    if (type == nullptr) {
        return nullptr;
    }
    JavaMethod* const method = type->FindMethod(name, signature, isStatic);
    if (method == nullptr || entry.Failed()) {
        entry.Raise("java/lang/NoSuchMethodError", name);
        return nullptr;
    }
    return reinterpret_cast<jmethodID>(method);
}

jmethodID JNICALL GetMethodID(JNIEnv* env, jclass type, const char* name, const char* signature) {
    return LookUpMethod(env, type, name, signature, false);
}

jmethodID JNICALL GetStaticMethodID(JNIEnv* env, jclass type, const char* name, const char* signature) {
    return LookUpMethod(env, type, name, signature, true);
}

jfieldID LookUpField(JNIEnv* env, jclass reference, const char* name, const char* signature, bool isStatic) {
    Entry entry(env, isStatic ? "GetStaticFieldID" : "GetFieldID");
    JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    if (type == nullptr) {
        return nullptr;
    }
    JavaField* const field = type->FindField(name, signature, isStatic);
    if (field == nullptr || entry.Failed()) {
        entry.Raise("java/lang/NoSuchFieldError", name);
        return nullptr;
    }
    return reinterpret_cast<jfieldID>(field);
}

jfieldID JNICALL GetFieldID(JNIEnv* env, jclass type, const char* name, const char* signature) {
    return LookUpField(env, type, name, signature, false);
}

jfieldID JNICALL GetStaticFieldID(JNIEnv* env, jclass type, const char* name, const char* signature) {
    return LookUpField(env, type, name, signature, true);
}

}  // namespace

void FillClasses(JNINativeInterface_& table) {
    table.GetVersion = GetVersion;
    table.GetJavaVM = GetJavaVM;
    table.FindClass = FindClass;
    table.GetObjectClass = GetObjectClass;
    table.GetSuperclass = GetSuperclass;
    table.IsInstanceOf = IsInstanceOf;
    table.IsAssignableFrom = IsAssignableFrom;
    table.GetMethodID = GetMethodID;
    table.GetStaticMethodID = GetStaticMethodID;
    table.GetFieldID = GetFieldID;
    table.GetStaticFieldID = GetStaticFieldID;
}

}  // namespace quarlin::test
