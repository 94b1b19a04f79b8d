// SPDX-License-Identifier: Apache-2.0
// What the system sees of this process besides its handles and heap: libraries, windows, memory.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <psapi.h>
#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <string>

#include "support/system_text_win.h"

namespace quarlin::test {

inline std::set<std::string> LoadedLibraries() {
    std::array<HMODULE, 256> modules{};
    DWORD bytes = 0;
    EXPECT_TRUE(K32EnumProcessModules(GetCurrentProcess(), modules.data(), sizeof(modules), &bytes));
    std::set<std::string> names;
    for (DWORD i = 0; i < std::min<DWORD>(bytes / sizeof(HMODULE), static_cast<DWORD>(modules.size())); ++i) {
        std::array<wchar_t, MAX_PATH> path{};
        GetModuleFileNameW(modules[i], path.data(), MAX_PATH);
        names.insert(ToUtf8(path.data()));
    }
    return names;
}

inline BOOL CALLBACK CountIfOwn(HWND window, LPARAM count) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId()) {
        ++*reinterpret_cast<int*>(count);
    }
    return TRUE;
}

inline int CountWindows() {
    int count = 0;
    EnumWindows(&CountIfOwn, reinterpret_cast<LPARAM>(&count));
    return count;
}

inline std::size_t WorkingSet() {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof(counters);
    EXPECT_TRUE(K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)));
    return counters.WorkingSetSize;
}

}  // namespace quarlin::test
