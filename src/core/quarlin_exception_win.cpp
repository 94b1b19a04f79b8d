// SPDX-License-Identifier: Apache-2.0
#include "core/quarlin_exception.h"

#include "core/hex_text.h"
#include "core/local_memory_win.h"

#include <windows.h>
#include <cstdio>

namespace quarlin {
namespace {

std::string Utf8(const wchar_t* text, DWORD length) {
    // Three bytes for each UTF-16 unit always suffice, whatever the language of the system's texts.
    std::string utf8(std::size_t{3} * length, '\0');
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), utf8.data(),
                                          static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(bytes));
    return utf8;
}

}  // namespace

void ThrowWin32Error(const char* context, std::uint32_t win32Code) {
    LocalText systemText;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, win32Code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), systemText.Receive(), 0, nullptr);
    if (length == 0) {
        std::printf("Error in FormatMessage: %x\n", static_cast<unsigned>(GetLastError()));
        std::fflush(stdout);
        return;
    }
    throw QuarlinException(QLERR_INTERNAL_ERROR, std::string(context) + "\nWin32 Error 0x" +
                                                     HexText(win32Code, HexCase::kUpper, 8) + ": " +
                                                     Utf8(systemText.get(), length));
}

void ThrowHResultError(const char* context, std::int32_t hresult) {
    throw QuarlinException(QLERR_INTERNAL_ERROR, std::string(context) + "\nWin32 HRESULT: " +
                                                     HexText(static_cast<std::uint32_t>(hresult), HexCase::kLower, 1));
}

}  // namespace quarlin
