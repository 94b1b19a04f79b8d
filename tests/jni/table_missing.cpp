// SPDX-License-Identifier: Apache-2.0
// The entries that the stand-in does not have: callable, and a violation each. And the table as a whole.
#include "vm_core.h"

#include <cstddef>
#include <string_view>

namespace quarlin::test {

namespace {

// The name of an entry as a template argument.
template <std::size_t Size>
struct EntryName {
    char text[Size];

    constexpr EntryName(const char (&name)[Size]) {  // NOLINT: made of a literal without being asked
        for (std::size_t i = 0; i < Size; ++i) {
            text[i] = name[i];
        }
    }
};

void Report(JNIEnv* env, const char* name) {
    Entry entry(env, name, Entry::kMayBePending);
    entry.core.Violate(std::string("called an entry the stand-in does not have: ") + name);
}

template <EntryName Name, typename Result, typename... Arguments>
Result JNICALL Missing(JNIEnv* env, Arguments... /*arguments*/) {
    Report(env, Name.text);
    return Result();
}

template <EntryName Name, typename Result, typename... Arguments>
Result JNICALL MissingEllipsis(JNIEnv* env, Arguments... /*arguments*/, ...) {
    Report(env, Name.text);
    return Result();
}

template <EntryName Name, typename Result, typename... Arguments>
void Fill(Result(JNICALL*& entry)(JNIEnv*, Arguments...)) {
    entry = Missing<Name, Result, Arguments...>;
}

template <EntryName Name, typename Result, typename... Arguments>
void Fill(Result(JNICALL*& entry)(JNIEnv*, Arguments..., ...)) {
    entry = MissingEllipsis<Name, Result, Arguments...>;
}

JNINativeInterface_ MakeTable() {
    JNINativeInterface_ table{};
    FillMissing(table);
    FillClasses(table);
    FillCalls(table);
    FillFields(table);
    FillReferences(table);
    FillExceptions(table);
    FillTexts(table);
    FillArrays(table);
    return table;
}

}  // namespace

void FillMissing(JNINativeInterface_& table) {
#define MISSING(Name) Fill<#Name>(table.Name);
    MISSING(DefineClass)
    MISSING(FromReflectedMethod)
    MISSING(FromReflectedField)
    MISSING(ToReflectedMethod)
    MISSING(ToReflectedField)
    MISSING(FatalError)
    MISSING(AllocObject)
    MISSING(CallByteMethod)
    MISSING(CallByteMethodV)
    MISSING(CallByteMethodA)
    MISSING(CallCharMethod)
    MISSING(CallCharMethodV)
    MISSING(CallCharMethodA)
    MISSING(CallShortMethod)
    MISSING(CallShortMethodV)
    MISSING(CallShortMethodA)
    MISSING(CallLongMethod)
    MISSING(CallLongMethodV)
    MISSING(CallLongMethodA)
    MISSING(CallFloatMethod)
    MISSING(CallFloatMethodV)
    MISSING(CallFloatMethodA)
    MISSING(CallDoubleMethod)
    MISSING(CallDoubleMethodV)
    MISSING(CallDoubleMethodA)
    MISSING(CallNonvirtualObjectMethod)
    MISSING(CallNonvirtualObjectMethodV)
    MISSING(CallNonvirtualObjectMethodA)
    MISSING(CallNonvirtualBooleanMethod)
    MISSING(CallNonvirtualBooleanMethodV)
    MISSING(CallNonvirtualBooleanMethodA)
    MISSING(CallNonvirtualByteMethod)
    MISSING(CallNonvirtualByteMethodV)
    MISSING(CallNonvirtualByteMethodA)
    MISSING(CallNonvirtualCharMethod)
    MISSING(CallNonvirtualCharMethodV)
    MISSING(CallNonvirtualCharMethodA)
    MISSING(CallNonvirtualShortMethod)
    MISSING(CallNonvirtualShortMethodV)
    MISSING(CallNonvirtualShortMethodA)
    MISSING(CallNonvirtualIntMethod)
    MISSING(CallNonvirtualIntMethodV)
    MISSING(CallNonvirtualIntMethodA)
    MISSING(CallNonvirtualLongMethod)
    MISSING(CallNonvirtualLongMethodV)
    MISSING(CallNonvirtualLongMethodA)
    MISSING(CallNonvirtualFloatMethod)
    MISSING(CallNonvirtualFloatMethodV)
    MISSING(CallNonvirtualFloatMethodA)
    MISSING(CallNonvirtualDoubleMethod)
    MISSING(CallNonvirtualDoubleMethodV)
    MISSING(CallNonvirtualDoubleMethodA)
    MISSING(CallNonvirtualVoidMethod)
    MISSING(CallNonvirtualVoidMethodV)
    MISSING(CallNonvirtualVoidMethodA)
    MISSING(CallStaticBooleanMethod)
    MISSING(CallStaticBooleanMethodV)
    MISSING(CallStaticBooleanMethodA)
    MISSING(CallStaticByteMethod)
    MISSING(CallStaticByteMethodV)
    MISSING(CallStaticByteMethodA)
    MISSING(CallStaticCharMethod)
    MISSING(CallStaticCharMethodV)
    MISSING(CallStaticCharMethodA)
    MISSING(CallStaticShortMethod)
    MISSING(CallStaticShortMethodV)
    MISSING(CallStaticShortMethodA)
    MISSING(CallStaticIntMethod)
    MISSING(CallStaticIntMethodV)
    MISSING(CallStaticIntMethodA)
    MISSING(CallStaticLongMethod)
    MISSING(CallStaticLongMethodV)
    MISSING(CallStaticLongMethodA)
    MISSING(CallStaticFloatMethod)
    MISSING(CallStaticFloatMethodV)
    MISSING(CallStaticFloatMethodA)
    MISSING(CallStaticDoubleMethod)
    MISSING(CallStaticDoubleMethodV)
    MISSING(CallStaticDoubleMethodA)
    MISSING(GetStaticBooleanField)
    MISSING(GetStaticByteField)
    MISSING(GetStaticCharField)
    MISSING(GetStaticShortField)
    MISSING(GetStaticLongField)
    MISSING(GetStaticFloatField)
    MISSING(GetStaticDoubleField)
    MISSING(SetStaticObjectField)
    MISSING(SetStaticBooleanField)
    MISSING(SetStaticByteField)
    MISSING(SetStaticCharField)
    MISSING(SetStaticShortField)
    MISSING(SetStaticIntField)
    MISSING(SetStaticLongField)
    MISSING(SetStaticFloatField)
    MISSING(SetStaticDoubleField)
    MISSING(RegisterNatives)
    MISSING(UnregisterNatives)
    MISSING(MonitorEnter)
    MISSING(MonitorExit)
    MISSING(GetPrimitiveArrayCritical)
    MISSING(ReleasePrimitiveArrayCritical)
    MISSING(GetStringCritical)
    MISSING(ReleaseStringCritical)
    MISSING(NewWeakGlobalRef)
    MISSING(DeleteWeakGlobalRef)
    MISSING(NewDirectByteBuffer)
    MISSING(GetDirectBufferAddress)
    MISSING(GetDirectBufferCapacity)
    MISSING(GetObjectRefType)
    MISSING(GetModule)
#undef MISSING
}

const JNINativeInterface_& NativeTable() {
    static const JNINativeInterface_ table = MakeTable();
    return table;
}

}  // namespace quarlin::test
