// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/error.h>

#include <jni.h>

#include <array>
#include <cstddef>

namespace quarlin::jni {

// Thrown when a call into the VM failed: the VM's own error is pending, and is what Java gets.
struct JavaErrorPending {};

// The result of a call into the VM that gives null when it failed.
template <typename Reference>
Reference Made(Reference reference) {
    if (reference == nullptr) {
        throw JavaErrorPending{};
    }
    return reference;
}

// A Java text on its way to a narrow function: UTF-8, cut where it does not fit. A null text is a null pointer.
class NarrowArgument {
  public:
    static constexpr int kSize = 128;

    NarrowArgument(JNIEnv* env, jstring text);

    [[nodiscard]] const char* Get() const { return given_ ? text_.data() : nullptr; }

  private:
    bool given_;
    std::array<char, kSize> text_{};
};

// A Java text on its way to a wide function; empty where it does not fit. A null text is a null pointer.
class WideArgument {
  public:
    static constexpr int kSize = 128;

    WideArgument(JNIEnv* env, jstring text);

    [[nodiscard]] const wchar_t* Get() const { return given_ ? text_.data() : nullptr; }

  private:
    bool given_;
    std::array<wchar_t, kSize> text_{};
};

// A text of the library as a Java string. Bytes that Java's form of UTF-8 does not have are replaced.
jstring NewJavaString(JNIEnv* env, const char* text);

// Exactly these characters of UTF-16 as a Java string.
jstring NewJavaString(JNIEnv* env, const wchar_t* text, std::size_t count);

// The calling thread's last error, as the raisers want it; it is consumed.
struct LastError {
    static constexpr int kSize = 250;

    QLerr code;
    std::array<char, kSize> message{};
};

// The record of the call that has just given this result. A message that does not fit is cut.
LastError FetchLastError(QLerr result) noexcept;

}  // namespace quarlin::jni
