// SPDX-License-Identifier: Apache-2.0
#include "nmea_feed_win.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using std::chrono::milliseconds;

BOOL WINAPI OutliveControlKeys(DWORD) {
    return TRUE;
}

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
    UniqueHandle screen_;
};

TEST_F(OwnConsole, CtrlCEndsAWatchAndGivesTheCursorBack) {
    const NmeaFeed feed(SampleBurst());
    ChildProcess watch("gps watch --redraw always");
    ASSERT_TRUE(watch.Out().WaitFor("53.361337 N", kDeadline));
    PressCtrlC();
    const ChildResult result = watch.Finish();
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(result.out.ends_with("\x1b[?25h")) << result.out;
}

TEST_F(OwnConsole, CtrlCBeforeTheFirstLineIsToldApart) {
    ChildProcess watch("gps watch --redraw always");
    ASSERT_TRUE(watch.Out().WaitFor("waiting for the first line on COM3", kDeadline));
    PressCtrlC();
    const ChildResult result = watch.Finish();
    EXPECT_EQ(result.exitStatus, 9);
    EXPECT_EQ(result.err, "qlctl: error: stopped before the receiver on COM3 sent\r\n");
    EXPECT_TRUE(result.out.ends_with("\x1b[?25h")) << result.out;
}

TEST_F(OwnConsole, CtrlCEndsAStatusThatWaits) {
    const NmeaFeed feed(SampleBurst());
    ChildProcess status("gps status --json --count 1000");
    ASSERT_TRUE(status.Out().WaitFor("\n", kDeadline));
    PressCtrlC();
    EXPECT_EQ(status.Finish().exitStatus, 0);
}

TEST_F(OwnConsole, GetsARedrawnScreenWithoutBeingAskedFor) {
    const NmeaFeed feed(SampleBurst());
    ChildProcess watch("gps watch --timeout 15", Screen());
    while (ScreenText().find(L"Position      53.361337 N") == std::wstring::npos) {
        ASSERT_FALSE(watch.HasEndedWithin(milliseconds(50))) << "never drawn";
    }
    PressCtrlC();
    EXPECT_EQ(watch.Finish().exitStatus, 0);
}

}  // namespace
}  // namespace quarlin::qlctl
