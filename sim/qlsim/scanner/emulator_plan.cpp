// SPDX-License-Identifier: Apache-2.0
#include "scanner/emulator_plan.h"

#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "core/table_reader.h"
#include "core/threaded_device.h"
#include "machine_libraries/library_command.h"
#include "scanner/emulator_command.h"

namespace quarlin::sim::scanner {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kLongest = 600000;  // milliseconds
constexpr std::array<const char*, kEmulatorMessageCount> kMessages = {"CONNECT", "GET_CONNECT_STATE", "STATE_REGIST",
                                                                      "ON_CONNECT_STATE"};

struct EmulatorPlanSettings {
    std::string program = kEmulatorProgram;
    bool running = true;
    bool noWindow = false;
    bool handedOver = false;
    EmulatorSettings settings = EmulatorState::DefaultSettings();
};

nlohmann::ordered_json PollOf(std::uint32_t poll) {
    return poll == EmulatorSettings::kNever ? nlohmann::ordered_json("never") : nlohmann::ordered_json(poll);
}

nlohmann::ordered_json CallsOf(const EmulatorCalls& log) {
    auto json = nlohmann::ordered_json::array();
    for (std::uint64_t number = log.First(); number < log.count; ++number) {
        const EmulatorCall& call = log.At(number);
        const auto message = static_cast<std::size_t>(call.message);
        // Any program of the machine can write to the record.
        json.push_back({{"message", message < kMessages.size() ? kMessages[message] : "?"},
                        {"wparam", call.wParam},
                        {"lparam", call.lParam},
                        {"answer", call.answer},
                        {"failed", call.failed != 0},
                        {"milliseconds", call.answered - call.milliseconds}});
    }
    return json;
}

class EmulatorBehaviour final : public Behaviour {
  public:
    EmulatorBehaviour(EmulatorPlanSettings settings, const Surroundings& surroundings)
        : settings_(std::move(settings)), name_(surroundings.name), make_(surroundings.computer.emulator) {}

    void Begin() override {
        if (!make_) {
            throw DeviceError(name_ + ": there is no machine on which the emulator could run");
        }
        program_ = make_();
        ResetRecord();
        if (settings_.running) {
            Start(settings_.noWindow, settings_.handedOver);
        }
    }
    void End() override {
        if (program_ == nullptr) {
            return;
        }
        try {
            program_->End();
        } catch (const DeviceError&) {
            program_->Kill();
        }
        program_.reset();
    }
    double NextStep() const override { return std::numeric_limits<double>::infinity(); }
    void Step(double) override {}

    std::string Command(const Words& words, double now) override {
        const EmulatorCommand command = ParseEmulatorCommand(words);
        try {
            return Carry(command, words, now);
        } catch (const DeviceError& error) {
            throw CommandError(error.what());
        }
    }

    nlohmann::ordered_json Describe(double now) override {
        nlohmann::ordered_json json;
        json["device"] = name_;
        json["kind"] = "emulator";
        json["seconds"] = std::round(now * 1000) / 1000;
        json["program"] = settings_.program;
        json["running"] = program_->IsRunning();
        program_->Use([&json](const EmulatorState& state) {
            json["process"] = state.process;
            json["window"] = state.window != 0;
            json["listener"] = state.listener;
            json["connect_state"] = state.connectState;
            json["polls"] = state.polls;
            json["answer"] = state.settings.connectAnswer;
            json["hand_over_at"] = PollOf(state.settings.handOverAtPoll);
            json["state_before"] = state.settings.stateBefore;
            json["connect_delay"] = state.settings.connectDelay;
            json["state_delay"] = state.settings.stateDelay;
            json["notice"] = NameOf(state.settings.notice);
            json["notice_in_connect"] = NameOf(state.settings.noticeInConnect);
            json["messages"] = state.log.count;
        });
        return json;
    }

  private:
    using Verb = EmulatorCommand::Verb;

    std::string Start(bool noWindow, bool handedOver) {
        if (program_->IsRunning()) {
            throw DeviceError("the emulator is running already");
        }
        std::vector<std::string> arguments;
        if (noWindow) {
            arguments.emplace_back("--no-window");
        }
        if (handedOver) {
            arguments.emplace_back("--handed-over");
        }
        program_->Start(settings_.program, arguments);
        return settings_.program + " is running";
    }

    void ResetRecord() {
        program_->Use([this](EmulatorState& state) {
            state.settings = settings_.settings;
            state.log.count = 0;
        });
    }

    std::string Reset() {
        ResetRecord();
        program_->End();
        if (settings_.running) {
            Start(settings_.noWindow, settings_.handedOver);
        }
        return "as the scenario has it";
    }

    std::string Carry(const EmulatorCommand& command, const Words& words, double now) {
        std::string said = command.said;
        switch (command.verb) {
            case Verb::kStart:
                return Start(command.noWindow, command.handedOver);
            case Verb::kEnd:
                program_->End();
                return "ended";
            case Verb::kKill:
                program_->Kill();
                return "killed";
            case Verb::kSet:
                program_->Use([&command](EmulatorState& state) { command.set(state.settings); });
                return said;
            case Verb::kOrder:
                if (!program_->IsRunning()) {
                    throw CommandError("the emulator does not run");
                }
                program_->Give(command.order);
                return words.front() + " is done";
            case Verb::kLog:
                program_->Use([&said](const EmulatorState& state) { said = OneLine(CallsOf(state.log)); });
                return said;
            case Verb::kClearLog:
                program_->Use([](EmulatorState& state) { state.log.count = 0; });
                return "the log is empty";
            case Verb::kReset:
                return Reset();
            case Verb::kStatus:
                return OneLine(Describe(now));
        }
        return said;
    }

    EmulatorPlanSettings settings_;
    std::string name_;
    std::function<std::unique_ptr<EmulatorProgram>()> make_;
    std::unique_ptr<EmulatorProgram> program_;
};

class EmulatorPlan final : public DevicePlan {
  public:
    explicit EmulatorPlan(EmulatorPlanSettings settings) : settings_(std::move(settings)) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        auto behaviour = std::make_unique<EmulatorBehaviour>(settings_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override { ParseEmulatorCommand(words); }
    std::string Summary() const override {
        return settings_.program + (settings_.running ? "" : ", not running at first");
    }
    std::vector<std::string> Usage() const override { return EmulatorCommandUsage(); }

  private:
    EmulatorPlanSettings settings_;
};

std::uint32_t Read32(TableReader& table, const char* key, std::uint32_t fallback, std::int64_t most = kMost) {
    return static_cast<std::uint32_t>(table.Integer(key, fallback, 0, most));
}

EmulatorNotice ReadNotice(TableReader& table, const char* key, EmulatorNotice fallback) {
    const auto notice = NoticeNamed(table.Text(key, NameOf(fallback)));
    if (!notice) {
        table.Complain(key, "\"" + std::string(key) + "\" has to be \"none\", \"posted\" or \"sent\"");
    }
    return notice.value_or(fallback);
}

EmulatorPlanSettings ReadSettings(TableReader& table) {
    EmulatorPlanSettings plan;
    plan.program = table.Text("program", plan.program);
    plan.running = table.Flag("running", plan.running);
    plan.noWindow = !table.Flag("window", true);
    plan.handedOver = table.Flag("handed_over", false);
    EmulatorSettings& settings = plan.settings;
    settings.connectAnswer = Read32(table, "answer", settings.connectAnswer);
    const std::uint32_t poll = Read32(table, "hand_over_at", settings.handOverAtPoll, kMost - 1);
    settings.handOverAtPoll = poll != 0 ? poll : EmulatorSettings::kNever;
    settings.stateBefore = Read32(table, "state_before", settings.stateBefore);
    settings.connectDelay = Read32(table, "connect_delay", settings.connectDelay, kLongest);
    settings.stateDelay = Read32(table, "state_delay", settings.stateDelay, kLongest);
    settings.notice = ReadNotice(table, "notice", settings.notice);
    settings.noticeInConnect = ReadNotice(table, "notice_in_connect", settings.noticeInConnect);
    return plan;
}

}  // namespace

std::unique_ptr<DevicePlan> ReadEmulatorPlan(TableReader& table) {
    return std::make_unique<EmulatorPlan>(ReadSettings(table));
}

}  // namespace quarlin::sim::scanner
