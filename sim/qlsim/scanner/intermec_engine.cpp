// SPDX-License-Identifier: Apache-2.0
#include "scanner/intermec_engine.h"

#include "hid/hex.h"
#include "hid/report_descriptor.h"
#include "scanner/scan_bytes.h"

namespace quarlin::sim::scanner {
namespace {

constexpr std::uint16_t kVendor = 0x067E;
constexpr std::uint16_t kTwoCollections = 0x0801;
constexpr std::size_t kReportBytes = 63;

const char* NameOf(Link link) {
    switch (link) {
        case Link::kBuiltIn:
            return "built-in";
        case Link::kUsb:
            return "usb";
        case Link::kSerial:
            return "serial";
    }
    return "";
}

std::string_view Bytes(const std::vector<std::uint8_t>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

std::vector<HidIdentity> IntermecIdentities(const IntermecSettings& settings) {
    HidIdentity engine;
    engine.vendor = kVendor;
    engine.product = settings.product;
    engine.instance = settings.instance;
    engine.reportDescriptor =
        VendorReportDescriptor({{HidReportKind::kInput, 0, kReportBytes}, {HidReportKind::kOutput, 0, kReportBytes}});
    if (settings.product != kTwoCollections) {
        return {engine};
    }
    HidIdentity keyboard = engine;
    keyboard.collection = 1;
    engine.collection = 2;
    return {keyboard, engine};
}

IntermecEngine::IntermecEngine(const IntermecSettings& settings, const Surroundings& surroundings)
    : settings_(settings), name_(surroundings.name), listPort_(surroundings.computer.listPort) {
    if (settings_.link == Link::kUsb) {
        for (std::size_t i = 0; i < IntermecIdentities(settings_).size(); ++i) {
            plugs_.push_back(std::make_unique<HidPlug>(surroundings, function_));
        }
    } else if (settings_.link == Link::kSerial && !listPort_) {
        throw DeviceError(name_ + ": there is no machine whose list of devices could have a port");
    }
}

void IntermecEngine::PlugIn() {
    if (settings_.link == Link::kSerial && port_ == nullptr) {
        port_ = listPort_(settings_.portName);
    }
    const std::vector<HidIdentity> identities = IntermecIdentities(settings_);
    for (std::size_t i = 0; i < plugs_.size(); ++i) {
        plugs_[i]->Plug(identities[i]);
    }
}

void IntermecEngine::PullOut() {
    port_.reset();
    for (const std::unique_ptr<HidPlug>& plug : plugs_) {
        plug->Unplug();
    }
}

void IntermecEngine::Fill(State& state) const {
    state.unknownParameterStatus = 0;
    state.parameterCount = 0;
    state.Set(kIntermecDataMode, settings_.dataMode);
    SetTrigger(state, settings_.hardwareTrigger);
    for (std::size_t i = 0; i < kSymbologies; ++i) {
        Switch(state, i, settings_.symbologies[i]);
    }
    state.SetVersion(settings_.firmware.data(), settings_.firmware.size());
    if (state.connected == 0) {
        state.decoding = 0;
    }
}

bool IntermecEngine::Reads(const State& state, std::size_t symbology) {
    return state.Value(Symbologies()[symbology].intermecSwitch) != 0;
}

void IntermecEngine::Switch(State& state, std::size_t symbology, bool on) {
    state.Set(Symbologies()[symbology].intermecSwitch, on ? 1 : 0);
}

ScanSlot IntermecEngine::Scan(const ShownCode& code) {
    // Five bytes, as its engines send them.
    std::string identifier = Symbologies()[code.symbology].identifier;
    identifier.resize(5);
    IntermecFields fields;
    fields.data = code.text;
    fields.id = identifier;
    return IntermecScan(fields);
}

ScanSlot IntermecEngine::RawScan(const std::vector<std::uint8_t>& bytes) {
    return RawIntermecScan(Bytes(bytes));
}

std::string IntermecEngine::Carry(const EngineCommand& command, State& state) {
    const std::string name = HexText(command.parameter);
    if (!command.value) {
        const IntermecParameter* const known = state.Find(command.parameter);
        return name + (known != nullptr ? " is " + std::to_string(known->value) : " was never written");
    }
    if (!state.Set(command.parameter, *command.value)) {
        throw CommandError("the engine has no room for another parameter");
    }
    return name + " is " + std::to_string(*command.value);
}

void IntermecEngine::Describe(const State& state, nlohmann::ordered_json& json) const {
    json["link"] = NameOf(settings_.link);
    json["data_mode"] = state.Value(kIntermecDataMode);
    json["trigger_mode"] = state.Value(kIntermecTriggerMode);
    json["link_prepared"] = state.linkPrepared;
    json["link_reset"] = state.linkReset;
    json["dialogs"] = state.dialogs;
    json["port"] = state.port;
}

std::string IntermecEngine::Summary(const IntermecSettings& settings) {
    std::string summary = std::string("an Intermec engine, ") + NameOf(settings.link);
    if (settings.link == Link::kUsb) {
        summary += ", product " + HexText(settings.product);
    } else if (settings.link == Link::kSerial) {
        summary += ", " + settings.portName;
    }
    return summary;
}

}  // namespace quarlin::sim::scanner
