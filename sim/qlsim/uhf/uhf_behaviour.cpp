// SPDX-License-Identifier: Apache-2.0
#include "uhf/uhf_behaviour.h"

#include <cmath>
#include <limits>

namespace quarlin::sim {
namespace {

using Json = nlohmann::ordered_json;

template <typename Rows, typename Value>
std::string NameIn(const Rows& rows, Value value) {
    for (const auto& [name, known] : rows) {
        if (known == value) {
            return std::string(name);
        }
    }
    return {};
}

Json DescribeTag(const UhfEngine::Present& present, bool selected) {
    const Tag& tag = present.tag;
    const std::span reserved(tag.Memory(TagBank::kReserved));
    Json state;
    state["epc"] = HexText(tag.Epc());
    state["identifier"] = HexText(tag.Identifier());
    state["tid"] = HexText(tag.Memory(TagBank::kTid));
    state["user"] = HexText(tag.Memory(TagBank::kUser));
    state["kill_password"] = HexText(reserved.first(4));
    state["access_password"] = HexText(reserved.subspan(4));
    state["signal"] = present.signal;
    state["selected"] = selected;
    state["killed"] = tag.IsKilled();
    for (const auto& [name, area] : kLockAreas) {
        state["locks"][std::string(name)] = NameIn(kLockStates, tag.Lock(area));
    }
    return state;
}

Json DescribeQuery(const UhfQuery& query) {
    return {{"link-frequency", query.linkFrequency},
            {"miller", query.miller},
            {"session", query.session},
            {"q-begin", query.qBegin},
            {"sensitivity", query.sensitivity}};
}

[[noreturn]] void RefuseUnknownTag(const Bytes& epc) {
    throw CommandError("there is no tag with the EPC " + HexText(epc));
}

}  // namespace

UhfBehaviour::UhfBehaviour(const UhfScenario& scenario, const Surroundings& surroundings)
    : name_(surroundings.name), plugged_(scenario.plugged) {
    try {
        socket_ = surroundings.makeHidSocket();
    } catch (const HidBusError& error) {
        throw DeviceError(name_ + ": " + error.what());
    }
    reader_ = std::make_unique<UhfReader>(scenario.reader, *socket_);
}

void UhfBehaviour::Begin() {
    if (!plugged_) {
        return;
    }
    try {
        reader_->Plug();
    } catch (const HidBusError& error) {
        throw DeviceError(name_ + ": " + error.what());
    }
}

void UhfBehaviour::End() {
    reader_->Unplug();
}

double UhfBehaviour::NextStep() const {
    return std::numeric_limits<double>::infinity();
}

void UhfBehaviour::Step(double) {
}

std::string UhfBehaviour::Command(const Words& words, double now) {
    const UhfCommand command = ParseUhfCommand(words);
    using Verb = UhfCommand::Verb;
    switch (command.verb) {
        case Verb::kPlug:
            return Plug();
        case Verb::kUnplug:
            return Unplug();
        case Verb::kAddTag:
            return AddTag(command.tag);
        case Verb::kRemoveTag:
            if (!reader_->With([&](UhfEngine& engine) { return engine.Remove(command.bytes); })) {
                RefuseUnknownTag(command.bytes);
            }
            return "removed";
        case Verb::kTags:
            return Tags().dump();
        case Verb::kSignal:
            if (!reader_->With([&](UhfEngine& engine) { return engine.SetSignal(command.bytes, command.signal); })) {
                RefuseUnknownTag(command.bytes);
            }
            return "signal " + words[2];
        case Verb::kPower:
            reader_->With([&](UhfEngine& engine) { engine.SetPower(command.power); });
            return "power " + words[1];
        case Verb::kParameters:
            return Parameters(command);
        case Verb::kFault:
            return SetFault(command.fault);
        case Verb::kClearFaults:
            reader_->ClearFaults();
            return "no faults";
        case Verb::kAnswerNow:
            return AnswerNow();
        case Verb::kSend:
            return Send(command.bytes);
        case Verb::kLog:
            return LogOf(command.last).dump();
        case Verb::kClearLog:
            reader_->ClearLog();
            return "the log is empty";
        case Verb::kStatus:
            return Describe(now).dump();
    }
    return {};
}

std::string UhfBehaviour::Plug() {
    if (reader_->IsPlugged()) {
        return "plugged in already";
    }
    try {
        reader_->Plug();
    } catch (const HidBusError& error) {
        throw CommandError(error.what());
    }
    return "plugged in";
}

std::string UhfBehaviour::Unplug() {
    if (!reader_->IsPlugged()) {
        return "unplugged already";
    }
    reader_->Unplug();
    return "unplugged";
}

std::string UhfBehaviour::AddTag(const TagSettings& settings) {
    const std::size_t tags = reader_->With([&](UhfEngine& engine) {
        for (const UhfEngine::Present& present : engine.Field()) {
            if (present.tag.Epc() == settings.epc) {
                throw CommandError("a tag with this EPC is there already");
            }
        }
        engine.Add(settings);
        return engine.Field().size();
    });
    return std::to_string(tags) + (tags == 1 ? " tag" : " tags");
}

std::string UhfBehaviour::SetFault(const UhfFault& fault) {
    try {
        reader_->AddFault(fault);
    } catch (const std::invalid_argument& error) {
        throw CommandError(error.what());
    }
    return fault.Text();
}

std::string UhfBehaviour::AnswerNow() {
    const std::size_t answers = reader_->AnswerNow();
    return std::to_string(answers) + (answers == 1 ? " answer" : " answers");
}

std::string UhfBehaviour::Send(const Bytes& bytes) {
    try {
        if (!reader_->SendReport(bytes)) {
            throw CommandError("the reader is unplugged");
        }
    } catch (const std::invalid_argument& error) {
        throw CommandError(error.what());
    }
    return "sent";
}

std::string UhfBehaviour::Parameters(const UhfCommand& command) {
    const UhfQuery query = reader_->With([&](UhfEngine& engine) {
        UhfQuery changed = engine.Query();
        if (!command.parameter.empty()) {
            SetUhfParameter(changed, command.parameter, command.value);
            engine.SetQuery(changed);
        }
        return changed;
    });
    return DescribeQuery(query).dump();
}

Json UhfBehaviour::Tags() {
    return reader_->With([](UhfEngine& engine) {
        Json tags = Json::array();
        for (const UhfEngine::Present& present : engine.Field()) {
            tags.push_back(DescribeTag(present, engine.Selected() == &present));
        }
        return tags;
    });
}

Json UhfBehaviour::LogOf(std::optional<unsigned> last) const {
    Json list = Json::array();
    const std::vector<UhfTransfer> log = reader_->Log();
    for (std::size_t i = last && *last < log.size() ? log.size() - *last : 0; i < log.size(); ++i) {
        list.push_back({{"from", log[i].fromHost ? "host" : "reader"}, {"frame", HexText(UhfFrameOf(log[i].report))}});
    }
    return list;
}

Json UhfBehaviour::Describe(double now) {
    Json state;
    state["device"] = name_;
    state["kind"] = "rfid-reader";
    state["seconds"] = std::round(now * 1000) / 1000;
    state["plugged"] = reader_->IsPlugged();
    reader_->With([&](UhfEngine& engine) {
        const UhfEngine::Present* const selected = engine.Selected();
        state["tags"] = engine.Field().size();
        state["selected"] = selected == nullptr ? Json(nullptr) : Json(HexText(selected->tag.Epc()));
        state["power"] = engine.Power();
        state["parameters"] = DescribeQuery(engine.Query());
    });
    state["faults"] = Json::array();
    for (const UhfFault& fault : reader_->Faults()) {
        state["faults"].push_back(fault.Text());
    }
    const UhfCounters counters = reader_->Counters();
    state["received"] = counters.received;
    state["sent"] = counters.sent;
    state["lost"] = counters.lost;
    state["waiting"] = counters.waiting;
    return state;
}

}  // namespace quarlin::sim
