// SPDX-License-Identifier: Apache-2.0
// The machine's camera light, and what the stand-in camlamp_x64.dll has been asked: one record for the whole machine.
// The stand-in in each program, qlsim and tests open the same one (shared/shared_section_win.h). A test that changes it
// holds the mutex of kTestMutex meanwhile.
#pragma once

#include <cstddef>
#include <cstdint>

#include "shared/call_log.h"

namespace quarlin::sim {

enum class LightFunction : std::uint32_t {
    kInitialize,
    kTurnOn,
    kTurnOff,
    kSwitch,
    kSetValueToKeepOnTime,
    kGetValueToKeepOnTime,
    kTurnOnForTime,
    kGetTimerStatus,
    kTurnOnToKeepOn,
    kSetValueToKeepOn,
    kGetVersion
};

inline constexpr std::size_t kLightFunctionCount = 11;
inline constexpr const char* kLightFunctionNames[kLightFunctionCount] = {"CameraLight_Initialize",
                                                                         "CameraLight_TurnOn",
                                                                         "CameraLight_TurnOff",
                                                                         "CameraLight_Switch",
                                                                         "CameraLight_SetValueToKeepOnTime",
                                                                         "CameraLight_GetValueToKeepOnTime",
                                                                         "CameraLight_TurnOnForTime",
                                                                         "CameraLight_GetTimerStatus",
                                                                         "CameraLight_TurnOnToKeepOn",
                                                                         "CameraLight_SetValueToKeepOn",
                                                                         "CameraLight_GetVersion"};

struct LightState {
    static constexpr wchar_t kSection[] = L"Global\\QlsimCameraLight";
    static constexpr wchar_t kTestMutex[] = L"Global\\QuarlinTestCameraLight";
    static constexpr std::uint8_t kKeptOn = 255;
    static constexpr std::uint8_t kLongestTime = 254;
    static constexpr std::size_t kVersionRoom = 18;

    // What each function answers; 0: what it finds. A call that is told to answer anything else does nothing else,
    // unless workWhenFailing is set.
    std::int32_t answers[kLightFunctionCount];
    std::uint32_t workWhenFailing;
    // CameraLight_GetTimerStatus succeeds and writes nothing.
    std::uint32_t timerUnreadable;
    std::uint32_t keptOn;
    std::uint32_t versionNumber;
    char version[24];
    // When a time ends, in milliseconds of the light's clock; 0: none runs. The light's clock is the machine's
    // (GetTickCount64), or stands at a value of its own, so that a test need not wait for a time to pass.
    std::uint64_t offAt;
    std::uint64_t stoppedClock;  // 0: the clock runs
    CallLog log;

    // A light that is off and answers to everything.
    void SetDefaults();

    void KeepOn() {
        keptOn = 1;
        offAt = 0;
    }
    void SwitchOff() {
        keptOn = 0;
        offAt = 0;
    }
    void SwitchOnFor(std::uint8_t seconds, std::uint64_t now) {
        keptOn = 0;
        offAt = Clock(now) + std::uint64_t{1000} * seconds;
    }
    std::uint64_t Clock(std::uint64_t now) const { return stoppedClock != 0 ? stoppedClock : now; }
    // 255 when it is kept on, else the seconds left, a begun one counted whole; 0 when it is off. `now` is the
    // machine's clock.
    std::uint8_t Timer(std::uint64_t now) const {
        if (keptOn != 0) {
            return kKeptOn;
        }
        const std::uint64_t clock = Clock(now);
        return clock >= offAt ? 0 : static_cast<std::uint8_t>((offAt - clock + 999) / 1000);
    }
};

inline void LightState::SetDefaults() {
    *this = {};
    versionNumber = 0x010200;
    constexpr char kVersion[] = "1.2.0";
    for (std::size_t i = 0; i < sizeof(kVersion); ++i) {
        version[i] = kVersion[i];
    }
}

}  // namespace quarlin::sim
