// SPDX-License-Identifier: Apache-2.0
// Fields of objects and of classes.
#include "vm_core.h"

namespace quarlin::test {

namespace {

// The field behind an identifier, when a value of this kind may be there.
const JavaField* Check(Entry& entry, const JavaClass& type, jfieldID id, bool isStatic, char kind) {
    const auto* const field = reinterpret_cast<const JavaField*>(id);
    for (const JavaClass* at = &type; at != nullptr; at = at->Parent()) {
        if (!at->Owns(field)) {
            continue;
        }
        if (field->isStatic != isStatic) {
            entry.Violate(field->name + (isStatic ? " is not static" : " is static"));
            return nullptr;
        }
        if ((field->signature.front() == '[' ? 'L' : field->signature.front()) != kind) {
            entry.Violate(field->name + " is a field of type " + field->signature);
            return nullptr;
        }
        return field;
    }
    entry.Violate("the field does not belong to " + type.Name());
    return nullptr;
}

JavaValue Get(Entry& entry, jobject reference, jfieldID id, char kind) {
    const JavaRef object = entry.Refused() ? nullptr : entry.Needed(reference);
    const JavaField* const field = object ? Check(entry, *object->type, id, false, kind) : nullptr;
    return field == nullptr ? ZeroOf(std::string_view(&kind, 1)) : object->Value(field->name);
}

void Set(Entry& entry, jobject reference, jfieldID id, char kind, const JavaValue& value) {
    const JavaRef object = entry.Refused() ? nullptr : entry.Needed(reference);
    const JavaField* const field = object ? Check(entry, *object->type, id, false, kind) : nullptr;
    if (field == nullptr) {
        return;
    }
    if (!Fits(value, field->signature)) {
        entry.Violate("the value of " + field->name + " is no " + field->signature);
        return;
    }
    object->fields[field->name] = value;
}

#define FIELDS(Kind, Type, Letter)                                                           \
    Type JNICALL Get##Kind##Field(JNIEnv* env, jobject object, jfieldID field) {             \
        Entry entry(env, "Get" #Kind "Field");                                               \
        return std::get<Type>(Get(entry, object, field, Letter));                            \
    }                                                                                        \
    void JNICALL Set##Kind##Field(JNIEnv* env, jobject object, jfieldID field, Type value) { \
        Entry entry(env, "Set" #Kind "Field");                                               \
        Set(entry, object, field, Letter, value);                                            \
    }

FIELDS(Byte, jbyte, 'B')
FIELDS(Char, jchar, 'C')
FIELDS(Short, jshort, 'S')
FIELDS(Int, jint, 'I')
FIELDS(Long, jlong, 'J')
FIELDS(Float, jfloat, 'F')
FIELDS(Double, jdouble, 'D')
#undef FIELDS

jboolean JNICALL GetBooleanField(JNIEnv* env, jobject object, jfieldID field) {
    Entry entry(env, "GetBooleanField");
    return std::get<jboolean>(Get(entry, object, field, 'Z'));
}

void JNICALL SetBooleanField(JNIEnv* env, jobject object, jfieldID field, jboolean value) {
    Entry entry(env, "SetBooleanField");
    if (value > 1) {
        entry.Violate("a boolean that is neither true nor false");
    }
    Set(entry, object, field, 'Z', value);
}

jobject JNICALL GetObjectField(JNIEnv* env, jobject object, jfieldID field) {
    Entry entry(env, "GetObjectField");
    return entry.Local(std::get<JavaRef>(Get(entry, object, field, 'L')));
}

void JNICALL SetObjectField(JNIEnv* env, jobject object, jfieldID field, jobject value) {
    Entry entry(env, "SetObjectField");
    if (!entry.Refused()) {
        Set(entry, object, field, 'L', entry.Object(value));
    }
}

jobject JNICALL GetStaticObjectField(JNIEnv* env, jclass reference, jfieldID id) {
    Entry entry(env, "GetStaticObjectField");
    const JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    const JavaField* const field = type == nullptr ? nullptr : Check(entry, *type, id, true, 'L');
    return field == nullptr ? nullptr : entry.Local(std::get<JavaRef>(field->staticValue));
}

jint JNICALL GetStaticIntField(JNIEnv* env, jclass reference, jfieldID id) {
    Entry entry(env, "GetStaticIntField");
    const JavaClass* const type = entry.Refused() ? nullptr : entry.Class(reference);
    const JavaField* const field = type == nullptr ? nullptr : Check(entry, *type, id, true, 'I');
    return field == nullptr ? 0 : std::get<jint>(field->staticValue);
}

}  // namespace

void FillFields(JNINativeInterface_& table) {
#define FILL(Kind)                             \
    table.Get##Kind##Field = Get##Kind##Field; \
    table.Set##Kind##Field = Set##Kind##Field;
    FILL(Boolean)
    FILL(Byte)
    FILL(Char)
    FILL(Short)
    FILL(Int)
    FILL(Long)
    FILL(Float)
    FILL(Double)
    FILL(Object)
#undef FILL
    table.GetStaticObjectField = GetStaticObjectField;
    table.GetStaticIntField = GetStaticIntField;
}

}  // namespace quarlin::test
