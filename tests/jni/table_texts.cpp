// SPDX-License-Identifier: Apache-2.0
// Strings.
#include "text_forms.h"
#include "vm_core.h"

#include <algorithm>
#include <cstring>

namespace quarlin::test {

namespace {

jstring JNICALL NewString(JNIEnv* env, const jchar* characters, jsize length) {
    Entry entry(env, "NewString");
    if (entry.Refused()) {
        return nullptr;
    }
    if (length < 0 || (characters == nullptr && length > 0)) {
        entry.Violate("no such characters");
        return nullptr;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return nullptr;
    }
    std::u16string text(characters, characters + length);
    return static_cast<jstring>(entry.Local(entry.core.NewText(std::move(text))));
}

jstring JNICALL NewStringUTF(JNIEnv* env, const char* bytes) {
    Entry entry(env, "NewStringUTF");
    if (entry.Refused() || bytes == nullptr) {
        return nullptr;
    }
    if (entry.Failed()) {
        entry.OutOfMemory();
        return nullptr;
    }
    auto text = FromModifiedUtf8(bytes);
    if (!text) {
        entry.Violate("bytes that are not modified UTF-8");
        text = FromUtf8(bytes);
    }
    return static_cast<jstring>(entry.Local(entry.core.NewText(std::move(*text))));
}

jsize JNICALL GetStringLength(JNIEnv* env, jstring reference) {
    Entry entry(env, "GetStringLength");
    const JavaRef string = entry.Refused() ? nullptr : entry.Text(reference);
    return string ? static_cast<jsize>(string->characters.size()) : 0;
}

jsize JNICALL GetStringUTFLength(JNIEnv* env, jstring reference) {
    Entry entry(env, "GetStringUTFLength");
    const JavaRef string = entry.Refused() ? nullptr : entry.Text(reference);
    return string ? static_cast<jsize>(ToModifiedUtf8(string->characters).size()) : 0;
}

const char* JNICALL GetStringUTFChars(JNIEnv* env, jstring reference, jboolean* isCopy) {
    Entry entry(env, "GetStringUTFChars");
    const JavaRef string = entry.Refused() ? nullptr : entry.Text(reference);
    if (!string) {
        return nullptr;
    }
    if (entry.Failed()) {
        entry.NoMemoryForACopy();
        return nullptr;
    }
    if (isCopy != nullptr) {
        *isCopy = JNI_TRUE;
    }
    const std::string bytes = ToModifiedUtf8(string->characters);
    return static_cast<const char*>(entry.core.MakePin(entry.thread, string, 'u', bytes.c_str(), bytes.size() + 1));
}

const jchar* JNICALL GetStringChars(JNIEnv* env, jstring reference, jboolean* isCopy) {
    Entry entry(env, "GetStringChars");
    const JavaRef string = entry.Refused() ? nullptr : entry.Text(reference);
    if (!string) {
        return nullptr;
    }
    if (entry.Failed()) {
        entry.NoMemoryForACopy();
        return nullptr;
    }
    if (isCopy != nullptr) {
        *isCopy = JNI_TRUE;
    }
    // Without a terminator: callers have to ask for the length.
    return static_cast<const jchar*>(
        entry.core.MakePin(entry.thread, string, 'c', string->characters.data(), string->characters.size() * 2));
}

void Release(Entry& entry, jstring reference, char kind, const void* memory) {
    const JavaRef string = entry.Refused() ? nullptr : entry.Text(reference);
    if (!string) {
        return;
    }
    if (const Pin* const pin = entry.core.FindPin(entry.Name(), string, kind, memory)) {
        entry.core.CheckPin(entry.Name(), *pin);
        entry.core.pins.erase(memory);
    }
}

void JNICALL ReleaseStringUTFChars(JNIEnv* env, jstring string, const char* bytes) {
    Entry entry(env, "ReleaseStringUTFChars", Entry::kMayBePending);
    Release(entry, string, 'u', bytes);
}

void JNICALL ReleaseStringChars(JNIEnv* env, jstring string, const jchar* characters) {
    Entry entry(env, "ReleaseStringChars", Entry::kMayBePending);
    Release(entry, string, 'c', characters);
}

// The part of a string, or nothing with the exception of Java for a part that it does not have.
std::optional<std::u16string_view> Region(Entry& entry, jstring reference, jsize start, jsize length) {
    const JavaRef string = entry.Refused() ? nullptr : entry.Text(reference);
    if (!string) {
        return std::nullopt;
    }
    const auto size = static_cast<jsize>(string->characters.size());
    if (start < 0 || length < 0 || start > size || length > size - start) {
        entry.Raise("java/lang/StringIndexOutOfBoundsException", std::to_string(start));
        return std::nullopt;
    }
    // The object keeps the characters: references to it outlive the call.
    return std::u16string_view(string->characters)
        .substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length));
}

void JNICALL GetStringRegion(JNIEnv* env, jstring string, jsize start, jsize length, jchar* out) {
    Entry entry(env, "GetStringRegion");
    if (const auto region = Region(entry, string, start, length)) {
        std::copy(region->begin(), region->end(), out);
    }
}

void JNICALL GetStringUTFRegion(JNIEnv* env, jstring string, jsize start, jsize length, char* out) {
    Entry entry(env, "GetStringUTFRegion");
    if (const auto region = Region(entry, string, start, length)) {
        const std::string bytes = ToModifiedUtf8(*region);
        std::memcpy(out, bytes.c_str(), bytes.size() + 1);
    }
}

}  // namespace

void FillTexts(JNINativeInterface_& table) {
    table.NewString = NewString;
    table.NewStringUTF = NewStringUTF;
    table.GetStringLength = GetStringLength;
    table.GetStringUTFLength = GetStringUTFLength;
    table.GetStringUTFChars = GetStringUTFChars;
    table.GetStringChars = GetStringChars;
    table.ReleaseStringUTFChars = ReleaseStringUTFChars;
    table.ReleaseStringChars = ReleaseStringChars;
    table.GetStringRegion = GetStringRegion;
    table.GetStringUTFRegion = GetStringUTFRegion;
}

}  // namespace quarlin::test
