// SPDX-License-Identifier: Apache-2.0
#define QL_WITH_STD_STRING
#include "core/export_frame.h"
#include "core/firmware_model.h"
#include "core/management_model.h"
#include "core/text.h"
#include "core/text_out.h"

#include <quarlin/error.h>
#include <quarlin/library.h>
#include <quarlin/strings.h>

#include <array>
#include <cstdarg>
#include <limits>
#include <string>

using namespace quarlin;

namespace {

constexpr const wchar_t* kRelease = L"3.0.1000.0";

int TextSize(std::size_t length) {
    Require(length < static_cast<std::size_t>(std::numeric_limits<int>::max()), QLERR_BUFFER_OVERFLOW,
            "Buffer size too small");
    return static_cast<int>(length) + 1;
}

std::wstring Printed(const wchar_t* format, ...) {
    std::array<wchar_t, 260> text{};
    std::va_list args;
    va_start(args, format);
    BoundedPrintfWide(text.data(), text.size(), format, args);
    va_end(args);
    return text.data();
}

void CheckTextOut(const wchar_t* buffer, const int* size) {
    // The text speaks of the count in both cases.
    Require(size != nullptr && (buffer != nullptr || *size == 0), QLERR_INVALID_ARGUMENT,
            "The argument count cannot be NULL.");
}

void CopyTextOut(wchar_t* buffer, int* size, const std::wstring& text) {
    const int needed = TextSize(text.size());
    if (buffer != nullptr) {
        Require(*size >= needed, QLERR_BUFFER_OVERFLOW, "Buffer size too small");
        BoundedCopyWide(buffer, *size, text.c_str());
    }
    *size = needed;
}

void CheckCountOut(const int* count) {
    Require(count != nullptr, QLERR_INVALID_ARGUMENT, "The argument count cannot be NULL.");
}

}  // namespace

// Outside the frame: when its copy fails there is no place left for a record, and the exception leaves the library.
QLerr QLAPI_GetLastError(char* buffer, int bufferSize) {
    return TakeQlLastError(buffer, bufferSize);
}

QLerr QLSTR_NarrowToWide(wchar_t* dst, int dstSize, int* outCount, const char* src) {
    return Export([&] {
        CheckCountOut(outCount);
        *outCount = Utf8ToWide(dst, dstSize, src);
    });
}

QLerr QLSTR_WideToNarrow(char* dst, int dstSize, int* outCount, const wchar_t* src) {
    return Export([&] {
        CheckCountOut(outCount);
        *outCount = WideToUtf8(dst, dstSize, src);
    });
}

QLerr QLSTR_StrCopy(wchar_t* dst, int dstSize, const wchar_t* src) {
    return Export([&] { BoundedCopyWide(dst, dstSize, src); });
}

QLerr QLSTR_StrCopyAnsi(char* dst, int dstSize, const char* src) {
    return Export([&] { BoundedCopyNarrow(dst, dstSize, src); });
}

QLerr QLSTR_StrPrintf(wchar_t* dst, int dstSize, int* /*written*/, const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    const QLerr result = Export([&] { BoundedPrintfWide(dst, dstSize, format, args); });
    va_end(args);
    return result;
}

QLerr QLSTR_StrVarPrintf(wchar_t* dst, int dstSize, int* written, const wchar_t* format, std::va_list args) {
    return Export([&] {
        CheckCountOut(written);
        *written = BoundedPrintfWide(dst, dstSize, format, args);
    });
}

QLerr QLSTR_CppStrToCStr(char* outStr, int* outStrSize, std::string text) {
    return Export([&] {
        const int needed = CheckTextOut(outStr, outStrSize, text);
        if (outStr != nullptr) {
            BoundedCopyNarrow(outStr, *outStrSize, text.c_str());
        }
        *outStrSize = needed;
    });
}

QLerr QLLIB_GetSDKVersion(wchar_t* buffer, int* size) {
    return Export([&] {
        CheckTextOut(buffer, size);
        CopyTextOut(buffer, size, Printed(L"%s", kRelease));
    });
}

QLerr QLLIB_GetModelNumber(wchar_t* buffer, int* size) {
    return Export([&] {
        CheckTextOut(buffer, size);
        CopyTextOut(buffer, size, FirmwareProductName());
    });
}

QLerr QLMISC_GetModelNumber(char* buffer, int bufferSize, int* length) {
    return Export([&] {
        const std::string model = ManagementModel();
        const int modelLength = static_cast<int>(model.size());
        if (length != nullptr) {
            *length = modelLength;
        }
        // Not one more for the terminator: a size that equals the length is cut and fails.
        if (buffer != nullptr && bufferSize >= modelLength) {
            BoundedCopyNarrow(buffer, bufferSize, model.c_str());
        }
    });
}

// Also exported as QLMISC_ThreadSleep and QLMISC_WaitForDebugger. Touches no last error.
QLerr QLMISC_ShowConsole() {
    return QLERR_OK;
}
