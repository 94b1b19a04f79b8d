// SPDX-License-Identifier: Apache-2.0
#include "machine_libraries/probe_command.h"

#include <algorithm>
#include <array>

namespace quarlin::sim {
namespace {

using Action = LibraryAction<ProbeState>;
using Scene = LibraryScene<ProbeState>;
using Common = CommonCommands<ProbeState, kProbeFunctionNames>;

constexpr std::int64_t kHighestState = std::numeric_limits<std::uint32_t>::max();

constexpr std::array<BatteryNumber, 12> kBatteryNumbers = {{
    {"chemistry", &ProbeBatteryRecord::chemistry},
    {"power_state", &ProbeBatteryRecord::powerState},
    {"remaining_capacity", &ProbeBatteryRecord::remainingCapacity},
    {"full_charged_capacity", &ProbeBatteryRecord::fullChargedCapacity},
    {"designed_capacity", &ProbeBatteryRecord::designedCapacity},
    {"voltage", &ProbeBatteryRecord::voltage},
    {"rate", &ProbeBatteryRecord::rate},
    {"total_charge_index", &ProbeBatteryRecord::totalChargeIndex},
    {"temperature", &ProbeBatteryRecord::temperature},
    {"battery_health", &ProbeBatteryRecord::batteryHealth},
    {"last_recalibration_date", &ProbeBatteryRecord::lastRecalibrationDate},
    {"environment_status", &ProbeBatteryRecord::environmentStatus},
}};

std::size_t NumberArgument(const std::string& word, std::size_t most, const std::string& what) {
    return static_cast<std::size_t>(IntegerArgument(word, 1, static_cast<std::int64_t>(most), what));
}

Action ReadDevice(const Words& words) {
    const std::size_t number = NumberArgument(words[1], ProbeState::kDevices, "device");
    const std::string& property = words[2];
    std::uint32_t ProbeDeviceState::*place = nullptr;
    std::uint32_t value = 0;
    if (property == "available") {
        place = &ProbeDeviceState::available;
        value = SwitchArgument(words[3]) ? 1 : 0;
    } else if (property == "power" || property == "bios") {
        place = property == "power" ? &ProbeDeviceState::power : &ProbeDeviceState::bios;
        value = static_cast<std::uint32_t>(IntegerArgument(words[3], 0, kHighestState, "state"));
    } else {
        throw CommandError("\"" + property + "\" is none of available, power and bios");
    }
    return [number, place, value, said = property + " " + words[3]](const Scene& scene) {
        scene.state.devices[number - 1].*place = value;
        return "device " + std::to_string(number) + ": " + said;
    };
}

Action ReadBattery(const Words& words) {
    const std::size_t number = NumberArgument(words[1], ProbeState::kBatteries, "battery");
    const std::string& field = words[2];
    const std::string& value = words[3];
    const std::string said = "battery " + std::to_string(number) + ": " + field + " " + value;
    if (field == "name" || field == "id") {
        if (!FitsAsText(value, kBatteryTextRoom)) {
            throw CommandError("\"" + value + "\" is no text of at most 12 plain characters");
        }
        return [=, isName = field == "name"](const Scene& scene) {
            ProbeBatteryRecord& battery = scene.state.batteries[number - 1];
            SetBatteryText(isName ? battery.name : battery.id, value);
            return said;
        };
    }
    const auto known = std::find_if(kBatteryNumbers.begin(), kBatteryNumbers.end(),
                                    [&](const BatteryNumber& candidate) { return candidate.name == field; });
    if (known == kBatteryNumbers.end()) {
        std::vector<std::string> names{"name", "id"};
        for (const BatteryNumber& candidate : kBatteryNumbers) {
            names.emplace_back(candidate.name);
        }
        throw CommandError("a battery has no \"" + field + "\"" + Suggestion(field, names));
    }
    const auto content = static_cast<std::int32_t>(IntegerArgument(value, std::numeric_limits<std::int32_t>::min(),
                                                                   std::numeric_limits<std::int32_t>::max(), "value"));
    return [number, content, said, place = known->number](const Scene& scene) {
        scene.state.batteries[number - 1].*place = content;
        return said;
    };
}

Action ReadListed(const Words& words) {
    const auto listed =
        static_cast<std::int32_t>(IntegerArgument(words[1], std::numeric_limits<std::int32_t>::min(),
                                                  std::numeric_limits<std::int32_t>::max(), "number of devices"));
    return [listed](const Scene& scene) {
        scene.state.listed = listed;
        return std::to_string(listed) + " devices in the list";
    };
}

constexpr std::array<LibraryCommand<ProbeState>, 6> kCommands = {{
    {"device", 3, "device NUMBER available|power|bios VALUE", ReadDevice},
    {"battery", 3, "battery NUMBER FIELD VALUE", ReadBattery},
    {"listed", 1, "listed NUMBER", ReadListed},
    {"answer", 2, "answer FUNCTION STATUS", Common::Answer},
    {"log", 0, "log", Common::Log},
    {"clear-log", 0, "clear-log", Common::ClearLog},
}};

}  // namespace

std::span<const BatteryNumber> BatteryNumbers() {
    return kBatteryNumbers;
}

void SetBatteryText(char16_t (&place)[kBatteryTextRoom], const std::string& text) {
    std::fill(std::begin(place), std::end(place), u'\0');
    std::copy(text.begin(), text.end(), place);
}

std::string BatteryText(const char16_t (&place)[kBatteryTextRoom]) {
    std::string text;
    for (const char16_t character : place) {
        if (character == 0) {
            break;
        }
        text += character < 0x7F ? static_cast<char>(character) : '?';
    }
    return text;
}

std::span<const LibraryCommand<ProbeState>> ProbeCommands() {
    return kCommands;
}

}  // namespace quarlin::sim
