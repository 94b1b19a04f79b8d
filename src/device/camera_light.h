// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/loaded_library.h"

#include <array>
#include <cstdint>

namespace quarlin::device {

// The functions of the camera light's library. Each returns a status, of which 0 alone is a success. Those without a
// parameter list here are looked for, because a library without them is not the one that is meant, and never called.
struct CameraLightFunctions {
    using NeverCalled = void (*)();

    std::int32_t (*initialize)(std::int32_t) = nullptr;
    NeverCalled turnOn = nullptr;
    std::int32_t (*turnOff)(std::uint8_t) = nullptr;
    NeverCalled switchLight = nullptr;
    NeverCalled setValueToKeepOnTime = nullptr;
    NeverCalled getValueToKeepOnTime = nullptr;
    std::int32_t (*turnOnForTime)(std::uint8_t seconds) = nullptr;
    std::int32_t (*getTimerStatus)(std::uint8_t* value) = nullptr;
    std::int32_t (*turnOnToKeepOn)(std::uint8_t) = nullptr;
    NeverCalled setValueToKeepOn = nullptr;
    std::int32_t (*getVersion)(std::uint8_t* text, std::uint32_t* number) = nullptr;

    // Calls resolve(name, pointer) for each function, in the order in which they are looked for.
    template <typename Resolve>
    void ForEach(Resolve&& resolve) {
        resolve("CameraLight_Initialize", initialize);
        resolve("CameraLight_TurnOn", turnOn);
        resolve("CameraLight_TurnOff", turnOff);
        resolve("CameraLight_Switch", switchLight);
        resolve("CameraLight_SetValueToKeepOnTime", setValueToKeepOnTime);
        resolve("CameraLight_GetValueToKeepOnTime", getValueToKeepOnTime);
        resolve("CameraLight_TurnOnForTime", turnOnForTime);
        resolve("CameraLight_GetTimerStatus", getTimerStatus);
        resolve("CameraLight_TurnOnToKeepOn", turnOnToKeepOn);
        resolve("CameraLight_SetValueToKeepOn", setValueToKeepOn);
        resolve("CameraLight_GetVersion", getVersion);
    }
};

// The camera light, if there is one that can be driven. Made by loading the light's library, starting it and switching
// the light off. On a light that is not supported every operation does nothing.
class CameraLight {
  public:
    explicit CameraLight(LibrarySource& source);
    CameraLight(const CameraLight&) = delete;
    CameraLight& operator=(const CameraLight&) = delete;
    ~CameraLight();

    bool IsSupported() const { return supported_; }

    void TurnOn() const;
    void TurnOff() const;
    // More than 254 seconds count as 254, less than 1 do nothing.
    void TurnOnForTime(std::int32_t seconds) const;
    bool IsOn() const;
    // The timer as the light's library gives it, 255 when it gives none.
    std::uint8_t Time() const;

  private:
    bool FindFunctions();
    bool Start() const;

    LoadedLibrary library_;
    CameraLightFunctions functions_;
    bool supported_ = false;
};

}  // namespace quarlin::device
