// SPDX-License-Identifier: Apache-2.0
#include "edge/system_error_win.h"

#include <windows.h>
#include <array>

namespace quarlin::sim {

std::string SystemMessage(std::uint32_t error) {
    std::array<wchar_t, 512> text{};
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                       nullptr, error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string message = Narrow({text.data(), length});
    message.erase(message.find_last_not_of(" .\r\n") + 1);
    const std::string number = "error " + std::to_string(error);
    return message.empty() ? number : message + " (" + number + ")";
}

std::wstring Wide(std::string_view utf8) {
    const int bytes = static_cast<int>(utf8.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string Narrow(std::wstring_view wide) {
    const int units = static_cast<int>(wide.size());
    std::string utf8(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    return utf8;
}

}  // namespace quarlin::sim
