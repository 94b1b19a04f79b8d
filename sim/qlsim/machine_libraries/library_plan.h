// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cmath>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/threaded_device.h"
#include "machine_libraries/library_command.h"
#include "machine_libraries/machine_record.h"

namespace quarlin::sim {

// What makes one machine library different from another.
template <typename State>
struct LibraryKind {
    const char* name;
    std::span<const LibraryCommand<State>> commands;  // beside "reset" and "status"
    std::string (*summary)(const State& initial);
    // Adds what the record says.
    void (*describe)(const State& state, std::uint64_t now, nlohmann::ordered_json& json);
    // Carries over what belongs to the programs that are running, when a record is filled anew.
    void (*keep)(const State& before, State& state);
};

// A machine library steered by qlsim: its record is open as long as qlsim runs, so that what programs do to it outlives
// them.
template <typename State>
class LibraryBehaviour final : public Behaviour {
  public:
    LibraryBehaviour(const LibraryKind<State>& kind, const State& initial, const Surroundings& surroundings)
        : kind_(kind),
          initial_(initial),
          name_(surroundings.name),
          makeRecord_(surroundings.machineRecords.template Of<State>()) {}

    void Begin() override {
        if (!makeRecord_) {
            throw DeviceError("there is no machine whose library could be steered");
        }
        record_ = makeRecord_();
        record_->Use([this](State& state) { Reset(state); });
    }
    void End() override { record_.reset(); }
    double NextStep() const override { return std::numeric_limits<double>::infinity(); }
    void Step(double) override {}

    std::string Command(const Words& words, double now) override {
        if (IsPlainCommand(words, "status")) {
            return OneLine(Describe(now));
        }
        LibraryAction<State> action;
        if (IsPlainCommand(words, "reset")) {
            action = [this](const LibraryScene<State>& scene) {
                Reset(scene.state);
                return std::string("as the scenario has it");
            };
        } else {
            action = ReadCommand(kind_.commands, words);
        }
        std::string said;
        try {
            record_->Use([&](State& state) { said = action({state, record_->Milliseconds()}); });
        } catch (const DeviceError& error) {
            throw CommandError(error.what());
        }
        return said;
    }

    nlohmann::ordered_json Describe(double now) override {
        nlohmann::ordered_json json;
        json["device"] = name_;
        json["kind"] = kind_.name;
        json["seconds"] = std::round(now * 1000) / 1000;
        try {
            record_->Use([&](const State& state) { kind_.describe(state, record_->Milliseconds(), json); });
        } catch (const DeviceError& error) {
            json["error"] = error.what();
        }
        return json;
    }

  private:
    void Reset(State& state) {
        State fresh = initial_;
        kind_.keep(state, fresh);
        state = fresh;
    }

    const LibraryKind<State>& kind_;
    State initial_;
    std::string name_;
    MachineRecordMaker<State> makeRecord_;
    std::unique_ptr<MachineRecord<State>> record_;
};

template <typename State>
class LibraryPlan final : public DevicePlan {
  public:
    LibraryPlan(const LibraryKind<State>& kind, const State& initial) : kind_(kind), initial_(initial) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        auto behaviour = std::make_unique<LibraryBehaviour<State>>(kind_, initial_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override {
        if (!IsPlainCommand(words, "status") && !IsPlainCommand(words, "reset")) {
            ReadCommand(kind_.commands, words);
        }
    }
    std::string Summary() const override { return kind_.summary(initial_); }
    std::vector<std::string> Usage() const override {
        std::vector<std::string> usage;
        for (const LibraryCommand<State>& command : kind_.commands) {
            usage.emplace_back(command.usage);
        }
        usage.emplace_back("reset");
        usage.emplace_back("status");
        return usage;
    }

  private:
    const LibraryKind<State>& kind_;
    State initial_;
};

}  // namespace quarlin::sim
