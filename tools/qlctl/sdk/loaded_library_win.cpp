// SPDX-License-Identifier: Apache-2.0
#include "sdk/check.h"
#include "sdk/loaded_library.h"

#include <windows.h>

namespace quarlin::qlctl {
namespace {

// Not counted: the process is linked to the library, which stays as long as the process does.
HMODULE Library() {
    const HMODULE library = GetModuleHandleW(L"qlsdk.dll");
    if (library == nullptr) {
        throw Failure(ExitStatus::kSystem, "qlsdk.dll is not loaded");
    }
    return library;
}

}  // namespace

std::string LoadedLibraryPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(Library(), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            throw Failure(ExitStatus::kSystem,
                          "GetModuleFileName failed with Windows error " + std::to_string(GetLastError()));
        }
        if (length < path.size()) {
            path.resize(length);
            return ToUtf8(path.c_str());
        }
        path.resize(path.size() * 2);
    }
}

bool LoadedLibraryExports(const char* function) {
    return GetProcAddress(Library(), function) != nullptr;
}

}  // namespace quarlin::qlctl
