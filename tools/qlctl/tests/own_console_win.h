// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "child_process_win.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {

// A console that the tests and the programs that they start have for themselves, so that Ctrl-C reaches nobody else.
class OwnConsole : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        FreeConsole();
        EXPECT_TRUE(AllocConsole()) << GetLastError();
        SetConsoleCtrlHandler(OutliveControlKeys, TRUE);
    }
    // The console stays to the end of the program: without one, each program started later would make its own, slowly.
    static void TearDownTestSuite() { SetConsoleCtrlHandler(OutliveControlKeys, FALSE); }

    OwnConsole() {
        SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        screen_.reset(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  &inheritable, OPEN_EXISTING, 0, nullptr));
    }

    static void PressCtrlC() { EXPECT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << GetLastError(); }

    HANDLE Screen() const { return screen_.get(); }
    std::wstring ScreenText() const {
        std::wstring text(4000, L' ');
        DWORD length = 0;
        EXPECT_TRUE(
            ReadConsoleOutputCharacterW(Screen(), text.data(), static_cast<DWORD>(text.size()), {0, 0}, &length))
            << GetLastError();
        text.resize(length);
        return text;
    }

  private:
    static BOOL WINAPI OutliveControlKeys(DWORD) { return TRUE; }

    UniqueHandle screen_;
};

}  // namespace quarlin::qlctl
