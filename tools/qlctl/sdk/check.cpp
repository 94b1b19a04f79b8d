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

}  // namespace quarlin::qlctl
