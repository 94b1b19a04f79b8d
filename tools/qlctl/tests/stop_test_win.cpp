// SPDX-License-Identifier: Apache-2.0
#include "nmea_feed_win.h"
#include "own_console_win.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using std::chrono::milliseconds;

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
