// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/threaded_device.h"
#include "scanner/engine_command.h"
#include "scanner/engine_report.h"
#include "scanner/symbology.h"

namespace quarlin::sim::scanner {

// A scanner engine: what its library tells programs, its hardware, and whoever holds codes in front of it. `Engine` is
// one of the two families.
template <typename Engine>
class EngineBehaviour final : public Behaviour {
  public:
    using State = typename Engine::State;
    using Settings = typename Engine::Settings;

    EngineBehaviour(const Settings& settings, const Surroundings& surroundings)
        : settings_(settings),
          name_(surroundings.name),
          engine_(settings, surroundings),
          makeRecord_(surroundings.machineRecords.template Of<State>()) {}

    void Begin() override {
        if (!makeRecord_) {
            throw DeviceError(name_ + ": there is no machine whose library could be steered");
        }
        record_ = makeRecord_();
        try {
            record_->Use([this](State& state) { Reset(state); });
            if (settings_.plugged) {
                engine_.PlugIn();
            }
        } catch (const CommandError& error) {
            throw DeviceError(name_ + ": " + error.what());
        }
    }

    // The computer is left without the engine.
    void End() override {
        try {
            Unplug();
        } catch (const std::runtime_error&) {
            // The record is not to be had any more; what is left of it goes with the last program.
        }
        record_.reset();
    }

    double NextStep() const override { return left_ > 0 ? next_ : std::numeric_limits<double>::infinity(); }

    void Step(double now) override {
        switch (Show(code_).outcome) {
            case Outcome::kRead:
                ++read_;
                break;
            case Outcome::kMissed:
                ++missed_;
                break;
            case Outcome::kLater:
                next_ = now + kRetry;
                return;
        }
        --left_;
        next_ = now + every_;
    }

    std::string Command(const Words& words, double now) override {
        const EngineCommand command = ParseEngineCommand(Engine::kFamily, words);
        try {
            return Carry(command, words, now);
        } catch (const DeviceError& error) {
            throw CommandError(error.what());
        } catch (const std::length_error& error) {
            throw CommandError(error.what());
        }
    }

    nlohmann::ordered_json Describe(double now) override {
        nlohmann::ordered_json json;
        json["device"] = name_;
        json["kind"] = Engine::kKind;
        json["seconds"] = std::round(now * 1000) / 1000;
        try {
            record_->Use([&](State& state) { DescribeRecord(state, json); });
        } catch (const DeviceError& error) {
            json["error"] = error.what();
        }
        json["read"] = read_;
        json["missed"] = missed_;
        json["pending"] = left_;
        return json;
    }

  private:
    using Verb = EngineCommand::Verb;

    // A code that comes while the engine cannot take another one is read when it can.
    static constexpr double kRetry = 0.005;

    enum class Outcome {
        kRead,
        kMissed,
        kLater
    };
    struct Look {
        Outcome outcome;
        std::string why;
    };

    // All but the programs that are running and the scans on their way to them.
    void Reset(State& state) {
        std::fill(std::begin(state.refusals), std::end(state.refusals), Refusal{});
        for (AnswerInstead& answer : state.answersInstead) {
            answer.count = 0;
        }
        state.hold.function = Hold::kNone;
        state.log.Clear();
        engine_.Fill(state);
        engine_.SetPlugged(state, settings_.plugged);
    }

    std::string Plug() {
        bool plugged = false;
        record_->Use([&](State& state) {
            plugged = engine_.IsPlugged(state);
            engine_.SetPlugged(state, true);
        });
        engine_.PlugIn();
        return plugged ? "plugged in already" : "plugged in";
    }

    std::string Unplug() {
        bool plugged = false;
        left_ = 0;
        if (record_ != nullptr) {
            record_->Use([&](State& state) {
                plugged = engine_.IsPlugged(state);
                engine_.SetPlugged(state, false);
            });
        }
        engine_.PullOut();
        return plugged ? "unplugged" : "unplugged already";
    }

    // Why the engine does not read a code now; empty: it does.
    std::string WhyNot(State& state, const ShownCode& code) {
        engine_.CatchUp(state);
        if (!engine_.IsPlugged(state)) {
            return "the engine is unplugged";
        }
        if (state.connected == 0 || !record_->IsRunning(state.connected)) {
            return "no program is connected to the engine";
        }
        if (!engine_.IsDecoding(state) && !engine_.HasTrigger(state)) {
            return "neither decoding nor the hardware trigger is on";
        }
        if (!engine_.Reads(state, code.symbology)) {
            return std::string(Symbologies()[code.symbology].name) + " is not enabled";
        }
        return {};
    }

    Look Show(const ShownCode& code) {
        const ScanSlot scan = Engine::Scan(code);
        Look look{Outcome::kRead, {}};
        record_->Use([&](State& state) {
            look.why = WhyNot(state, code);
            if (!look.why.empty()) {
                look.outcome = Outcome::kMissed;
            } else if (state.inbox.IsFull()) {
                look = {Outcome::kLater, "the engine has more scans than it can hold"};
            } else {
                state.inbox.Add(scan);
            }
        });
        if (look.outcome == Outcome::kRead) {
            record_->AnnounceScan();
        }
        return look;
    }

    std::string Scan(const ShownCode& code) {
        const Look look = Show(code);
        if (look.outcome != Outcome::kRead) {
            ++missed_;
            throw CommandError("not read: " + look.why);
        }
        ++read_;
        return "read " + std::to_string(code.text.size()) + " bytes, " + Symbologies()[code.symbology].name + " " +
               Symbologies()[code.symbology].identifier;
    }

    std::string ScanRaw(const EngineCommand& command) {
        ScanSlot scan = Engine::RawScan(command.bytes);
        scan.claimed = command.claimed.value_or(scan.claimed);
        scan.eventType = command.event.value_or(scan.eventType);
        scan.flags = command.flags;
        bool full = false;
        record_->Use([&](State& state) {
            full = state.inbox.IsFull();
            if (!full) {
                state.inbox.Add(scan);
            }
        });
        if (full) {
            throw CommandError("the engine has more scans than it can hold");
        }
        record_->AnnounceScan();
        return std::to_string(command.bytes.size()) + " bytes on their way";
    }

    std::string Present(const EngineCommand& command, double now) {
        // A code too long is refused here and not at its first showing.
        Engine::Scan(command.code);
        code_ = command.code;
        every_ = command.every;
        left_ = command.times;
        next_ = now;
        return left_ == 0 ? "nothing is shown any more" : "shown " + std::to_string(left_) + " times";
    }

    std::string Answer(const EngineCommand& command, State& state) {
        AnswerInstead* const place = std::find_if(std::begin(state.answersInstead), std::end(state.answersInstead),
                                                  [](const AnswerInstead& answer) { return answer.count == 0; });
        if (place == std::end(state.answersInstead)) {
            throw CommandError("no more than " + std::to_string(kAnswersInstead) + " answers can be waiting");
        }
        place->function = static_cast<std::uint32_t>(*command.function);
        place->length = static_cast<std::uint32_t>(command.bytes.size());
        place->claimed = command.claimed.value_or(place->length);
        std::copy(command.bytes.begin(), command.bytes.end(), place->bytes);
        place->count = command.count;
        return NameOf(*command.function) + " answers " + std::to_string(place->length) + " bytes";
    }

    std::string Refuse(const EngineCommand& command, State& state) {
        state.refusals[*command.function] = command.refusal;
        return NameOf(*command.function) + " refuses with " + std::to_string(command.refusal.status);
    }

    std::string Accept(const EngineCommand& command, State& state) {
        for (std::size_t i = 0; i < std::size(state.refusals); ++i) {
            if (!command.function || *command.function == i) {
                state.refusals[i] = {};
            }
        }
        for (AnswerInstead& answer : state.answersInstead) {
            if (!command.function || *command.function == answer.function) {
                answer.count = 0;
            }
        }
        return (command.function ? NameOf(*command.function) + " does" : std::string("all functions do")) +
               " their work";
    }

    std::string Carry(const EngineCommand& command, const Words& words, double now) {
        switch (command.verb) {
            case Verb::kPlug:
                return Plug();
            case Verb::kUnplug:
                return Unplug();
            case Verb::kScan:
                return Scan(command.code);
            case Verb::kScanRaw:
                return ScanRaw(command);
            case Verb::kPresent:
                return Present(command, now);
            case Verb::kReset:
                return ResetAll();
            case Verb::kStatus:
                return OneLine(Describe(now));
            default:
                break;
        }
        std::string said;
        record_->Use([&](State& state) { said = CarryInRecord(command, words, state); });
        return said;
    }

    std::string CarryInRecord(const EngineCommand& command, const Words& words, State& state) {
        engine_.CatchUp(state);
        switch (command.verb) {
            case Verb::kSymbology:
                engine_.Switch(state, command.symbology, command.on);
                return JoinWords({words.begin() + 1, words.end()});
            case Verb::kListSymbologies:
                return OneLine(Enabled(state));
            case Verb::kFirmware:
                state.SetVersion(command.texts.front().data(), command.texts.front().size());
                return "firmware " + words[1];
            case Verb::kHardwareTrigger:
                engine_.SetTrigger(state, command.on);
                return "hardware trigger " + words[1];
            case Verb::kRefuse:
                return Refuse(command, state);
            case Verb::kAnswer:
                return Answer(command, state);
            case Verb::kAccept:
                return Accept(command, state);
            case Verb::kLog:
                return OneLine(EngineCallsOf(FunctionsOf(Engine::kFamily), state.log, command.calls));
            case Verb::kClearLog:
                state.log.Clear();
                return "the log is empty";
            default:
                return engine_.Carry(command, state);
        }
    }

    std::string ResetAll() {
        left_ = 0;
        bool plugged = false;
        record_->Use([&](State& state) {
            plugged = engine_.IsPlugged(state);
            Reset(state);
        });
        if (settings_.plugged) {
            engine_.PlugIn();
        } else if (plugged) {
            engine_.PullOut();
        }
        return "as the scenario has it";
    }

    nlohmann::ordered_json Enabled(const State& state) const {
        auto names = nlohmann::ordered_json::array();
        for (std::size_t i = 0; i < kSymbologies; ++i) {
            if (engine_.Reads(state, i)) {
                names.push_back(Symbologies()[i].name);
            }
        }
        return names;
    }

    void DescribeRecord(State& state, nlohmann::ordered_json& json) {
        engine_.CatchUp(state);
        json["plugged"] = engine_.IsPlugged(state);
        json["firmware"] = std::string(state.version, std::min<std::size_t>(state.versionLength, State::kVersionRoom));
        json["initialized"] = state.initialized;
        json["connected"] = state.connected;
        json["decoding"] = engine_.IsDecoding(state);
        json["hardware_trigger"] = engine_.HasTrigger(state);
        engine_.Describe(state, json);
        json["symbologies"] = Enabled(state);
        json["refusals"] = RefusalsOf(FunctionsOf(Engine::kFamily), state.refusals);
        json["waiting"] = state.inbox.added - state.inbox.fetched;
        json["calls"] = state.log.Count();
    }

    static std::string NameOf(std::size_t function) { return FunctionsOf(Engine::kFamily)[function]; }

    Settings settings_;
    std::string name_;
    Engine engine_;
    MachineRecordMaker<State> makeRecord_;
    std::unique_ptr<MachineRecord<State>> record_;
    // A code that is shown again and again.
    ShownCode code_;
    std::uint64_t left_ = 0;
    double every_ = 0;
    double next_ = 0;
    std::uint64_t read_ = 0;
    std::uint64_t missed_ = 0;
};

}  // namespace quarlin::sim::scanner
