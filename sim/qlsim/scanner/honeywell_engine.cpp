// SPDX-License-Identifier: Apache-2.0
#include "scanner/honeywell_engine.h"

#include <algorithm>

#include "scanner/scan_bytes.h"

namespace quarlin::sim::scanner {

HoneywellEngine::HoneywellEngine(const HoneywellSettings& settings, const Surroundings&)
    : settings_(settings),
      devices_(settings.devices),
      symbologies_(settings.symbologies),
      trigger_(settings.hardwareTrigger) {
}

void HoneywellEngine::Fill(State& state) {
    devices_ = settings_.devices;
    symbologies_ = settings_.symbologies;
    trigger_ = settings_.hardwareTrigger;
    seen_ = state.log.Count();
    state.claimedCount = HoneywellState::kHonest;
    state.SetVersion(settings_.firmware.data(), settings_.firmware.size());
    if (state.connected == 0) {
        state.reading = 0;
    }
}

void HoneywellEngine::SetPlugged(State& state, bool plugged) const {
    state.deviceCount = 0;
    if (!plugged) {
        return;
    }
    for (const std::string& name : devices_) {
        HoneywellDevice& device = state.devices[state.deviceCount++];
        device = {};
        device.SetName(name.c_str());
        device.out = 1;
        device.out2 = 1;
    }
}

void HoneywellEngine::CatchUp(State& state) {
    const std::uint64_t count = state.log.Count();
    if (seen_ > count) {
        seen_ = 0;  // somebody has emptied the log
    }
    for (std::uint64_t number = std::max(seen_, state.log.First()); number < count; ++number) {
        const EngineCall* const call = state.log.At(number);
        if (call != nullptr && call->function == static_cast<std::uint32_t>(HoneywellFunction::kSendMenuCommand) &&
            call->status == kHoneywellGood) {
            const std::size_t length = std::min<std::size_t>(call->requestBytes, EngineCall::kRoom);
            Obey({reinterpret_cast<const char*>(call->request), length});
        }
    }
    seen_ = count;
}

void HoneywellEngine::Obey(std::string_view menuCommand) {
    for (std::size_t i = 0; i < kSymbologies; ++i) {
        const Symbology& symbology = Symbologies()[i];
        if (menuCommand == symbology.honeywellOff) {
            symbologies_[i] = false;
        } else if (menuCommand == symbology.honeywellOn) {
            symbologies_[i] = true;
        }
    }
}

ScanSlot HoneywellEngine::Scan(const ShownCode& code) {
    return HoneywellScan(code.text, Symbologies()[code.symbology].identifier);
}

ScanSlot HoneywellEngine::RawScan(const std::vector<std::uint8_t>& bytes) {
    ScanSlot scan{};
    scan.length = static_cast<std::uint32_t>(bytes.size());
    scan.claimed = scan.length;
    scan.eventType = HoneywellState::kScanType;
    std::copy(bytes.begin(), bytes.end(), scan.bytes);
    return scan;
}

std::string HoneywellEngine::Carry(const EngineCommand& command, State& state) {
    const bool plugged = IsPlugged(state) || devices_.empty();
    devices_ = command.texts;
    SetPlugged(state, plugged);
    return std::to_string(state.deviceCount) + " devices in the list";
}

void HoneywellEngine::Describe(const State& state, nlohmann::ordered_json& json) const {
    json["devices"] = devices_;
    json["held_by_emulator"] = state.heldByEmulator != 0;
    json["menu_commands"] = state.menuCommands;
}

std::string HoneywellEngine::Summary(const HoneywellSettings& settings) {
    return "a Honeywell engine, " + std::to_string(settings.devices.size()) + " devices in its library's list";
}

}  // namespace quarlin::sim::scanner
