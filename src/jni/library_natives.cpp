// SPDX-License-Identifier: Apache-2.0
// The native methods of com.norvane.quarlin.Library.
#include "jni/wrapper.h"

#include <quarlin/library.h>
#include <quarlin/strings.h>

#include <array>
#include <string>

#include "com_norvane_quarlin_Library.h"

using namespace quarlin::jni;

namespace {

constexpr int kTextSize = 250;

// Raises nothing: what the library cannot tell is an empty text.
jstring LibraryText(JNIEnv* env, QLerr (*function)(wchar_t*, int*)) noexcept {
    return Contain<ResultGroup>(env, kUnknownFailure, [&]() -> jstring {
        std::array<wchar_t, kTextSize> wide{};
        int count = kTextSize;
        function(wide.data(), &count);
        wide.back() = L'\0';
        // Three bytes for each character, and the terminator behind them.
        const int size = 3 * count;
        std::string narrow(static_cast<std::size_t>(size) + 1, '\0');
        if (QLSTR_WideToNarrow(narrow.data(), size, &count, wide.data()) != QLERR_OK) {
            narrow.clear();
        }
        return NewJavaString(env, narrow.c_str());
    });
}

}  // namespace

jstring Java_com_norvane_quarlin_Library_QLLIB_1GetSDKVersion(JNIEnv* env, jclass /*self*/) {
    return LibraryText(env, QLLIB_GetSDKVersion);
}

jstring Java_com_norvane_quarlin_Library_QLLIB_1GetModelNumber(JNIEnv* env, jclass /*self*/) {
    return LibraryText(env, QLLIB_GetModelNumber);
}
