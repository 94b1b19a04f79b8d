// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdarg>
#include <cstdint>

namespace quarlin {

// Text into caller-owned buffers. Counts are elements, terminator included. Each raises QuarlinException through
// ThrowWin32Error when the text is cut or refused, after the cut text has been written.

void BoundedCopyWide(wchar_t* dst, std::int32_t dstCount, const wchar_t* src);
void BoundedCopyNarrow(char* dst, std::int32_t dstCount, const char* src);

// Microsoft's format rules: %s means wide text. Returns the characters written, without the terminator.
std::int32_t BoundedPrintfWide(wchar_t* dst, std::int32_t dstCount, const wchar_t* format, std::va_list args);

// Return the elements written, with the terminator; with a count of 0, the elements needed.
std::int32_t Utf8ToWide(wchar_t* dst, std::int32_t dstCount, const char* src);
std::int32_t WideToUtf8(char* dst, std::int32_t dstBytes, const wchar_t* src);

}  // namespace quarlin
