// SPDX-License-Identifier: Apache-2.0
// camlamp_x64.dll of the simulated machine: switches the light of the shared record. The light belongs to the machine,
// so that it goes on burning and its time goes on running when the program that switched it has ended, as long as some
// program has the record open.
#include <windows.h>

#include "camera_light/light_state.h"
#include "shared/shared_section_win.h"

namespace {

using namespace quarlin::sim;

constexpr std::int32_t kGood = 0;
constexpr std::int32_t kNoLight = -2;
constexpr std::int32_t kBadParameter = -11;

// Opened by the first call and closed when the program lets this library go.
SharedState<LightState> shared;

// One call: what it finds to do, unless it is told to fail; what it is told to answer, unless that is nothing.
template <typename Work>
std::int32_t Answer(LightFunction function, std::int64_t first, std::int64_t second, Work&& work) {
    const SharedState<LightState>::Access state(shared);
    if (!state) {
        return kNoLight;
    }
    const std::int32_t told = state->answers[static_cast<std::size_t>(function)];
    const std::int32_t found = told == kGood || state->workWhenFailing != 0 ? work(*state) : kGood;
    const std::int32_t status = found == kGood ? told : found;
    state->log.Add({static_cast<std::uint32_t>(function), GetCurrentProcessId(), {first, second, 0}, status, 0});
    return status;
}

std::int32_t Answer(LightFunction function) {
    return Answer(function, 0, 0, [](LightState&) { return kGood; });
}

bool IsZeroed(const std::uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (bytes[i] != 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" {

std::int32_t CameraLight_Initialize(std::int32_t mode) {
    return Answer(LightFunction::kInitialize, mode, 0, [](LightState&) { return kGood; });
}

std::int32_t CameraLight_TurnOff(std::uint8_t value) {
    return Answer(LightFunction::kTurnOff, value, 0, [](LightState& state) {
        state.SwitchOff();
        return kGood;
    });
}

std::int32_t CameraLight_TurnOnForTime(std::uint8_t seconds) {
    return Answer(LightFunction::kTurnOnForTime, seconds, 0, [&](LightState& state) {
        if (seconds == 0 || seconds > LightState::kLongestTime) {
            return kBadParameter;
        }
        state.SwitchOnFor(seconds, GetTickCount64());
        return kGood;
    });
}

// The log has what was in the value before.
std::int32_t CameraLight_GetTimerStatus(std::uint8_t* value) {
    return Answer(LightFunction::kGetTimerStatus, value != nullptr ? *value : -1, 0, [&](const LightState& state) {
        if (value == nullptr) {
            return kBadParameter;
        }
        if (state.timerUnreadable == 0) {
            *value = state.Timer(GetTickCount64());
        }
        return kGood;
    });
}

std::int32_t CameraLight_TurnOnToKeepOn(std::uint8_t value) {
    return Answer(LightFunction::kTurnOnToKeepOn, value, 0, [](LightState& state) {
        state.KeepOn();
        return kGood;
    });
}

// The log has whether the text was all zeroes before, and what was in the number.
std::int32_t CameraLight_GetVersion(std::uint8_t* text, std::uint32_t* number) {
    const bool given = text != nullptr && number != nullptr;
    return Answer(LightFunction::kGetVersion, given && IsZeroed(text, LightState::kVersionRoom) ? 1 : 0,
                  given ? *number : -1, [&](const LightState& state) {
                      if (!given) {
                          return kBadParameter;
                      }
                      for (std::size_t i = 0; i < LightState::kVersionRoom; ++i) {
                          text[i] = static_cast<std::uint8_t>(state.version[i]);
                      }
                      *number = state.versionNumber;
                      return kGood;
                  });
}

// What else a library of this name has. Nobody calls it, so that it has no more to do than to be seen when called.

std::int32_t CameraLight_TurnOn() {
    return Answer(LightFunction::kTurnOn);
}

std::int32_t CameraLight_Switch() {
    return Answer(LightFunction::kSwitch);
}

std::int32_t CameraLight_SetValueToKeepOnTime() {
    return Answer(LightFunction::kSetValueToKeepOnTime);
}

std::int32_t CameraLight_GetValueToKeepOnTime() {
    return Answer(LightFunction::kGetValueToKeepOnTime);
}

std::int32_t CameraLight_SetValueToKeepOn() {
    return Answer(LightFunction::kSetValueToKeepOn);
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_DETACH) {
        shared.Close();
    }
    return TRUE;
}

}  // extern "C"
