// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <array>
#include <string_view>

namespace quarlin::test {

inline constexpr const wchar_t* kListenerClass = L"Quarlin SDK Barocde API";
inline constexpr const wchar_t* kListenerWindow = L"Barcode Message Listener Window";

// The library's hidden window of this process; null when there is none. Other test processes have theirs, which come
// and go meanwhile: so the search does not go from one to the next.
inline HWND FindListenerWindow() {
    struct Search {
        static BOOL CALLBACK Look(HWND window, LPARAM found) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            std::array<wchar_t, 64> name{};
            GetClassNameW(window, name.data(), static_cast<int>(name.size()));
            if (process != GetCurrentProcessId() || std::wstring_view(name.data()) != kListenerClass) {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(found) = window;
            return FALSE;
        }
    };
    HWND found = nullptr;
    EnumWindows(&Search::Look, reinterpret_cast<LPARAM>(&found));
    return found;
}

}  // namespace quarlin::test
