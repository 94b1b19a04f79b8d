// SPDX-License-Identifier: Apache-2.0
#include "machine_libraries/light_plan.h"

#include <algorithm>

#include "machine_libraries/library_plan.h"
#include "machine_libraries/light_command.h"

namespace quarlin::sim {
namespace {

std::string Summarise(const LightState& state) {
    return std::string("camlamp_x64.dll switches a light that is ") + (state.keptOn != 0 ? "on" : "off");
}

void DescribeLight(const LightState& state, std::uint64_t now, nlohmann::ordered_json& json) {
    const std::uint8_t timer = state.Timer(now);
    json["on"] = timer != 0;
    json["kept_on"] = state.keptOn != 0;
    json["timer"] = timer;
    json["timer_readable"] = state.timerUnreadable == 0;
    json["version"] = std::string(state.version, std::find(state.version, std::end(state.version), '\0'));
    json["version_number"] = state.versionNumber;
    json["answers"] = AnswersOf(kLightFunctionNames, state.answers);
    json["calls"] = state.log.count;
}

const LibraryKind<LightState>& Kind() {
    static const LibraryKind<LightState> kind = {"camera-light", LightCommands(), Summarise, DescribeLight,
                                                 [](const LightState&, LightState&) {}};
    return kind;
}

}  // namespace

LightState ReadLightState(TableReader& table) {
    LightState state;
    state.SetDefaults();
    state.keptOn = table.Flag("on", false) ? 1 : 0;
    const std::string version = table.Text("version", state.version);
    if (FitsAsText(version, LightState::kVersionRoom)) {
        std::fill(std::begin(state.version), std::end(state.version), '\0');
        std::copy(version.begin(), version.end(), state.version);
    } else {
        table.Complain("version", "\"version\" has to be a text of at most 18 plain characters");
    }
    state.versionNumber = static_cast<std::uint32_t>(
        table.Integer("version_number", state.versionNumber, 0, std::numeric_limits<std::uint32_t>::max()));
    ReadAnswers(table, kLightFunctionNames, state.answers);
    return state;
}

std::unique_ptr<DevicePlan> ReadLightPlan(TableReader& table) {
    return std::make_unique<LibraryPlan<LightState>>(Kind(), ReadLightState(table));
}

}  // namespace quarlin::sim
