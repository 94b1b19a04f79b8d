// SPDX-License-Identifier: Apache-2.0
// The RFID reader's native methods that take arrays.
#pragma once

#include <limits>
#include <string>

#include "methods_fixture.h"

#include "com_norvane_quarlin_uhfrfid_UhfRfidNativeBase.h"

namespace quarlin::test {

inline constexpr jint kMost = std::numeric_limits<jint>::max();
inline constexpr jint kLeast = std::numeric_limits<jint>::min();
inline constexpr jint kReader = 8;

// The arrays of a call. Of the numbers each method takes those that it has.
struct Arguments {
    JavaRef tagId;
    JavaRef length;
    JavaRef signal;
    jint tagLength = 0;
    JavaRef password;
    jint passwordLength = 4;
    JavaRef data;
    jint wordCount = 0;
};

using TagMethod = jint (*)(NativeCall& call, jclass self, const Arguments& given);

inline jint FirstTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetFirstTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.tagId), call.Pass<jintArray>(given.length),
        call.Pass<jintArray>(given.signal));
}

inline jint NextTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetNextTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.tagId), call.Pass<jintArray>(given.length),
        call.Pass<jintArray>(given.signal));
}

inline jint SelectTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SelectTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.tagId), given.tagLength);
}

inline jint ReadTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1ReadTag(
        call.Env(), self, kReader, 3, 255, call.Pass<jbyteArray>(given.password), given.passwordLength,
        call.Pass<jbyteArray>(given.data), given.wordCount);
}

inline jint WriteTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1WriteTag(
        call.Env(), self, kReader, 3, 255, call.Pass<jbyteArray>(given.password), given.passwordLength,
        call.Pass<jbyteArray>(given.data), given.wordCount);
}

inline jint LockTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1LockTag(
        call.Env(), self, kReader, 1, 2, call.Pass<jbyteArray>(given.password), given.passwordLength);
}

inline jint KillTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1KillTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.password), given.passwordLength);
}

// What the methods say of an array that is too short.
inline constexpr const char* kTagTooShort = "length is beyond the end of tagId";
inline constexpr const char* kPasswordTooShort = "passwordLength is beyond the end of password";
inline constexpr const char* kDataTooShort = "wordCount is beyond the end of data";
inline const std::string kFirst = "QLUHFRFID_GetFirstTag";
inline const std::string kNext = "QLUHFRFID_GetNextTag";

}  // namespace quarlin::test
