// SPDX-License-Identifier: Apache-2.0
// Which DLL the system tests run on: the one of their own build, or the one in the folder that the run names.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "support/loaded_library_win.h"

namespace quarlin::test {
namespace {

std::filesystem::path ProgramFolder() {
    std::array<wchar_t, 1024> path{};
    GetModuleFileNameW(nullptr, path.data(), path.size());
    return std::filesystem::path(path.data()).parent_path();
}

TEST(LibraryUnderTest, ComesFromTheFolderThatTheRunNames) {
    const LoadedLibrary library;
    std::array<wchar_t, 1024> path{};
    ASSERT_NE(GetModuleFileNameW(GetModuleHandleW(L"qlsdk.dll"), path.data(), path.size()), 0U);

    const char* const named = std::getenv("QLSIM_LIBRARY_DIR");
    const std::filesystem::path expected = named != nullptr && *named != '\0'
                                               ? std::filesystem::path("Z:" + std::string(named))
                                               : ProgramFolder().parent_path() / "bin";
    EXPECT_TRUE(std::filesystem::equivalent(expected, std::filesystem::path(path.data()).parent_path()))
        << expected << " and " << std::filesystem::path(path.data());
}

}  // namespace
}  // namespace quarlin::test
