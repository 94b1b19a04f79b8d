// SPDX-License-Identifier: Apache-2.0
// Arrays. Pinned elements are always a copy: what is not released with its changes does not reach Java.
#include "vm_core.h"

#include <algorithm>
#include <cstring>

namespace quarlin::test {

namespace {

template <typename Type>
std::vector<Type>* ElementsOf(Entry& entry, const JavaRef& array) {
    auto* const elements = array ? std::get_if<std::vector<Type>>(&array->elements) : nullptr;
    if (array && elements == nullptr) {
        entry.Violate("not an array of that kind: an object of " + array->type->Name());
    }
    return elements;
}

bool RefusesLength(Entry& entry, jsize length) {
    if (entry.Refused()) {
        return true;
    }
    if (length < 0) {
        entry.Raise("java/lang/NegativeArraySizeException", std::to_string(length));
        return true;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return true;
    }
    return false;
}

template <typename Type>
jobject NewArray(Entry& entry, char kind, jsize length) {
    if (RefusesLength(entry, length)) {
        return nullptr;
    }
    const JavaRef array = entry.core.New(*entry.core.FindClass(std::string("[") + kind));
    array->elements = std::vector<Type>(static_cast<std::size_t>(length));
    return entry.Local(array);
}

template <typename Type>
Type* GetElements(Entry& entry, jarray reference, char kind, jboolean* isCopy) {
    const JavaRef array = entry.Refused() ? nullptr : entry.Needed(reference);
    const auto* const elements = ElementsOf<Type>(entry, array);
    if (elements == nullptr) {
        return nullptr;
    }
    if (entry.Failed()) {
        entry.NoMemoryForACopy();
        return nullptr;
    }
    if (isCopy != nullptr) {
        *isCopy = JNI_TRUE;
    }
    return static_cast<Type*>(
        entry.core.MakePin(entry.thread, array, kind, elements->data(), elements->size() * sizeof(Type)));
}

template <typename Type>
void ReleaseElements(Entry& entry, jarray reference, char kind, const Type* memory, jint mode) {
    const JavaRef array = entry.Refused() ? nullptr : entry.Needed(reference);
    auto* const elements = ElementsOf<Type>(entry, array);
    const Pin* const pin = elements == nullptr ? nullptr : entry.core.FindPin(entry.Name(), array, kind, memory);
    if (pin == nullptr) {
        return;
    }
    if (mode != 0 && mode != JNI_COMMIT && mode != JNI_ABORT) {
        entry.Violate("an unknown mode");
        return;
    }
    entry.core.CheckPin(entry.Name(), *pin);
    array->releaseModes.push_back(mode);
    if (mode != JNI_ABORT) {
        std::copy_n(memory, elements->size(), elements->begin());
    }
    if (mode != JNI_COMMIT) {
        entry.core.pins.erase(memory);
    }
}

// Raises Java's exception for a region that the array does not have.
template <typename Type>
std::vector<Type>* Region(Entry& entry, jarray reference, jsize start, jsize length) {
    const JavaRef array = entry.Refused() ? nullptr : entry.Needed(reference);
    auto* const elements = ElementsOf<Type>(entry, array);
    if (elements == nullptr) {
        return nullptr;
    }
    const auto size = static_cast<jsize>(elements->size());
    if (start < 0 || length < 0 || start > size || length > size - start) {
        entry.Raise("java/lang/ArrayIndexOutOfBoundsException",
                    std::to_string(start) + "+" + std::to_string(length) + " of " + std::to_string(size));
        return nullptr;
    }
    return elements;
}

#define ARRAYS(Kind, Type, Letter)                                                                                     \
    Type##Array JNICALL New##Kind##Array(JNIEnv* env, jsize length) {                                                  \
        Entry entry(env, "New" #Kind "Array");                                                                         \
        return static_cast<Type##Array>(NewArray<Type>(entry, Letter, length));                                        \
    }                                                                                                                  \
    Type* JNICALL Get##Kind##ArrayElements(JNIEnv* env, Type##Array array, jboolean* isCopy) {                         \
        Entry entry(env, "Get" #Kind "ArrayElements");                                                                 \
        return GetElements<Type>(entry, array, Letter, isCopy);                                                        \
    }                                                                                                                  \
    void JNICALL Release##Kind##ArrayElements(JNIEnv* env, Type##Array array, Type* elements, jint mode) {             \
        Entry entry(env, "Release" #Kind "ArrayElements", Entry::kMayBePending);                                       \
        ReleaseElements<Type>(entry, array, Letter, elements, mode);                                                   \
    }                                                                                                                  \
    void JNICALL Get##Kind##ArrayRegion(JNIEnv* env, Type##Array array, jsize start, jsize length, Type* out) {        \
        Entry entry(env, "Get" #Kind "ArrayRegion");                                                                   \
        if (const auto* const elements = Region<Type>(entry, array, start, length)) {                                  \
            std::copy_n(elements->begin() + start, length, out);                                                       \
        }                                                                                                              \
    }                                                                                                                  \
    void JNICALL Set##Kind##ArrayRegion(JNIEnv* env, Type##Array array, jsize start, jsize length, const Type* from) { \
        Entry entry(env, "Set" #Kind "ArrayRegion");                                                                   \
        if (auto* const elements = Region<Type>(entry, array, start, length)) {                                        \
            std::copy_n(from, length, elements->begin() + start);                                                      \
        }                                                                                                              \
    }

ARRAYS(Boolean, jboolean, 'Z')
ARRAYS(Byte, jbyte, 'B')
ARRAYS(Char, jchar, 'C')
ARRAYS(Short, jshort, 'S')
ARRAYS(Int, jint, 'I')
ARRAYS(Long, jlong, 'J')
ARRAYS(Float, jfloat, 'F')
ARRAYS(Double, jdouble, 'D')
#undef ARRAYS

jsize JNICALL GetArrayLength(JNIEnv* env, jarray reference) {
    Entry entry(env, "GetArrayLength");
    const JavaRef array = entry.Refused() ? nullptr : entry.Needed(reference);
    if (!array) {
        return 0;
    }
    if (!array->type->IsArray()) {
        entry.Violate("not an array: an object of " + array->type->Name());
        return 0;
    }
    return std::visit(
        [](const auto& elements) -> jsize {
            if constexpr (std::is_same_v<std::decay_t<decltype(elements)>, std::monostate>) {
                return 0;
            } else {
                return static_cast<jsize>(elements.size());
            }
        },
        array->elements);
}

bool MayHold(const JavaObject& array, const JavaRef& element) {
    return Fits(element, std::string_view(array.type->Name()).substr(1));
}

jobjectArray JNICALL NewObjectArray(JNIEnv* env, jsize length, jclass of, jobject initial) {
    Entry entry(env, "NewObjectArray");
    const JavaClass* const type = entry.Refused() ? nullptr : entry.Class(of);
    if (type == nullptr || RefusesLength(entry, length)) {
        return nullptr;
    }
    const std::string name = type->IsArray() ? "[" + type->Name() : "[L" + type->Name() + ";";
    const JavaRef array = entry.core.New(*entry.core.FindClass(name));
    const JavaRef element = entry.Object(initial);
    if (!MayHold(*array, element)) {
        entry.Violate("the initial element is no " + type->Name());
    }
    array->elements = std::vector<JavaRef>(static_cast<std::size_t>(length), element);
    return static_cast<jobjectArray>(entry.Local(array));
}

jobject JNICALL GetObjectArrayElement(JNIEnv* env, jobjectArray array, jsize index) {
    Entry entry(env, "GetObjectArrayElement");
    const auto* const elements = Region<JavaRef>(entry, array, index, 1);
    return elements == nullptr ? nullptr : entry.Local((*elements)[static_cast<std::size_t>(index)]);
}

void JNICALL SetObjectArrayElement(JNIEnv* env, jobjectArray array, jsize index, jobject value) {
    Entry entry(env, "SetObjectArrayElement");
    if (entry.Failed()) {
        entry.OutOfMemory();
        return;
    }
    auto* const elements = Region<JavaRef>(entry, array, index, 1);
    if (elements == nullptr) {
        return;
    }
    const JavaRef element = entry.Object(value);
    if (!MayHold(*entry.Object(array), element)) {
        entry.Raise("java/lang/ArrayStoreException", element->type->Name());
        return;
    }
    (*elements)[static_cast<std::size_t>(index)] = element;
}

}  // namespace

void FillArrays(JNINativeInterface_& table) {
#define FILL(Kind)                                                     \
    table.New##Kind##Array = New##Kind##Array;                         \
    table.Get##Kind##ArrayElements = Get##Kind##ArrayElements;         \
    table.Release##Kind##ArrayElements = Release##Kind##ArrayElements; \
    table.Get##Kind##ArrayRegion = Get##Kind##ArrayRegion;             \
    table.Set##Kind##ArrayRegion = Set##Kind##ArrayRegion;
    FILL(Boolean)
    FILL(Byte)
    FILL(Char)
    FILL(Short)
    FILL(Int)
    FILL(Long)
    FILL(Float)
    FILL(Double)
#undef FILL
    table.GetArrayLength = GetArrayLength;
    table.NewObjectArray = NewObjectArray;
    table.GetObjectArrayElement = GetObjectArrayElement;
    table.SetObjectArrayElement = SetObjectArrayElement;
}

}  // namespace quarlin::test
