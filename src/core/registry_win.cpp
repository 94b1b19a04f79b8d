// SPDX-License-Identifier: Apache-2.0
#include "core/registry_win.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace quarlin {
namespace {

class RegistryKey {
  public:
    RegistryKey(HKEY root, const wchar_t* subKey, REGSAM access) {
        if (RegOpenKeyExW(root, subKey, 0, access, &key_) != ERROR_SUCCESS) {
            key_ = nullptr;
        }
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;
    ~RegistryKey() {
        if (key_ != nullptr) {
            RegCloseKey(key_);
        }
    }

    bool Query(const wchar_t* valueName, DWORD* type, void* data, DWORD* dataBytes) const {
        return key_ != nullptr &&
               RegQueryValueExW(key_, valueName, nullptr, type, static_cast<BYTE*>(data), dataBytes) == ERROR_SUCCESS;
    }

  private:
    HKEY key_ = nullptr;
};

bool IsTextType(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

}  // namespace

bool CReg::ReadDword(HKEY root, const wchar_t* subKey, const wchar_t* valueName, DWORD* out) {
    std::array<std::byte, 256> data{};
    DWORD dataBytes = data.size();
    DWORD type = REG_NONE;
    if (!RegistryKey(root, subKey, KEY_QUERY_VALUE).Query(valueName, &type, data.data(), &dataBytes) ||
        type != REG_DWORD || dataBytes != sizeof *out) {
        return false;
    }
    std::memcpy(out, data.data(), sizeof *out);
    return true;
}

bool CReg::ReadString(HKEY root, const wchar_t* subKey, const wchar_t* valueName, wchar_t* data, DWORD* dataBytes,
                      REGSAM extraAccess) {
    const DWORD capacity = *dataBytes / DWORD{sizeof(wchar_t)};
    DWORD type = REG_NONE;
    if (!RegistryKey(root, subKey, KEY_QUERY_VALUE | extraAccess).Query(valueName, &type, data, dataBytes) ||
        !IsTextType(type) || capacity == 0) {
        return false;
    }
    // The registry stores what it was given, with or without a terminator.
    const DWORD length = *dataBytes / DWORD{sizeof(wchar_t)};
    data[length < capacity ? length : capacity - 1] = L'\0';
    return true;
}

}  // namespace quarlin
