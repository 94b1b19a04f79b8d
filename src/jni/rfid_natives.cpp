// SPDX-License-Identifier: Apache-2.0
// The native methods of com.norvane.quarlin.uhfrfid.UhfRfidNativeBase, and of CoreNatives beside it.
#include "jni/java_vm.h"
#include "jni/rfid_arrays.h"
#include "jni/wrapper.h"

#include <quarlin/uhf_rfid.h>

#include <cstdint>

#include "com_norvane_quarlin_uhfrfid_CoreNatives.h"
#include "com_norvane_quarlin_uhfrfid_UhfRfidNativeBase.h"

using namespace quarlin::jni;

namespace {

// Handles have 32 significant bits on 64-bit Windows too, and are widened with their sign.
void* ToHandle(jint reader) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(reader));  // NOLINT(performance-no-int-to-ptr)
}

jint FromHandle(void* handle) {
    return static_cast<jint>(reinterpret_cast<std::intptr_t>(handle));
}

template <typename Value>
jint Query(JNIEnv* env, QLerr (*function)(void*, Value*), jint reader) noexcept {
    return quarlin::jni::Query<RfidGroup, jint, Value>(env,
                                                       [&](Value* value) { return function(ToHandle(reader), value); });
}

// What the function writes back into the value is dropped.
template <typename Value>
jint SetForQuery(JNIEnv* env, QLerr (*function)(void*, Value*), jint reader, jint value) noexcept {
    return Perform<RfidGroup>(env, [&] {
        auto given = static_cast<Value>(value);
        return function(ToHandle(reader), &given);
    });
}

// A method with arrays: an array that is too short is refused like any other argument.
template <typename Call>
jint PerformWithArrays(JNIEnv* env, Call&& call) noexcept {
    return Contain<RfidGroup>(env, kUnknownFailure, [&]() -> jint {
        try {
            const QLerr result = std::forward<Call>(call)();
            return result == QLERR_OK ? 0 : RfidGroup::Raise(env, result);
        } catch (const ArrayTooShort& refused) {
            return ThrowRfidJavaException(QLERR_INVALID_ARGUMENT, refused.message);
        }
    });
}

unsigned char* Bytes(const PinnedBytes& array) {
    return reinterpret_cast<unsigned char*>(array.Get());
}

PinnedBytes Password(JNIEnv* env, jbyteArray password, jint length) {
    return {env, password, length, "passwordLength is beyond the end of password"};
}

// Both functions of the inventory.
jint GetTag(JNIEnv* env, QLerr (*function)(void*, char*, int*, int*), jint reader, jbyteArray tagId, jintArray length,
            jintArray signal) noexcept {
    return PerformWithArrays(env, [&] {
        PinnedInts lengthValue(env, length, 1, "length has no element");
        PinnedInts signalValue(env, signal, 1, "signal has no element");
        PinnedBytes tag(env, tagId, lengthValue.Get() == nullptr ? 0 : *lengthValue.Get(),
                        "length is beyond the end of tagId");
        const QLerr result =
            function(ToHandle(reader), reinterpret_cast<char*>(tag.Get()), lengthValue.Get(), signalValue.Get());
        if (result == QLERR_OK) {
            tag.WriteBack();
            lengthValue.WriteBack();
            signalValue.WriteBack();
        }
        return result;
    });
}

constexpr std::int64_t kBytesOfWord = 2;

}  // namespace

jboolean Java_com_norvane_quarlin_uhfrfid_CoreNatives_nInit(JNIEnv* env, jclass /*self*/, jclass exceptionClass) {
    if (!KeepVm(env, rfidVm)) {
        return JNI_FALSE;
    }
    rfidExceptionClass = KeepClass(env, exceptionClass);
    return JNI_TRUE;
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1OpenReader(JNIEnv* env, jclass /*self*/) {
    return Contain<RfidGroup>(env, kUnknownFailure, [&]() -> jint {
        void* handle = nullptr;
        Succeeded<RfidGroup>(env, QLUHFRFID_OpenReader(&handle));
        return FromHandle(handle);
    });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1CloseReader(JNIEnv* env, jclass /*self*/,
                                                                               jint reader) {
    return Perform<RfidGroup>(env, [&] { return QLUHFRFID_CloseReader(ToHandle(reader)); });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetFirstTag(JNIEnv* env, jclass /*self*/,
                                                                               jint reader, jbyteArray tagId,
                                                                               jintArray length, jintArray signal) {
    return GetTag(env, QLUHFRFID_GetFirstTag, reader, tagId, length, signal);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetNextTag(JNIEnv* env, jclass /*self*/, jint reader,
                                                                              jbyteArray tagId, jintArray length,
                                                                              jintArray signal) {
    return GetTag(env, QLUHFRFID_GetNextTag, reader, tagId, length, signal);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SelectTag(JNIEnv* env, jclass /*self*/, jint reader,
                                                                             jbyteArray tagId, jint length) {
    return PerformWithArrays(env, [&] {
        const PinnedBytes tag(env, tagId, length, "length is beyond the end of tagId");
        return QLUHFRFID_SelectTag(ToHandle(reader), Bytes(tag), static_cast<unsigned int>(length));
    });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1ReadTag(JNIEnv* env, jclass /*self*/, jint reader,
                                                                           jint bank, jint wordPointer,
                                                                           jbyteArray password, jint passwordLength,
                                                                           jbyteArray data, jint wordCount) {
    return PerformWithArrays(env, [&] {
        const PinnedBytes given = Password(env, password, passwordLength);
        PinnedBytes words(env, data, wordCount * kBytesOfWord, "wordCount is beyond the end of data");
        const QLerr result =
            QLUHFRFID_ReadTag(ToHandle(reader), static_cast<unsigned int>(bank), static_cast<unsigned int>(wordPointer),
                              Bytes(given), passwordLength, words.Get(), wordCount);
        if (result == QLERR_OK) {
            words.WriteBack();
        }
        return result;
    });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1WriteTag(JNIEnv* env, jclass /*self*/, jint reader,
                                                                            jint bank, jint wordPointer,
                                                                            jbyteArray password, jint passwordLength,
                                                                            jbyteArray data, jint wordCount) {
    return PerformWithArrays(env, [&] {
        const PinnedBytes given = Password(env, password, passwordLength);
        const PinnedBytes words(env, data, wordCount * kBytesOfWord, "wordCount is beyond the end of data");
        return QLUHFRFID_WriteTag(ToHandle(reader), static_cast<unsigned int>(bank),
                                  static_cast<unsigned int>(wordPointer), Bytes(given), passwordLength, Bytes(words),
                                  wordCount);
    });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1LockTag(JNIEnv* env, jclass /*self*/, jint reader,
                                                                           jint lockParameter1, jint lockParameter2,
                                                                           jbyteArray password, jint passwordLength) {
    return PerformWithArrays(env, [&] {
        const PinnedBytes given = Password(env, password, passwordLength);
        return QLUHFRFID_LockTag(ToHandle(reader), static_cast<unsigned int>(lockParameter1),
                                 static_cast<unsigned int>(lockParameter2), Bytes(given), passwordLength);
    });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1KillTag(JNIEnv* env, jclass /*self*/, jint reader,
                                                                           jbyteArray password, jint passwordLength) {
    return PerformWithArrays(env, [&] {
        const PinnedBytes given = Password(env, password, passwordLength);
        return QLUHFRFID_KillTag(ToHandle(reader), Bytes(given), passwordLength);
    });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetPower(JNIEnv* env, jclass /*self*/, jint reader) {
    return Query(env, QLUHFRFID_GetPower, reader);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetPower(JNIEnv* env, jclass /*self*/, jint reader,
                                                                            jint power) {
    return Perform<RfidGroup>(env,
                              [&] { return QLUHFRFID_SetPower(ToHandle(reader), static_cast<unsigned int>(power)); });
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetLinkFreqForQuery(JNIEnv* env, jclass /*self*/,
                                                                                       jint reader) {
    return Query(env, QLUHFRFID_GetLinkFreqForQuery, reader);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetLinkFreqForQuery(JNIEnv* env, jclass /*self*/,
                                                                                       jint reader, jint value) {
    return SetForQuery(env, QLUHFRFID_SetLinkFreqForQuery, reader, value);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetMillerForQuery(JNIEnv* env, jclass /*self*/,
                                                                                     jint reader) {
    return Query(env, QLUHFRFID_GetMillerForQuery, reader);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetMillerForQuery(JNIEnv* env, jclass /*self*/,
                                                                                     jint reader, jint value) {
    return SetForQuery(env, QLUHFRFID_SetMillerForQuery, reader, value);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetQBeginForQuery(JNIEnv* env, jclass /*self*/,
                                                                                     jint reader) {
    return Query(env, QLUHFRFID_GetQBeginForQuery, reader);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetQBeginForQuery(JNIEnv* env, jclass /*self*/,
                                                                                     jint reader, jint value) {
    return SetForQuery(env, QLUHFRFID_SetQBeginForQuery, reader, value);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetSensitivityForQuery(JNIEnv* env, jclass /*self*/,
                                                                                          jint reader) {
    return Query(env, QLUHFRFID_GetSensitivityForQuery, reader);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetSensitivityForQuery(JNIEnv* env, jclass /*self*/,
                                                                                          jint reader, jint value) {
    return SetForQuery(env, QLUHFRFID_SetSensitivityForQuery, reader, value);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetSessionForQuery(JNIEnv* env, jclass /*self*/,
                                                                                      jint reader) {
    return Query(env, QLUHFRFID_GetSessionForQuery, reader);
}

jint Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetSessionForQuery(JNIEnv* env, jclass /*self*/,
                                                                                      jint reader, jint value) {
    return SetForQuery(env, QLUHFRFID_SetSessionForQuery, reader, value);
}
