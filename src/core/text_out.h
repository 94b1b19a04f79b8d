// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/quarlin_exception.h"

#include <cstring>
#include <limits>
#include <string>

namespace quarlin {

// How a text of the library goes into a caller's buffer. Sizes count bytes, terminator included.

// Checks all there is to check and gives the size that the text needs. A null buffer with a size of 0 is a question
// for the size.
template <typename Size>
Size CheckTextOut(const char* buffer, const Size* size, const std::string& text) {
    Require(size != nullptr, QLERR_INVALID_ARGUMENT, "dstSize cannot be NULL");
    Require(buffer != nullptr || *size == 0, QLERR_INVALID_ARGUMENT, "OutStr cannot be NULL if OutStrSize is non-zero");
    Require(text.size() < static_cast<std::size_t>(std::numeric_limits<Size>::max()), QLERR_BUFFER_OVERFLOW,
            "Buffer size too small");
    const Size needed = static_cast<Size>(text.size() + 1);
    Require(buffer == nullptr || *size >= needed, QLERR_BUFFER_OVERFLOW, "Buffer size too small");
    return needed;
}

// Writes the size, and the text where there is a buffer for it. After a failure nothing has been written.
template <typename Size>
void CopyTextOut(char* buffer, Size* size, const std::string& text) {
    const Size needed = CheckTextOut(buffer, size, text);
    if (buffer != nullptr) {
        std::memcpy(buffer, text.c_str(), text.size() + 1);
    }
    *size = needed;
}

}  // namespace quarlin
