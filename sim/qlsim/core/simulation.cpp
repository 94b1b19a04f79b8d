// SPDX-License-Identifier: Apache-2.0
#include "core/simulation.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "core/random.h"

namespace quarlin::sim {
namespace {

using Json = nlohmann::ordered_json;

// One line, and no text makes it fail: bytes that are no UTF-8 are replaced.
std::string Dump(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

Simulation::Simulation(Scenario scenario, SimulationOptions options, Log& log)
    : scenario_(std::move(scenario)),
      options_(std::move(options)),
      log_(log),
      pace_(Pace::Clock::now(), scenario_.speedFactor) {
}

Simulation::~Simulation() {
    Stop();
}

void Simulation::Start() {
    pace_ = Pace(Pace::Clock::now(), scenario_.speedFactor);
    for (ScenarioDevice& planned : scenario_.devices) {
        Surroundings surroundings;
        surroundings.name = planned.name;
        surroundings.seed = DeriveSeed(options_.seed.value_or(scenario_.seed), planned.name);
        surroundings.startUtc = scenario_.startUtc;
        surroundings.pace = pace_;
        surroundings.duration = options_.duration ? options_.duration : scenario_.duration;
        surroundings.timeline = planned.timeline;
        surroundings.scenarioFolder = scenario_.folder;
        surroundings.log = &log_;
        surroundings.makePort = options_.makePort;
        surroundings.makeHidSocket = options_.makeHidSocket;
        surroundings.machineRecords = options_.machineRecords;
        surroundings.computer = options_.computer;
        surroundings.finished = [this] {
            const std::lock_guard hold(lock_);
            changed_.notify_all();
        };
        actors_.push_back({planned.name, planned.kind, planned.plan->Make(std::move(surroundings))});
    }
    try {
        for (Actor& actor : actors_) {
            actor.device->Start();
        }
    } catch (const DeviceError&) {
        Stop();
        throw;
    }
}

void Simulation::Stop() {
    for (Actor& actor : actors_) {
        actor.device->Stop();
    }
}

void Simulation::RequestEnd() {
    const std::lock_guard hold(lock_);
    endRequested_ = true;
    changed_.notify_all();
}

void Simulation::WaitForEnd() {
    std::unique_lock lock(lock_);
    changed_.wait(lock, [this] {
        return endRequested_ ||
               std::all_of(actors_.begin(), actors_.end(), [](const Actor& a) { return a.device->Finished(); });
    });
}

Reply Simulation::Execute(std::string_view line) {
    try {
        Words words = SplitWords(line);
        if (words.empty()) {
            throw CommandError("the command is empty; \"help\" lists what there is");
        }
        if (Actor* const actor = Find(words.front())) {
            words.erase(words.begin());
            return actor->device->Command(words);
        }
        return ExecuteOwn(words);
    } catch (const CommandError& error) {
        return {false, error.what()};
    }
}

Reply Simulation::ExecuteOwn(const Words& words) {
    const std::string& verb = words.front();
    const bool single = words.size() == 1;
    if (verb == "help" && single) {
        return {true, Help()};
    }
    if (verb == "devices" && single) {
        Json list = Json::array();
        for (const Actor& actor : actors_) {
            list.push_back({{"device", actor.name}, {"kind", actor.kind}});
        }
        return {true, Dump(list)};
    }
    if (verb == "status" && words.size() <= 2) {
        return {true, Status(words)};
    }
    if (verb == "quit" && single) {
        RequestEnd();
        return {true, "ending"};
    }
    std::vector<std::string> known = Names();
    for (const char* const own : {"help", "devices", "status", "quit"}) {
        if (verb == own) {
            throw CommandError("\"" + verb + "\" takes no such arguments");
        }
        known.emplace_back(own);
    }
    throw CommandError("there is no device or command \"" + verb + "\"" + Suggestion(verb, known));
}

std::string Simulation::Status(const Words& words) {
    if (words.size() == 2) {
        Actor* const actor = Find(words[1]);
        if (actor == nullptr) {
            throw CommandError("there is no device \"" + words[1] + "\"" + Suggestion(words[1], Names()));
        }
        return Dump(actor->device->Describe());
    }
    Json status;
    status["seed"] = options_.seed.value_or(scenario_.seed);
    status["speed_factor"] = scenario_.speedFactor;
    status["devices"] = Json::array();
    for (Actor& actor : actors_) {
        status["devices"].push_back(actor.device->Describe());
    }
    return Dump(status);
}

std::string Simulation::Help() const {
    Json lines = {"help", "devices", "status [DEVICE]", "quit"};
    for (const ScenarioDevice& planned : scenario_.devices) {
        for (const std::string& usage : planned.plan->Usage()) {
            lines.push_back(planned.name + " " + usage);
        }
    }
    return Dump(lines);
}

Simulation::Actor* Simulation::Find(const std::string& name) {
    const auto found = std::find_if(actors_.begin(), actors_.end(), [&](const Actor& a) { return a.name == name; });
    return found == actors_.end() ? nullptr : &*found;
}

std::vector<std::string> Simulation::Names() const {
    std::vector<std::string> names;
    for (const Actor& actor : actors_) {
        names.push_back(actor.name);
    }
    return names;
}

}  // namespace quarlin::sim
