// SPDX-License-Identifier: Apache-2.0
#include "core/scenario.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <limits>

namespace quarlin::sim {
namespace {

constexpr double kLongest = 1e6;                       // seconds, more than eleven days
constexpr std::int64_t kDefaultStart = 1778574600000;  // 2026-05-12T08:30:00Z

std::vector<std::string> KindNames() {
    std::vector<std::string> names;
    for (const DeviceKind& kind : DeviceKinds()) {
        names.emplace_back(kind.name);
    }
    return names;
}

std::vector<std::string> DeviceNames(const Scenario& scenario) {
    std::vector<std::string> names;
    for (const ScenarioDevice& device : scenario.devices) {
        names.push_back(device.name);
    }
    return names;
}

bool IsName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    });
}

void ReadDevice(TableReader& table, Scenario& scenario) {
    ScenarioDevice device;
    device.kind = table.Text("kind");
    device.name = table.Text("name", device.kind);
    if (device.kind.empty()) {
        return;
    }
    const auto& kinds = DeviceKinds();
    const auto kind =
        std::find_if(kinds.begin(), kinds.end(), [&](const DeviceKind& k) { return k.name == device.kind; });
    if (kind == kinds.end()) {
        table.Complain("kind",
                       "there is no kind of device \"" + device.kind + "\"" + Suggestion(device.kind, KindNames()));
        return;
    }
    if (!IsName(device.name)) {
        table.Complain("name", "a device's name has small letters, digits, \"-\" and \"_\" only");
    }
    for (const char* const reserved : {"help", "devices", "status", "quit"}) {
        if (device.name == reserved) {
            table.Complain("name", "\"" + device.name + "\" is a command and cannot be a device's name");
        }
    }
    const auto names = DeviceNames(scenario);
    if (std::find(names.begin(), names.end(), device.name) != names.end()) {
        table.Complain("name", "two devices have the name \"" + device.name + "\"; give each a \"name\" of its own");
    }
    device.plan = kind->read(table);
    table.RefuseTheRest();
    scenario.devices.push_back(std::move(device));
}

void ReadEvent(TableReader& table, Scenario& scenario) {
    TimedCommand event;
    event.at = table.Number("at", {}, 0, kLongest);
    const std::string name = table.Text("device");
    const std::string command = table.Text("command");
    table.RefuseTheRest();
    if (name.empty() || command.empty()) {
        return;
    }
    const auto device = std::find_if(scenario.devices.begin(), scenario.devices.end(),
                                     [&](const ScenarioDevice& d) { return d.name == name; });
    if (device == scenario.devices.end()) {
        table.Complain("device",
                       "the scenario has no device \"" + name + "\"" + Suggestion(name, DeviceNames(scenario)));
        return;
    }
    try {
        event.words = SplitWords(command);
        device->plan->CheckCommand(event.words);
    } catch (const CommandError& error) {
        table.Complain("command", error.what());
    }
    device->timeline.push_back(std::move(event));
}

}  // namespace

Scenario ReadScenario(std::string_view text, const std::string& file) {
    TableReader root = TableReader::Parse(text, file);
    Scenario scenario;
    scenario.folder = std::filesystem::path(file).parent_path();
    scenario.seed = static_cast<std::uint64_t>(root.Integer("seed", 1, 0, std::numeric_limits<std::int64_t>::max()));
    using namespace std::chrono;
    scenario.startUtc =
        root.TimeOrNow("start", kDefaultStart)
            .value_or(duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count() / 1000 * 1000);
    scenario.speedFactor = root.Number("speed_factor", 1.0, 0, 1000);
    if (root.Has("duration")) {
        scenario.duration = root.Number("duration", {}, 0, kLongest);
    }
    for (TableReader& table : root.Tables("device", "a device")) {
        ReadDevice(table, scenario);
    }
    if (!root.Has("device")) {
        root.Complain("device", "the scenario has no device: add a [[device]] table");
    }
    for (TableReader& table : root.Tables("event", "an event")) {
        ReadEvent(table, scenario);
    }
    root.RefuseTheRest();
    root.ThrowProblems();
    for (ScenarioDevice& device : scenario.devices) {
        std::stable_sort(device.timeline.begin(), device.timeline.end(),
                         [](const TimedCommand& a, const TimedCommand& b) { return a.at < b.at; });
    }
    return scenario;
}

Scenario LoadScenario(const std::string& file) {
    std::ifstream stream(std::filesystem::path(file), std::ios::binary);
    if (!stream) {
        throw ScenarioError(file, {{{0, 0}, "the file cannot be read"}});
    }
    const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    return ReadScenario(text, file);
}

}  // namespace quarlin::sim
