// SPDX-License-Identifier: Apache-2.0
#include "support/system_text_win.h"

#include <array>
#include <cstdio>
#include <stdexcept>

namespace quarlin::test {
namespace {

DWORD FormatSystemText(DWORD code, wchar_t* buffer, DWORD size) {
    return FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                          MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), buffer, size, nullptr);
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
    if (text.empty()) {
        return {};
    }
    const int wide = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), wide, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), wide, result.data(), bytes, nullptr, nullptr);
    return result;
}

std::wstring ToWide(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const int bytes = static_cast<int>(text.size());
    const int wide = MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
    std::wstring result(static_cast<size_t>(wide), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, result.data(), wide);
    return result;
}

bool HasSystemText(DWORD code) {
    std::array<wchar_t, 1024> buffer{};
    return FormatSystemText(code, buffer.data(), static_cast<DWORD>(buffer.size())) != 0;
}

std::string SystemText(DWORD code) {
    std::array<wchar_t, 1024> buffer{};
    const DWORD length = FormatSystemText(code, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0) {
        throw std::runtime_error("the system has no text for error " + std::to_string(code));
    }
    return ToUtf8({buffer.data(), length});
}

std::string Win32Message(std::string_view context, DWORD code) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%08lX", code);
    return std::string(context) + "\nWin32 Error 0x" + digits.data() + ": " + SystemText(code);
}

std::string HResultMessage(std::string_view context, HRESULT hr) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%lx", static_cast<unsigned long>(hr));
    return std::string(context) + "\nWin32 HRESULT: " + digits.data();
}

}  // namespace quarlin::test
