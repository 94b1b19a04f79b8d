// SPDX-License-Identifier: Apache-2.0
#include "settings_win.h"

namespace qlsim {

namespace {

wchar_t Lower(wchar_t character) {
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a') : character;
}

// The value when `entry` (up to `end`) is "key=value", else null.
const wchar_t* ValueOf(const wchar_t* entry, const wchar_t* end, const wchar_t* key) {
    while (entry != end && *key != 0 && Lower(*entry) == Lower(*key)) {
        ++entry;
        ++key;
    }
    return entry != end && *key == 0 && *entry == L'=' ? entry + 1 : nullptr;
}

bool FindIn(const wchar_t* list, const wchar_t* key, SettingValue* value) {
    while (*list != 0) {
        const wchar_t* end = list;
        while (*end != 0 && *end != L';') {
            ++end;
        }
        if (const wchar_t* from = ValueOf(list, end, key)) {
            const SIZE_T room = sizeof(value->text) / sizeof(value->text[0]) - 1;
            SIZE_T length = 0;
            while (from != end && length < room) {
                value->text[length++] = *from++;
            }
            value->text[length] = 0;
            return true;
        }
        list = *end == 0 ? end : end + 1;
    }
    return false;
}

}  // namespace

bool FindSetting(const wchar_t* variable, const wchar_t* key, SettingValue* value) {
    const DWORD capacity = GetEnvironmentVariableW(variable, nullptr, 0);
    if (capacity == 0) {
        return false;
    }
    auto* list = static_cast<wchar_t*>(Allocate(capacity * sizeof(wchar_t)));
    if (list == nullptr) {
        return false;
    }
    // A longer list set by another thread in between counts as none.
    const bool found = GetEnvironmentVariableW(variable, list, capacity) < capacity && FindIn(list, key, value);
    Free(list);
    return found;
}

bool ParseNumber(const wchar_t* text, DWORD* number) {
    DWORD base = 10;
    if (text[0] == L'0' && Lower(text[1]) == L'x') {
        base = 16;
        text += 2;
    }
    ULONGLONG result = 0;
    if (*text == 0) {
        return false;
    }
    for (; *text != 0; ++text) {
        const wchar_t character = Lower(*text);
        DWORD digit = base;
        if (character >= L'0' && character <= L'9') {
            digit = static_cast<DWORD>(character - L'0');
        } else if (character >= L'a' && character <= L'f') {
            digit = static_cast<DWORD>(character - L'a' + 10);
        }
        if (digit >= base) {
            return false;
        }
        result = result * base + digit;
        if (result > 0xFFFFFFFFu) {
            return false;
        }
    }
    *number = static_cast<DWORD>(result);
    return true;
}

void* Allocate(SIZE_T bytes) {
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes);
}

void Free(void* block) {
    HeapFree(GetProcessHeap(), 0, block);
}

}  // namespace qlsim
