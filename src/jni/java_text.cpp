// SPDX-License-Identifier: Apache-2.0
#include "jni/java_text.h"

#include "jni/modified_utf8.h"

#include <quarlin/strings.h>

#include <algorithm>
#include <string>
#include <vector>

namespace quarlin::jni {
namespace {

// The VM's own copy of a text, for as long as this lives.
class PinnedText {
  public:
    PinnedText(JNIEnv* env, jstring text)
        : env_(env), text_(text), chars_(Made(env->GetStringUTFChars(text, nullptr))) {}
    PinnedText(const PinnedText&) = delete;
    PinnedText& operator=(const PinnedText&) = delete;
    ~PinnedText() { env_->ReleaseStringUTFChars(text_, chars_); }

    [[nodiscard]] const char* Get() const { return chars_; }

  private:
    JNIEnv* env_;
    jstring text_;
    const char* chars_;
};

}  // namespace

NarrowArgument::NarrowArgument(JNIEnv* env, jstring text) : given_(text != nullptr) {
    if (given_) {
        const PinnedText pinned(env, text);
        // A text that does not fit has been cut by the time this fails.
        QLSTR_StrCopyAnsi(text_.data(), kSize, pinned.Get());
    }
}

WideArgument::WideArgument(JNIEnv* env, jstring text) : given_(text != nullptr) {
    if (given_) {
        const PinnedText pinned(env, text);
        int count = 0;
        if (QLSTR_NarrowToWide(text_.data(), kSize, &count, pinned.Get()) != QLERR_OK) {
            text_.fill(L'\0');
        }
    }
}

jstring NewJavaString(JNIEnv* env, const char* text) {
    if (IsModifiedUtf8(text)) {
        return Made(env->NewStringUTF(text));
    }
    return Made(env->NewStringUTF(ToModifiedUtf8(text).c_str()));
}

jstring NewJavaString(JNIEnv* env, const wchar_t* text, std::size_t count) {
    std::vector<jchar> characters(count);
    std::transform(text, text + count, characters.begin(),
                   [](wchar_t character) { return static_cast<jchar>(character); });
    return Made(env->NewString(characters.data(), static_cast<jsize>(count)));
}

LastError FetchLastError(QLerr result) noexcept {
    LastError error{.code = result};
    try {
        error.code = QLAPI_GetLastError(error.message.data(), LastError::kSize);
    } catch (...) {
        // The message is too long and has been cut. A call that succeeds forgets the record, as fetching it would.
        std::array<char, 1> nothing{};
        QLSTR_StrCopyAnsi(nothing.data(), 1, "");
    }
    return error;
}

}  // namespace quarlin::jni
