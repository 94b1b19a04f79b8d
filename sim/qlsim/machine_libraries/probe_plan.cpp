// SPDX-License-Identifier: Apache-2.0
#include "machine_libraries/probe_plan.h"

#include "machine_libraries/library_plan.h"
#include "machine_libraries/probe_command.h"

namespace quarlin::sim {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kHighestState = std::numeric_limits<std::uint32_t>::max();

void ReadDevices(TableReader& table, ProbeState& state) {
    for (TableReader& built : table.Tables("built_in", "a built-in device")) {
        const std::int64_t number = built.Integer("number", {}, 1, ProbeState::kDevices);
        // A number that is wrong has been complained of, and 0 taken for it.
        ProbeDeviceState& device = state.devices[number >= 1 ? number - 1 : 0];
        device.available = built.Flag("available", device.available != 0) ? 1 : 0;
        device.power = static_cast<std::uint32_t>(built.Integer("power", device.power, 0, kHighestState));
        device.bios = static_cast<std::uint32_t>(built.Integer("bios", device.bios, 0, kHighestState));
        built.RefuseTheRest();
    }
}

void ReadBatteryText(TableReader& table, const char* key, char16_t (&place)[kBatteryTextRoom]) {
    const std::string text = table.Text(key, BatteryText(place));
    if (FitsAsText(text, kBatteryTextRoom)) {
        SetBatteryText(place, text);
    } else {
        table.Complain(key, "\"" + std::string(key) + "\" has to be a text of at most 12 plain characters");
    }
}

void ReadBatteries(TableReader& table, ProbeState& state) {
    for (TableReader& read : table.Tables("battery", "a battery")) {
        const std::int64_t number = read.Integer("number", {}, 1, ProbeState::kBatteries);
        ProbeBatteryRecord& battery = state.batteries[number >= 1 ? number - 1 : 0];
        ReadBatteryText(read, "name", battery.name);
        ReadBatteryText(read, "id", battery.id);
        for (const BatteryNumber& field : BatteryNumbers()) {
            std::int32_t& value = battery.*field.number;
            value = static_cast<std::int32_t>(read.Integer(field.name, value, kLowest, kHighest));
        }
        read.RefuseTheRest();
    }
}

std::string Summarise(const ProbeState& state) {
    int available = 0;
    for (const ProbeDeviceState& device : state.devices) {
        available += device.available != 0 ? 1 : 0;
    }
    return "HwProbeLib.dll tells of " + std::to_string(available) + " built-in devices and two batteries";
}

void DescribeProbe(const ProbeState& state, std::uint64_t, nlohmann::ordered_json& json) {
    json["started"] = state.started;
    json["listed"] = state.listed;
    for (std::size_t i = 0; i < ProbeState::kDevices; ++i) {
        const ProbeDeviceState& device = state.devices[i];
        json["devices"].push_back(
            {{"number", i + 1}, {"available", device.available != 0}, {"power", device.power}, {"bios", device.bios}});
    }
    for (std::size_t i = 0; i < ProbeState::kBatteries; ++i) {
        const ProbeBatteryRecord& battery = state.batteries[i];
        nlohmann::ordered_json described;
        described["number"] = i + 1;
        described["name"] = BatteryText(battery.name);
        described["id"] = BatteryText(battery.id);
        for (const BatteryNumber& field : BatteryNumbers()) {
            described[field.name] = battery.*field.number;
        }
        json["batteries"].push_back(std::move(described));
    }
    json["answers"] = AnswersOf(kProbeFunctionNames, state.answers);
    json["calls"] = state.log.count;
}

const LibraryKind<ProbeState>& Kind() {
    static const LibraryKind<ProbeState> kind = {
        "probe", ProbeCommands(), Summarise, DescribeProbe,
        [](const ProbeState& before, ProbeState& state) { state.started = before.started; }};
    return kind;
}

}  // namespace

ProbeState ReadProbeState(TableReader& table) {
    ProbeState state;
    state.SetDefaults();
    state.listed = static_cast<std::int32_t>(table.Integer("listed", state.listed, kLowest, kHighest));
    ReadDevices(table, state);
    ReadBatteries(table, state);
    ReadAnswers(table, kProbeFunctionNames, state.answers);
    return state;
}

std::unique_ptr<DevicePlan> ReadProbePlan(TableReader& table) {
    return std::make_unique<LibraryPlan<ProbeState>>(Kind(), ReadProbeState(table));
}

}  // namespace quarlin::sim
