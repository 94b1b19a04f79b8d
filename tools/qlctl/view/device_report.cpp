// SPDX-License-Identifier: Apache-2.0
#include "view/device_report.h"

#include "view/error_json.h"
#include "view/json_line.h"
#include "view/text.h"

#include <algorithm>
#include <array>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::ordered_json;

const LibraryError* ErrorOf(const auto& reply) {
    return std::get_if<LibraryError>(&reply);
}

// A probe that fails mostly fails for every question alike: one line says it all.
void AddOnce(std::vector<LibraryError>& errors, const LibraryError* error) {
    const auto isSame = [error](const LibraryError& known) {
        return known.code == error->code && known.message == error->message;
    };
    if (error != nullptr && std::none_of(errors.begin(), errors.end(), isSame)) {
        errors.push_back(*error);
    }
}

std::string YesNo(const Reply<bool>& reply) {
    const bool* const value = std::get_if<bool>(&reply);
    return value == nullptr ? "error" : *value ? "yes" : "no";
}

Json BoolOrNull(const Reply<bool>& reply) {
    const bool* const value = std::get_if<bool>(&reply);
    return value == nullptr ? Json(nullptr) : Json(*value);
}

Json ErrorsJson(const std::vector<LibraryError>& errors) {
    Json list = Json::array();
    for (const LibraryError& error : errors) {
        list.push_back(ErrorJson(error));
    }
    return list;
}

struct BatteryField {
    const char* title;
    const char* field;
    int32_t BatteryInfo::*value;
};

constexpr std::array kBatteryFields{
    BatteryField{"Chemistry", "chemistry", &BatteryInfo::Chemistry},
    BatteryField{"Power state", "power_state", &BatteryInfo::PowerState},
    BatteryField{"Remaining capacity", "remaining_capacity", &BatteryInfo::RemainingCapacity},
    BatteryField{"Full charged capacity", "full_charged_capacity", &BatteryInfo::FullChargedCapacity},
    BatteryField{"Designed capacity", "designed_capacity", &BatteryInfo::DesignedCapacity},
    BatteryField{"Voltage", "voltage", &BatteryInfo::Voltage},
    BatteryField{"Rate", "rate", &BatteryInfo::Rate},
    BatteryField{"Total charge index", "total_charge_index", &BatteryInfo::TotalChargeIndex},
    BatteryField{"Temperature", "temperature", &BatteryInfo::Temperature},
    BatteryField{"Health", "battery_health", &BatteryInfo::BatteryHealth},
    BatteryField{"Last recalibration", "last_recalibration_date", &BatteryInfo::LastRecalibrationDate},
    BatteryField{"Environment", "environment_status", &BatteryInfo::EnvironmentStatus},
};

std::string BatteryRow(const std::string& title, const std::string& value) {
    return "  " + PadRight(title, 23) + value + '\n';
}

std::string ListedText(const DeviceReport& report) {
    if (const LibraryError* const error = ErrorOf(report.listed)) {
        return "The machine's own list: " + Describe(*error) + '\n';
    }
    const auto& entries = std::get<std::vector<DeviceStatusEntry>>(report.listed);
    std::string text = "The machine's own list has " + std::to_string(entries.size()) +
                       (entries.size() == 1 ? " device\n" : " devices\n");
    if (!entries.empty()) {
        text += "Device  Power state  BIOS state\n";
    }
    for (const DeviceStatusEntry& entry : entries) {
        text += PadLeft(std::to_string(entry.device), 6) + PadLeft(std::to_string(entry.powerState), 13) +
                PadLeft(std::to_string(entry.biosState), 12) + '\n';
    }
    return text;
}

}  // namespace

std::string DeviceText(const DeviceReport& report) {
    std::string text = "Device  Available  Powered  Enabled in the BIOS\n";
    for (const DeviceState& state : report.devices) {
        text += PadLeft(std::to_string(state.device), 6) + "  " + PadRight(YesNo(state.available), 11) +
                PadRight(YesNo(state.powered), 9) + YesNo(state.enabledInBios) + '\n';
    }
    return text + ListedText(report);
}

std::string DeviceJson(const DeviceReport& report) {
    Json devices = Json::array();
    for (const DeviceState& state : report.devices) {
        devices.push_back({
            {"device", state.device},
            {"available", BoolOrNull(state.available)},
            {"powered", BoolOrNull(state.powered)},
            {"enabled_in_bios", BoolOrNull(state.enabledInBios)},
        });
    }
    Json listed = nullptr;
    if (const auto* const entries = std::get_if<std::vector<DeviceStatusEntry>>(&report.listed)) {
        listed = Json::array();
        for (const DeviceStatusEntry& entry : *entries) {
            listed.push_back({
                {"device", entry.device},
                {"power_state", entry.powerState},
                {"bios_state", entry.biosState},
            });
        }
    }
    return JsonLine({
        {"devices", std::move(devices)},
        {"listed", std::move(listed)},
        {"errors", ErrorsJson(Failures(report))},
    });
}

std::vector<LibraryError> Failures(const DeviceReport& report) {
    std::vector<LibraryError> errors;
    for (const DeviceState& state : report.devices) {
        for (const Reply<bool>* const reply : {&state.available, &state.powered, &state.enabledInBios}) {
            AddOnce(errors, ErrorOf(*reply));
        }
    }
    AddOnce(errors, ErrorOf(report.listed));
    return errors;
}

std::string BatteryText(const std::vector<BatteryReply>& batteries) {
    std::string text;
    for (const BatteryReply& reply : batteries) {
        text += "Battery " + std::to_string(reply.battery) + '\n';
        if (const LibraryError* const error = ErrorOf(reply.state)) {
            text += "  " + Describe(*error) + '\n';
            continue;
        }
        const auto& state = std::get<BatteryState>(reply.state);
        text += BatteryRow("Name", Printable(state.name)) + BatteryRow("Identifier", Printable(state.id));
        for (const BatteryField& field : kBatteryFields) {
            text += BatteryRow(field.title, std::to_string(state.info.*field.value));
        }
    }
    return text;
}

std::string BatteryJson(const std::vector<BatteryReply>& batteries) {
    Json list = Json::array();
    for (const BatteryReply& reply : batteries) {
        Json object{{"battery", reply.battery}};
        if (const LibraryError* const error = ErrorOf(reply.state)) {
            object["error"] = ErrorJson(*error);
        } else {
            const auto& state = std::get<BatteryState>(reply.state);
            object["error"] = nullptr;
            object["name"] = state.name;
            object["id"] = state.id;
            for (const BatteryField& field : kBatteryFields) {
                object[field.field] = state.info.*field.value;
            }
        }
        list.push_back(std::move(object));
    }
    return JsonLine({{"batteries", std::move(list)}});
}

std::vector<LibraryError> Failures(const std::vector<BatteryReply>& batteries) {
    std::vector<LibraryError> errors;
    for (const BatteryReply& reply : batteries) {
        AddOnce(errors, ErrorOf(reply.state));
    }
    return errors;
}

}  // namespace quarlin::qlctl
