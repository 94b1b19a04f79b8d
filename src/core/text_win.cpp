// SPDX-License-Identifier: Apache-2.0
#include "core/text.h"

#include "core/bounded_text.h"
#include "core/quarlin_exception.h"

#include <windows.h>
#include <cstdio>
#include <cwchar>

namespace quarlin {
namespace {

constexpr const char* kCopyFailed = "Failed to copy string";
constexpr const char* kPrintFailed = "Failed to print formatted string";

void RequireWhole(std::int32_t result, const char* context) {
    if (result < 0) {
        ThrowWin32Error(context, static_cast<std::uint32_t>(result));
    }
}

std::int32_t MeasurePrint(const wchar_t* format, std::va_list args) {
    std::va_list copy;
    va_copy(copy, args);
    const int needed = _vscwprintf(format, copy);
    va_end(copy);
    return needed;
}

}  // namespace

void BoundedCopyWide(wchar_t* dst, std::int32_t dstCount, const wchar_t* src) {
    RequireWhole(BoundedCopy(dst, dstCount, src), kCopyFailed);
}

void BoundedCopyNarrow(char* dst, std::int32_t dstCount, const char* src) {
    RequireWhole(BoundedCopy(dst, dstCount, src), kCopyFailed);
}

std::int32_t BoundedPrintfWide(wchar_t* dst, std::int32_t dstCount, const wchar_t* format, std::va_list args) {
    std::int32_t result = CheckCount(dst, dstCount);
    std::int32_t written = 0;
    if (result == kTextOk && format == nullptr) {
        *dst = L'\0';
        result = kTextInvalidArgument;
    }
    if (result == kTextOk) {
        const std::int32_t room = dstCount - 1;
        // Measured first, because the count may be far larger than the buffer: only the text itself tells where the
        // terminator may go.
        const std::int32_t needed = MeasurePrint(format, args);
        written = needed < 0 ? 0 : (needed < room ? needed : room);
        if (written > 0) {
            _vsnwprintf(dst, static_cast<std::size_t>(written), format, args);
        }
        dst[written] = L'\0';
        result = needed < 0 || needed > room ? kTextInsufficientBuffer : kTextOk;
    }
    RequireWhole(result, kPrintFailed);
    return written;
}

std::int32_t Utf8ToWide(wchar_t* dst, std::int32_t dstCount, const char* src) {
    const int count = MultiByteToWideChar(CP_UTF8, 0, src, -1, dst, dstCount);
    if (count == 0) {
        ThrowWin32Error("Multibyte to unicode conversion failed", GetLastError());
    }
    return count;
}

std::int32_t WideToUtf8(char* dst, std::int32_t dstBytes, const wchar_t* src) {
    const int count = WideCharToMultiByte(CP_UTF8, 0, src, -1, dst, dstBytes, nullptr, nullptr);
    if (count == 0) {
        ThrowWin32Error("Unicode to multibyte conversion failed", GetLastError());
    }
    return count;
}

}  // namespace quarlin
