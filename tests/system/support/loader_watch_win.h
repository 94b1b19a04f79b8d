// SPDX-License-Identifier: Apache-2.0
// What qlsdk.dll asks of the system's loader: which libraries, which functions, in which order.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "support/import_hook_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {

// One at a time, from here to the end of the scope.
class LoaderWatch {
  public:
    LoaderWatch() { Log().clear(); }
    LoaderWatch(const LoaderWatch&) = delete;
    LoaderWatch& operator=(const LoaderWatch&) = delete;

    // "LoadLibrary NAME", "GetProcAddress NAME", "FreeLibrary"; forgotten afterwards.
    static std::vector<std::string> Take() { return std::exchange(Log(), {}); }

  private:
    static std::vector<std::string>& Log() {
        static std::vector<std::string> log;
        return log;
    }
    static HMODULE WINAPI Load(const wchar_t* name) {
        Log().push_back("LoadLibrary " + ToUtf8(name));
        return LoadLibraryW(name);
    }
    static FARPROC WINAPI Find(HMODULE module, const char* function) {
        Log().push_back(std::string("GetProcAddress ") + function);
        return GetProcAddress(module, function);
    }
    static BOOL WINAPI Free(HMODULE module) {
        Log().emplace_back("FreeLibrary");
        return FreeLibrary(module);
    }

    const ImportHook load_{"kernel32.dll", "LoadLibraryW", &Load};
    const ImportHook find_{"kernel32.dll", "GetProcAddress", &Find};
    const ImportHook free_{"kernel32.dll", "FreeLibrary", &Free};
};

}  // namespace quarlin::test
