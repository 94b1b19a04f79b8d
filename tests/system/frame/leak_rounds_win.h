// SPDX-License-Identifier: Apache-2.0
// Rounds of loading, using and unloading that must leave a process as they found it.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <functional>

#include "support/owners_win.h"
#include "support/resource_count_win.h"

namespace quarlin::test {

// Keeps the system libraries loaded that qlsdk.dll imports: what they take and keep is not its affair.
inline void KeepImportsLoaded() {
    const UniqueModule library(LoadLibraryW(L"qlsdk.dll"));
    auto* const base = reinterpret_cast<std::byte*>(library.Get());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const DWORD imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports); entry->Name != 0; ++entry) {
        LoadLibraryA(reinterpret_cast<const char*>(base + entry->Name));
    }
}

// What a number of rounds leave beyond what some rounds before them left.
inline void ExpectNothingLeft(int rounds, const std::function<void()>& round) {
    for (int i = 0; i < 100; ++i) {
        round();
    }
    CountResources();
    const ResourceCount before = CountResources();
    for (int i = 0; i < rounds; ++i) {
        round();
    }
    EXPECT_EQ(CountResources(), before);
}

}  // namespace quarlin::test
