// SPDX-License-Identifier: Apache-2.0
// qlsdk.dll as a Java VM finds it: the library by its name, the native methods by theirs.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "support/loaded_library_win.h"

namespace quarlin::test {

// Has the flat functions beside the native methods.
class JavaLibrary : public LoadedLibrary {
  public:
    // Throws std::runtime_error when the library does not export it.
    template <typename Method>
    Method* Native(const char* name) const {
        const FARPROC address = GetProcAddress(Module(), name);
        if (address == nullptr) {
            throw std::runtime_error(std::string(name) + " is not exported");
        }
        return reinterpret_cast<Method*>(reinterpret_cast<void*>(address));
    }
};

inline bool IsLibraryLoaded() {
    return GetModuleHandleW(L"qlsdk.dll") != nullptr;
}

}  // namespace quarlin::test

// A native method by its class and its escaped name: QUARLIN_NATIVE(library, gps_GPS_QLGPS_1Enable)(env, self).
#define QUARLIN_NATIVE(library, method) \
    (library).Native<decltype(::Java_com_norvane_quarlin_##method)>("Java_com_norvane_quarlin_" #method)
