// SPDX-License-Identifier: Apache-2.0
// Settings of a stand-in: an environment variable with a list "key=value;key=value". Read at each call, so that a test
// can change what a stand-in does between two calls.
#pragma once

#include <windows.h>

namespace qlsim {

struct SettingValue {
    // Long enough for every keyword and number; a longer value is cut and then matches none of them.
    wchar_t text[32];
};

// False when the variable is unset or has no such key. Keys compare without case.
bool FindSetting(const wchar_t* variable, const wchar_t* key, SettingValue* value);

// A whole decimal or 0x… number of at most 32 bits.
bool ParseNumber(const wchar_t* text, DWORD* number);

// Memory without the C++ runtime: the stand-ins are loaded and unloaded once per call, and libstdc++ would leave a heap
// block behind each time.
void* Allocate(SIZE_T bytes);
void Free(void* block);

}  // namespace qlsim
