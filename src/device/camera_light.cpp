// SPDX-License-Identifier: Apache-2.0
#include "device/camera_light.h"

#include <algorithm>

namespace quarlin::device {
namespace {

constexpr std::int32_t kGood = 0;

// What the switching functions are handed.
constexpr std::uint8_t kSwitch = 1;

// Seconds travel in one byte, and its highest value is no time.
constexpr std::int32_t kLongestTime = 254;
constexpr std::uint8_t kNoTime = 255;

}  // namespace

CameraLight::CameraLight(LibrarySource& source) : library_(source, L"camlamp_x64.dll") {
    supported_ = library_.IsLoaded() && FindFunctions() && Start();
}

CameraLight::~CameraLight() {
    // The light's library stays loaded: a time that it is counting goes on after the application has lost interest.
    library_.KeepLoaded();
}

bool CameraLight::FindFunctions() {
    bool all = true;
    functions_.ForEach([&](const char* name, auto& function) { all = library_.Find(name, function) && all; });
    return all;
}

bool CameraLight::Start() const {
    if (functions_.initialize(0) != kGood) {
        // A light that does not start can be driven all the same when it tells its version.
        std::array<std::uint8_t, 18> text{};
        std::uint32_t number = 0;
        if (functions_.getVersion(text.data(), &number) != kGood) {
            return false;
        }
    }
    return functions_.turnOff(kSwitch) == kGood;
}

void CameraLight::TurnOn() const {
    if (supported_) {
        functions_.turnOnToKeepOn(kSwitch);
    }
}

void CameraLight::TurnOff() const {
    if (supported_) {
        functions_.turnOff(kSwitch);
    }
}

void CameraLight::TurnOnForTime(std::int32_t seconds) const {
    if (supported_ && seconds >= 1) {
        functions_.turnOnForTime(static_cast<std::uint8_t>(std::min(seconds, kLongestTime)));
    }
}

bool CameraLight::IsOn() const {
    std::uint8_t value = 0;
    return supported_ && functions_.getTimerStatus(&value) == kGood && value != 0;
}

std::uint8_t CameraLight::Time() const {
    std::uint8_t value = kNoTime;
    if (supported_) {
        functions_.getTimerStatus(&value);
    }
    return value;
}

}  // namespace quarlin::device
