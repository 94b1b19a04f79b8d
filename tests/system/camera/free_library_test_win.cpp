// SPDX-License-Identifier: Apache-2.0
// The DLL comes and goes in one process, with the camera light initialised or not.
#include <gtest/gtest.h>

#include <windows.h>

#include "camera/light_machine_win.h"
#include "frame/leak_rounds_win.h"
#include "support/loaded_library_win.h"

namespace quarlin::test {
namespace {

// The light's own library stays, and is what it was from the first round on.
TEST(LoadsWithTheLight, LeaveNothingElse) {
    const LightMachine machine;
    KeepImportsLoaded();
    ExpectNothingLeft(100, [] {
        const LoadedLibrary library;
        ASSERT_EQ(library.QLCAM_Initialize(), QLERR_OK);
        ASSERT_EQ(library.QLCAM_SetCameraLightOn(), QLERR_OK);
        ASSERT_EQ(library.QLCAM_Uninitialize(), QLERR_OK);
    });
    EXPECT_EQ(GetModuleHandleW(L"qlsdk.dll"), nullptr);
    EXPECT_GT(UnloadWholly(kLightLibrary), 0);
}

TEST(LoadsWithTheLight, LeaveNothingElseWhenNoneTidiesUp) {
    const LightMachine machine;
    KeepImportsLoaded();
    ExpectNothingLeft(100, [] {
        const LoadedLibrary library;
        ASSERT_EQ(library.QLCAM_Initialize(), QLERR_OK);
    });
    EXPECT_EQ(GetModuleHandleW(L"qlsdk.dll"), nullptr);
}

}  // namespace
}  // namespace quarlin::test
