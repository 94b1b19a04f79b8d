// SPDX-License-Identifier: Apache-2.0
// Switching the light, and asking for it.
#include <algorithm>
#include <limits>

#include "camera/light_machine_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

constexpr int kHighest = std::numeric_limits<int>::max();
constexpr int kLowest = std::numeric_limits<int>::min();

class Light : public LightTest {
  protected:
    static bool IsOn() {
        bool on = false;
        EXPECT_SUCCESS(QLCAM_IsCameraLightOn(&on));
        return on;
    }
    static int Time() {
        uint8_t time = 77;
        EXPECT_SUCCESS(QLCAM_GetCameraLightTime(&time));
        return time;
    }
};

TEST_F(Light, GoesOnAndOff) {
    EXPECT_SUCCESS(QLCAM_SetCameraLightOn());
    EXPECT_EQ(machine_.Calls(), Calls{"TurnOnToKeepOn 1"});
    EXPECT_EQ(machine_.Timer(), LightState::kKeptOn);
    EXPECT_TRUE(IsOn());
    machine_.Calls();
    EXPECT_SUCCESS(QLCAM_SetCameraLightOff());
    EXPECT_EQ(machine_.Calls(), Calls{"TurnOff 1"});
    EXPECT_EQ(machine_.Timer(), 0);
    EXPECT_FALSE(IsOn());
}

TEST_F(Light, TakesOneByteOfSeconds) {
    machine_.Use()->stoppedClock = 1000000;
    for (const int seconds : {1, 2, 60, 253, 254, 255, 256, 257, 300, 65536, kHighest}) {
        const int sent = std::min(seconds, 254);
        EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(seconds)) << seconds;
        EXPECT_EQ(machine_.Calls(), Calls{"TurnOnForTime " + std::to_string(sent)}) << seconds;
        EXPECT_EQ(machine_.Timer(), sent) << seconds;
    }
}

TEST_F(Light, DoesNothingForATimeBelowOne) {
    EXPECT_SUCCESS(QLCAM_SetCameraLightOn());
    machine_.Calls();
    for (const int seconds : {0, -1, -5, -255, -256, kLowest}) {
        EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(seconds)) << seconds;
    }
    EXPECT_EQ(machine_.Calls(), Calls{});
    EXPECT_EQ(machine_.Timer(), LightState::kKeptOn);
}

TEST_F(Light, GoesOffWhenItsTimeIsOver) {
    constexpr std::uint64_t kStart = 1000000;
    machine_.Use()->stoppedClock = kStart;
    EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(3));
    struct Moment {
        std::uint64_t milliseconds;
        int time;
    };
    for (const Moment moment :
         {Moment{0, 3}, {1, 3}, {999, 3}, {1000, 2}, {2000, 1}, {2999, 1}, {3000, 0}, {9000, 0}}) {
        machine_.Use()->stoppedClock = kStart + moment.milliseconds;
        EXPECT_EQ(Time(), moment.time) << moment.milliseconds;
        EXPECT_EQ(IsOn(), moment.time != 0) << moment.milliseconds;
    }
}

TEST_F(Light, GoesOffByItself) {
    EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(1));
    EXPECT_TRUE(IsOn());
    EXPECT_TRUE(WaitUntil([] { return !IsOn(); }));
    EXPECT_EQ(Time(), 0);
}

TEST_F(Light, CanBeSwitchedWhileATimeRuns) {
    machine_.Use()->stoppedClock = 1000000;
    EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(100));
    EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(7));
    EXPECT_EQ(Time(), 7);
    EXPECT_SUCCESS(QLCAM_SetCameraLightOff());
    EXPECT_EQ(Time(), 0);
    EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(7));
    EXPECT_SUCCESS(QLCAM_SetCameraLightOn());
    EXPECT_EQ(Time(), 255);
}

TEST_F(Light, ThatDoesNotObeyIsNotReported) {
    for (const int status : {1, -1, 256}) {
        for (const LightFunction function :
             {LightFunction::kTurnOnToKeepOn, LightFunction::kTurnOff, LightFunction::kTurnOnForTime}) {
            machine_.Answer(function, status);
        }
        EXPECT_SUCCESS(QLCAM_SetCameraLightOn());
        EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(300));
        EXPECT_SUCCESS(QLCAM_SetCameraLightOff());
        EXPECT_EQ(machine_.Calls(), (Calls{"TurnOnToKeepOn 1", "TurnOnForTime 254", "TurnOff 1"}));
        EXPECT_EQ(machine_.Timer(), 0);
    }
}

TEST_F(Light, NeedsPointers) {
    EXPECT_FAILURE(QLCAM_IsCameraLightOn(nullptr), QLERR_INVALID_ARGUMENT, kLightNull);
    EXPECT_FAILURE(QLCAM_GetCameraLightTime(nullptr), QLERR_INVALID_ARGUMENT, kLightNull);
    EXPECT_EQ(machine_.Calls(), Calls{});
}

TEST_F(Light, IsOnForEveryTimerButZero) {
    machine_.Use()->stoppedClock = 1000000;
    for (const int value : {0, 1, 128, 254, 255}) {
        {
            const auto state = machine_.Use();
            if (value == LightState::kKeptOn) {
                state->KeepOn();
            } else {
                state->SwitchOnFor(static_cast<std::uint8_t>(value), 0);
            }
        }
        EXPECT_EQ(IsOn(), value != 0) << value;
        EXPECT_EQ(Time(), value) << value;
    }
}

// Before the library writes, the value is 0 for the one question and 255 for the other.
TEST_F(Light, WhoseTimerIsLeftUntouchedIsOffAnd255) {
    machine_.Use()->KeepOn();
    machine_.Use()->timerUnreadable = 1;
    EXPECT_FALSE(IsOn());
    EXPECT_EQ(Time(), 255);
    EXPECT_EQ(machine_.Calls(), (Calls{"GetTimerStatus 0", "GetTimerStatus 255"}));
}

// The status counts for the one question and not for the other.
TEST_F(Light, WhoseTimerFailsIsOffAndTellsWhatWasWritten) {
    machine_.Use()->stoppedClock = 1000000;
    EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(9));
    for (const int status : {1, -1, 256}) {
        machine_.Answer(LightFunction::kGetTimerStatus, status);
        machine_.Use()->workWhenFailing = 0;
        EXPECT_FALSE(IsOn()) << status;
        EXPECT_EQ(Time(), 255) << status;
        machine_.Use()->workWhenFailing = 1;
        EXPECT_FALSE(IsOn()) << status;
        EXPECT_EQ(Time(), 9) << status;
    }
}

TEST_F(Light, NeverCallsTheFunctionsThatItHasNoUseFor) {
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_SUCCESS(QLCAM_SetCameraLightOn());
    EXPECT_SUCCESS(QLCAM_TurnCameraLightOnForTime(9));
    IsOn();
    Time();
    EXPECT_SUCCESS(QLCAM_SetCameraLightOff());
    EXPECT_EQ(machine_.Calls(), (Calls{"Initialize 0", "TurnOff 1", "TurnOnToKeepOn 1", "TurnOnForTime 9",
                                       "GetTimerStatus 0", "GetTimerStatus 255", "TurnOff 1"}));
}

}  // namespace
}  // namespace quarlin::test
