// SPDX-License-Identifier: Apache-2.0
// The DLL comes and goes in one process: with the device family tidied up, and without.
#include <gtest/gtest.h>

#include <windows.h>

#include "device/probe_machine_win.h"
#include "frame/leak_rounds_win.h"
#include "support/loaded_library_win.h"

namespace quarlin::test {
namespace {

TEST(LoadsWithDevices, LeaveNothingWhenEachTidiesUp) {
    const ProbeMachine machine;
    KeepImportsLoaded();
    ExpectNothingLeft(100, [] {
        const LoadedLibrary library;
        bool available = false;
        ASSERT_EQ(library.QLDEVICE_Initialize(), QLERR_OK);
        ASSERT_EQ(library.QLDEVICE_GetDeviceAvailable(1, &available), QLERR_OK);
        ASSERT_EQ(library.QLDEVICE_Uninitialize(), QLERR_OK);
    });
    EXPECT_EQ(GetModuleHandleW(kProbeLibrary), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"qlsdk.dll"), nullptr);
}

// Inside the system's loader nobody may free a library: it stays, and nothing else does.
TEST(LoadsWithDevices, LeaveTheProbeLibraryWhenNoneTidiesUp) {
    const ProbeMachine machine;
    KeepImportsLoaded();
    ExpectNothingLeft(100, [] {
        const LoadedLibrary library;
        ASSERT_EQ(library.QLDEVICE_Initialize(), QLERR_OK);
    });
    EXPECT_EQ(GetModuleHandleW(L"qlsdk.dll"), nullptr);
    EXPECT_GT(UnloadWholly(kProbeLibrary), 0);
}

}  // namespace
}  // namespace quarlin::test
