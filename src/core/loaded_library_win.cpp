// SPDX-License-Identifier: Apache-2.0
#include "core/loaded_library.h"

#include <windows.h>

namespace quarlin {

constinit SystemLibraries systemLibraries;

void* SystemLibraries::Load(const wchar_t* name) {
    return LoadLibraryW(name);
}

void SystemLibraries::Free(void* library) {
    FreeLibrary(static_cast<HMODULE>(library));
}

void* SystemLibraries::Find(void* library, const char* function) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), function));
}

}  // namespace quarlin
