// SPDX-License-Identifier: Apache-2.0
#include "sdk/check.h"

#include "quarlin/strings.h"

#include <array>

namespace quarlin::qlctl {

LibraryError TakeError(QLerr code) {
    // Longer than any text of the library, so that fetching it cannot fail.
    std::array<char, 4096> text{};
    QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
    return {code, text.data()};
}

void Check(QLerr result) {
    if (result != QLERR_OK) {
        throw Failure(TakeError(result));
    }
}

std::string ToUtf8(const wchar_t* text) {
    int size = 0;
    Check(QLSTR_WideToNarrow(nullptr, 0, &size, text));
    std::string narrow(static_cast<size_t>(size), '\0');
    Check(QLSTR_WideToNarrow(narrow.data(), size, &size, text));
    narrow.pop_back();  // the terminator
    return narrow;
}

std::wstring ToWide(const std::string& text) {
    int size = 0;
    Check(QLSTR_NarrowToWide(nullptr, 0, &size, text.c_str()));
    std::wstring wide(static_cast<size_t>(size), L'\0');
    Check(QLSTR_NarrowToWide(wide.data(), size, &size, text.c_str()));
    wide.pop_back();  // the terminator
    return wide;
}

}  // namespace quarlin::qlctl
