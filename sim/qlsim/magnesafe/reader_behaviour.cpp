// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/reader_behaviour.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>

#include "magnesafe/card_text.h"

namespace quarlin::sim::magnesafe {
namespace {

// A command waits no longer than that for swipes that go out one after the other.
constexpr std::chrono::milliseconds kLongestPush{20};
constexpr std::uint8_t kEncryptingLevel = 3;  // and above

Form FormAt(std::uint8_t securityLevel) {
    return securityLevel >= kEncryptingLevel ? Form::kEncrypted : Form::kClear;
}

}  // namespace

ReaderBehaviour::ReaderBehaviour(const ReaderPlanSettings& settings, const Surroundings& surroundings)
    : settings_(settings),
      name_(surroundings.name),
      scenarioFolder_(surroundings.scenarioFolder),
      log_(surroundings.log),
      reader_(settings.reader),
      plug_(surroundings, reader_) {
}

void ReaderBehaviour::Begin() {
    try {
        for (const std::string& file : settings_.cardFiles) {
            for (Card& card : LoadCards(scenarioFolder_ / std::filesystem::u8path(file))) {
                settings_.cards.push_back(std::move(card));
            }
        }
        if (settings_.plugged) {
            plug_.Plug(reader_.Identity());
        }
    } catch (const ScenarioError& error) {
        throw DeviceError(name_ + ": " + error.what());
    } catch (const CommandError& error) {
        throw DeviceError(name_ + ": " + error.what());
    }
}

void ReaderBehaviour::Push() {
    const auto until = std::chrono::steady_clock::now() + kLongestPush;
    try {
        while (pending_ > 0 && std::chrono::steady_clock::now() < until) {
            plug_.Send(reader_.Swipe(card_, options_));
            --pending_;
        }
    } catch (const CommandError& error) {
        log_->Write(lastTime_, name_, std::to_string(pending_) + " swipes are given up: " + error.what());
        pending_ = 0;
    }
}

std::string ReaderBehaviour::Command(const Words& words, double now) {
    const ReaderCommand command = ParseReaderCommand(words);
    lastTime_ = now;
    using Verb = ReaderCommand::Verb;
    switch (command.verb) {
        case Verb::kPlug:
            return plug_.Plug(reader_.Identity());
        case Verb::kUnplug:
            pending_ = 0;
            return plug_.Unplug();
        case Verb::kSwipe:
            return Swipe(command);
        case Verb::kSwipeRaw:
            return SwipeRaw(command);
        case Verb::kSwipeMany:
            return SwipeMany(command);
        case Verb::kSecurityLevel:
            reader_.SetSecurityLevel(static_cast<std::uint8_t>(*command.number));
            return "security level " + words[1];
        case Verb::kFault:
            reader_.AddFault(command.fault);
            return std::to_string(reader_.WaitingFaults()) + " faults wait for their requests";
        case Verb::kResult:
            reader_.ForceResult(command.number ? std::optional(static_cast<std::uint8_t>(*command.number))
                                               : std::nullopt);
            return "result " + words[1];
        case Verb::kShortAnswer:
            reader_.ShortenAnswers(command.number);
            return "short-answer " + words[1];
        case Verb::kNoFaults:
            reader_.ClearFaults();
            return "no faults";
        case Verb::kStatus:
            return Describe(now).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    }
    return {};
}

std::string ReaderBehaviour::Swipe(const ReaderCommand& command) {
    plug_.NeedPlug();
    const Card card = FindCard(command.card);
    const SwipeOptions options = OptionsOf(command);
    plug_.Send(reader_.Swipe(card, options));
    return "swiped " + card.id + ", " + NameOf(options.form) + ", number " + std::to_string(reader_.Counts().swipes);
}

std::string ReaderBehaviour::SwipeRaw(const ReaderCommand& command) {
    const std::size_t length = settings_.reader.inputReportLength;
    if (command.bytes.size() > length) {
        throw CommandError("the report has " + std::to_string(command.bytes.size()) + " bytes, the device sends " +
                           std::to_string(length));
    }
    plug_.Send(reader_.InputReport(command.bytes));
    return "sent " + std::to_string(length) + " bytes";
}

std::string ReaderBehaviour::SwipeMany(const ReaderCommand& command) {
    plug_.NeedPlug();
    card_ = FindCard(command.card);
    options_ = OptionsOf(command);
    pending_ = *command.number;
    return "swiping " + card_.id + " " + std::to_string(pending_) + " times";
}

SwipeOptions ReaderBehaviour::OptionsOf(const ReaderCommand& command) const {
    SwipeOptions options = command.options;
    options.form = command.form.value_or(settings_.form.value_or(FormAt(reader_.Settings().securityLevel)));
    return options;
}

Card ReaderBehaviour::FindCard(const std::string& name) const {
    if (name.empty()) {
        if (settings_.cards.empty()) {
            throw CommandError("the reader knows no card: name a file, or give it cards in the scenario");
        }
        return settings_.cards.front();
    }
    std::vector<std::string> known;
    for (const Card& card : settings_.cards) {
        if (card.id == name) {
            return card;
        }
        known.push_back(card.id);
    }
    if (name.find_first_of("./\\#") == std::string::npos) {
        throw CommandError("there is no card \"" + name + "\"" + Suggestion(name, known));
    }
    return CardOfFile(name);
}

Card ReaderBehaviour::CardOfFile(const std::string& name) const {
    const std::size_t mark = std::min(name.rfind('#'), name.size());
    const std::string id = mark == name.size() ? "" : name.substr(mark + 1);
    const std::filesystem::path given = std::filesystem::u8path(name.substr(0, mark));
    std::error_code ignored;
    const bool here = std::filesystem::is_regular_file(given, ignored);
    try {
        std::vector<Card> cards = LoadCards(here ? given : scenarioFolder_ / given);
        const auto wanted = std::find_if(cards.begin(), cards.end(), [&](const Card& card) { return card.id == id; });
        if (wanted != cards.end()) {
            return *wanted;
        }
        if (id.empty() && cards.size() == 1) {
            return cards.front();
        }
        throw CommandError(id.empty() ? "the file has several cards: name one after a #"
                                      : "the file has no card \"" + id + "\"");
    } catch (const ScenarioError& error) {
        throw CommandError(error.Problems().front().text + " (\"" + name + "\")");
    }
}

nlohmann::ordered_json ReaderBehaviour::Describe(double now) {
    const ReaderSettings reader = reader_.Settings();
    const ReaderCounts counts = reader_.Counts();
    nlohmann::ordered_json state;
    state["device"] = name_;
    state["kind"] = "card-reader";
    state["seconds"] = std::round(now * 1000) / 1000;
    state["plugged"] = plug_.IsPlugged();
    state["serial"] = reader.serial;
    state["software_id"] = reader.softwareId;
    state["security_level"] = reader.securityLevel;
    state["cards"] = nlohmann::ordered_json::array();
    for (const Card& card : settings_.cards) {
        state["cards"].push_back(card.id);
    }
    state["swipes"] = counts.swipes;
    state["pending"] = pending_;
    state["set_features"] = counts.setFeatures;
    state["get_features"] = counts.getFeatures;
    state["outputs"] = counts.outputs;
    state["waiting_faults"] = reader_.WaitingFaults();
    return state;
}

}  // namespace quarlin::sim::magnesafe
