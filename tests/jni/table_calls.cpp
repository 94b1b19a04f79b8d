// SPDX-License-Identifier: Apache-2.0
// New objects, and calls of methods, in their three forms.
#include "vm_core.h"

#include <cstdarg>

namespace quarlin::test {

namespace {

// Arguments as jni.h's functions take them: after an ellipsis, where small ones come as int and double, or as an array.
class ListedArguments {
  public:
    explicit ListedArguments(va_list list) { va_copy(list_, list); }
    ~ListedArguments() { va_end(list_); }
    ListedArguments(const ListedArguments&) = delete;
    ListedArguments& operator=(const ListedArguments&) = delete;

    jvalue Next(char kind) {
        jvalue value{};
        switch (kind) {
            case 'Z':
                value.z = static_cast<jboolean>(va_arg(list_, int));
                break;
            case 'B':
                value.b = static_cast<jbyte>(va_arg(list_, int));
                break;
            case 'C':
                value.c = static_cast<jchar>(va_arg(list_, int));
                break;
            case 'S':
                value.s = static_cast<jshort>(va_arg(list_, int));
                break;
            case 'I':
                value.i = va_arg(list_, jint);
                break;
            case 'J':
                value.j = va_arg(list_, jlong);
                break;
            case 'F':
                value.f = static_cast<jfloat>(va_arg(list_, double));
                break;
            case 'D':
                value.d = va_arg(list_, double);
                break;
            default:
                value.l = va_arg(list_, jobject);
                break;
        }
        return value;
    }

  private:
    va_list list_;
};

class ArrayArguments {
  public:
    explicit ArrayArguments(const jvalue* values) : next_(values) {}
    jvalue Next(char /*kind*/) { return *next_++; }

  private:
    const jvalue* next_;
};

JavaValue AsJava(Entry& entry, const jvalue& value, char kind) {
    switch (kind) {
        case 'Z':
            if (value.z > 1) {
                entry.Violate("a boolean that is neither true nor false");
            }
            return value.z;
        case 'B':
            return value.b;
        case 'C':
            return value.c;
        case 'S':
            return value.s;
        case 'I':
            return value.i;
        case 'J':
            return value.j;
        case 'F':
            return value.f;
        case 'D':
            return value.d;
        default:
            return entry.Object(value.l);
    }
}

template <typename Arguments>
std::vector<JavaValue> Read(Entry& entry, const JavaMethod& method, Arguments& arguments) {
    std::vector<JavaValue> values;
    for (const std::string& type : method.parsed.parameters) {
        values.push_back(AsJava(entry, arguments.Next(type.front()), type.front()));
        if (!Fits(values.back(), type)) {
            entry.Violate("argument " + std::to_string(values.size()) + " of " + method.name + " is no " + type);
        }
    }
    return values;
}

// The method behind an identifier, when it may be called on this class.
const JavaMethod* Check(Entry& entry, const JavaClass& type, jmethodID id, bool isStatic, char result) {
    const auto* const method = reinterpret_cast<const JavaMethod*>(id);
    for (const JavaClass* at = &type; at != nullptr; at = at->Parent()) {
        if (at->Owns(method)) {
            if (method->isStatic != isStatic) {
                entry.Violate(method->name + (isStatic ? " is not static" : " is static"));
                return nullptr;
            }
            if ((method->parsed.result.front() == '[' ? 'L' : method->parsed.result.front()) != result) {
                entry.Violate(method->name + " returns " + method->parsed.result);
                return nullptr;
            }
            return method;
        }
    }
    entry.Violate("the method does not belong to " + type.Name());
    return nullptr;
}

template <typename Arguments>
jobject Construct(Entry& entry, jclass reference, jmethodID id, Arguments& arguments) {
    JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    const JavaMethod* const method = type == nullptr ? nullptr : Check(entry, *type, id, false, 'V');
    if (method == nullptr) {
        return nullptr;
    }
    if (method->name != "<init>" || method->owner != type) {
        entry.Violate(method->name + " is no constructor of " + type->Name());
        return nullptr;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return nullptr;
    }
    const JavaRef object = entry.core.New(*type);
    object->constructor = method->signature;
    object->arguments = Read(entry, *method, arguments);
    if (type->IsA("java/lang/Throwable") && !object->arguments.empty()) {
        const auto* const message = std::get_if<JavaRef>(&object->arguments.front());
        if (message != nullptr && *message && (*message)->type->IsA("java/lang/String")) {
            object->message = (*message)->characters;
        }
    }
    entry.Run(*method, object, object->arguments);
    return entry.thread.pending ? nullptr : entry.Local(object);
}

template <typename Arguments>
JavaValue CallStatic(Entry& entry, jclass reference, jmethodID id, char result, Arguments& arguments) {
    const JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    const JavaMethod* const method = type == nullptr ? nullptr : Check(entry, *type, id, true, result);
    if (method == nullptr) {
        return {};
    }
    entry.MustBeAsked();
    if (entry.Failed()) {
        entry.OutOfMemory();
        return {};
    }
    return entry.Run(*method, nullptr, Read(entry, *method, arguments));
}

template <typename Arguments>
JavaValue CallOn(Entry& entry, jobject reference, jmethodID id, char result, Arguments& arguments) {
    const JavaRef object = entry.Refused() ? nullptr : entry.Needed(reference);
    const JavaMethod* const method = object ? Check(entry, *object->type, id, false, result) : nullptr;
    if (method == nullptr) {
        return {};
    }
    entry.MustBeAsked();
    if (entry.Failed()) {
        entry.OutOfMemory();
        return {};
    }
    return entry.Run(*method, object, Read(entry, *method, arguments));
}

template <typename Result>
Result As(Entry& entry, const JavaValue& value) {
    if constexpr (std::is_same_v<Result, jobject>) {
        const auto* const object = std::get_if<JavaRef>(&value);
        return object != nullptr ? entry.Local(*object) : nullptr;
    } else {
        const auto* const number = std::get_if<Result>(&value);
        return number != nullptr ? *number : Result{};
    }
}

// The three forms of one function. The name of a call in failures and violations is that of the plain form.
#define THREE_FORMS(Name, Result, First, Body)                                              \
    Result JNICALL Name##V(JNIEnv* env, First on, jmethodID method, va_list list) {         \
        ListedArguments arguments(list);                                                    \
        Entry entry(env, #Name);                                                            \
        Body                                                                                \
    }                                                                                       \
    Result JNICALL Name##A(JNIEnv* env, First on, jmethodID method, const jvalue* values) { \
        ArrayArguments arguments(values);                                                   \
        Entry entry(env, #Name);                                                            \
        Body                                                                                \
    }

#define ELLIPSIS_FORM(Name, Result, First)                              \
    Result JNICALL Name(JNIEnv* env, First on, jmethodID method, ...) { \
        va_list list;                                                   \
        va_start(list, method);                                         \
        Result result = Name##V(env, on, method, list);                 \
        va_end(list);                                                   \
        return result;                                                  \
    }

#define ELLIPSIS_VOID(Name, First)                                    \
    void JNICALL Name(JNIEnv* env, First on, jmethodID method, ...) { \
        va_list list;                                                 \
        va_start(list, method);                                       \
        Name##V(env, on, method, list);                               \
        va_end(list);                                                 \
    }

THREE_FORMS(NewObject, jobject, jclass, return Construct(entry, on, method, arguments);)
ELLIPSIS_FORM(NewObject, jobject, jclass)

THREE_FORMS(CallStaticVoidMethod, void, jclass, CallStatic(entry, on, method, 'V', arguments);)
ELLIPSIS_VOID(CallStaticVoidMethod, jclass)
THREE_FORMS(CallStaticObjectMethod, jobject, jclass,
            return As<jobject>(entry, CallStatic(entry, on, method, 'L', arguments));)
ELLIPSIS_FORM(CallStaticObjectMethod, jobject, jclass)

THREE_FORMS(CallVoidMethod, void, jobject, CallOn(entry, on, method, 'V', arguments);)
ELLIPSIS_VOID(CallVoidMethod, jobject)
THREE_FORMS(CallObjectMethod, jobject, jobject, return As<jobject>(entry, CallOn(entry, on, method, 'L', arguments));)
ELLIPSIS_FORM(CallObjectMethod, jobject, jobject)
THREE_FORMS(CallIntMethod, jint, jobject, return As<jint>(entry, CallOn(entry, on, method, 'I', arguments));)
ELLIPSIS_FORM(CallIntMethod, jint, jobject)
THREE_FORMS(CallBooleanMethod, jboolean, jobject,
            return As<jboolean>(entry, CallOn(entry, on, method, 'Z', arguments));)
ELLIPSIS_FORM(CallBooleanMethod, jboolean, jobject)

#undef THREE_FORMS
#undef ELLIPSIS_FORM
#undef ELLIPSIS_VOID

}  // namespace

void FillCalls(JNINativeInterface_& table) {
#define FILL(Name)           \
    table.Name = Name;       \
    table.Name##V = Name##V; \
    table.Name##A = Name##A;
    FILL(NewObject)
    FILL(CallStaticVoidMethod)
    FILL(CallStaticObjectMethod)
    FILL(CallVoidMethod)
    FILL(CallObjectMethod)
    FILL(CallIntMethod)
    FILL(CallBooleanMethod)
#undef FILL
}

}  // namespace quarlin::test
