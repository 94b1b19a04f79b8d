// SPDX-License-Identifier: Apache-2.0
#include "machine_libraries/light_command.h"

#include <array>

namespace quarlin::sim {
namespace {

using Action = LibraryAction<LightState>;
using Scene = LibraryScene<LightState>;
using Common = CommonCommands<LightState, kLightFunctionNames>;

Action ReadOn(const Words&) {
    return [](const Scene& scene) {
        scene.state.KeepOn();
        return std::string("on");
    };
}

Action ReadOff(const Words&) {
    return [](const Scene& scene) {
        scene.state.SwitchOff();
        return std::string("off");
    };
}

Action ReadTimer(const Words& words) {
    const auto seconds =
        static_cast<std::uint8_t>(IntegerArgument(words[1], 1, LightState::kLongestTime, "number of seconds"));
    return [seconds](const Scene& scene) {
        scene.state.SwitchOnFor(seconds, scene.now);
        return "on for " + std::to_string(seconds) + " seconds";
    };
}

Action ReadTimerReadable(const Words& words) {
    const bool readable = SwitchArgument(words[1]);
    return [readable](const Scene& scene) {
        scene.state.timerUnreadable = readable ? 0 : 1;
        return std::string(readable ? "the timer can be read" : "the timer's value is left untouched");
    };
}

constexpr std::array<LibraryCommand<LightState>, 7> kCommands = {{
    {"on", 0, "on", ReadOn},
    {"off", 0, "off", ReadOff},
    {"timer", 1, "timer SECONDS", ReadTimer},
    {"timer-readable", 1, "timer-readable on|off", ReadTimerReadable},
    {"answer", 2, "answer FUNCTION STATUS", Common::Answer},
    {"log", 0, "log", Common::Log},
    {"clear-log", 0, "clear-log", Common::ClearLog},
}};

}  // namespace

std::span<const LibraryCommand<LightState>> LightCommands() {
    return kCommands;
}

}  // namespace quarlin::sim
