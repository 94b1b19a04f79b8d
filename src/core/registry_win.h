// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

namespace quarlin {

// Reads single registry values. Made on the stack around each read; a value of another type counts as absent.
class CReg {
  public:
    CReg() = default;
    CReg(const CReg&) = delete;
    CReg& operator=(const CReg&) = delete;
    virtual ~CReg() = default;

    bool ReadDword(HKEY root, const wchar_t* subKey, const wchar_t* valueName, DWORD* out);

    // dataBytes: in, the size of data; out, the size of what was read. The text has a terminator whether or not the
    // registry holds one. REG_EXPAND_SZ is not expanded; of REG_MULTI_SZ a reader that stops at the first terminator
    // sees the first text.
    bool ReadString(HKEY root, const wchar_t* subKey, const wchar_t* valueName, wchar_t* data, DWORD* dataBytes,
                    REGSAM extraAccess);
};

}  // namespace quarlin
