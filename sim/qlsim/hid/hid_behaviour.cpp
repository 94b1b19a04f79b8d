// SPDX-License-Identifier: Apache-2.0
#include "hid/hid_behaviour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "hid/hex.h"
#include "hid/report_descriptor.h"

namespace quarlin::sim {
namespace {

constexpr std::array<const char*, 7> kVerbs = {"plug",      "unplug",    "input", "fail-request",
                                               "unplug-on", "no-faults", "status"};

std::vector<std::uint8_t> ReportOf(const Words& words) {
    std::string text;
    for (std::size_t at = 1; at < words.size(); ++at) {
        text += words[at] + " ";
    }
    const auto bytes = ParseHex(text);
    if (!bytes || bytes->empty()) {
        throw CommandError("the command has to be: input HEX, with the report ID in front");
    }
    return *bytes;
}

}  // namespace

HidAnswer PlainHidFunction::SetFeature(std::span<const std::uint8_t> report) {
    const std::lock_guard hold(lock_);
    ++setFeatures_;
    feature_.assign(report.begin(), report.end());
    return faults_.Meet(HidRequest::kSetFeature, report.subspan(1));
}

HidAnswer PlainHidFunction::GetFeature(std::span<std::uint8_t> report) {
    const std::lock_guard hold(lock_);
    ++getFeatures_;
    const std::span<const std::uint8_t> last(feature_);
    const HidAnswer answer = faults_.Meet(HidRequest::kGetFeature, last.empty() ? last : last.subspan(1));
    if (answer == HidAnswer::kDone && !feature_.empty() && feature_.front() == report.front()) {
        std::copy_n(feature_.begin(), std::min(feature_.size(), report.size()), report.begin());
    }
    return answer;
}

HidAnswer PlainHidFunction::SetOutput(std::span<const std::uint8_t> report) {
    const std::lock_guard hold(lock_);
    ++outputs_;
    output_.assign(report.begin(), report.end());
    return faults_.Meet(HidRequest::kSetOutput, report.subspan(1));
}

void PlainHidFunction::AddFault(RequestFault fault) {
    const std::lock_guard hold(lock_);
    faults_.Add(std::move(fault));
}

void PlainHidFunction::ClearFaults() {
    const std::lock_guard hold(lock_);
    faults_.Clear();
}

nlohmann::ordered_json PlainHidFunction::Describe() const {
    const std::lock_guard hold(lock_);
    nlohmann::ordered_json state;
    state["set_features"] = setFeatures_;
    state["get_features"] = getFeatures_;
    state["outputs"] = outputs_;
    state["last_feature"] = HexText(feature_);
    state["last_output"] = HexText(output_);
    state["waiting_faults"] = faults_.Waiting();
    return state;
}

HidBehaviour::HidBehaviour(HidSettings settings, const Surroundings& surroundings)
    : settings_(std::move(settings)), name_(surroundings.name), plug_(surroundings, function_) {
}

void HidBehaviour::Check(const Words& words) {
    const std::string verb = words.empty() ? "" : words.front();
    if (verb == "input") {
        ReportOf(words);
    } else if (verb == "fail-request" || verb == "unplug-on") {
        ParseRequestFault(words, HidAnswer::kRefuse);
    } else if (std::find(kVerbs.begin(), kVerbs.end(), verb) == kVerbs.end()) {
        throw CommandError(verb.empty() ? "a command is missing; \"help\" lists what there is"
                                        : "there is no command \"" + verb + "\"" +
                                              Suggestion(verb, {kVerbs.begin(), kVerbs.end()}));
    } else if (words.size() > 1) {
        throw CommandError("the command has to be: " + verb);
    }
}

std::vector<std::string> HidBehaviour::Usage() {
    const auto onRequest = [](const char* verb) { return std::string(verb).append(" ").append(kRequestFaultUsage); };
    return {"plug", "unplug", "input HEX", onRequest("fail-request"), onRequest("unplug-on"), "no-faults", "status"};
}

void HidBehaviour::Begin() {
    try {
        if (settings_.plugged) {
            plug_.Plug(settings_.identity);
        }
    } catch (const CommandError& error) {
        throw DeviceError(name_ + ": " + error.what());
    }
}

std::string HidBehaviour::Command(const Words& words, double now) {
    Check(words);
    const std::string& verb = words.front();
    if (verb == "plug") {
        return plug_.Plug(settings_.identity);
    }
    if (verb == "unplug") {
        return plug_.Unplug();
    }
    if (verb == "input") {
        return Input(words);
    }
    if (verb == "no-faults") {
        function_.ClearFaults();
        return "no faults";
    }
    if (verb == "status") {
        return Describe(now).dump();
    }
    const bool unplugs = verb == "unplug-on";
    function_.AddFault(ParseRequestFault(words, unplugs ? HidAnswer::kUnplug : HidAnswer::kRefuse));
    return unplugs ? "unplugged on such a request" : "such a request fails";
}

std::string HidBehaviour::Input(const Words& words) {
    const std::vector<std::uint8_t> given = ReportOf(words);
    const auto lengths = MeasureReportDescriptor(settings_.identity.reportDescriptor);
    const std::size_t length = lengths ? lengths->input : 0;
    if (given.size() != length) {
        throw CommandError("an input report of the device has " + std::to_string(length) + " bytes");
    }
    plug_.Send(given);
    return "sent " + std::to_string(length) + " bytes";
}

nlohmann::ordered_json HidBehaviour::Describe(double now) {
    nlohmann::ordered_json state;
    state["device"] = name_;
    state["kind"] = "hid";
    state["seconds"] = std::round(now * 1000) / 1000;
    state["plugged"] = plug_.IsPlugged();
    state["vendor"] = HexText(settings_.identity.vendor);
    state["product"] = HexText(settings_.identity.product);
    state.update(function_.Describe());
    return state;
}

}  // namespace quarlin::sim
