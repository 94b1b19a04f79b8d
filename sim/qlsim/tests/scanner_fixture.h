// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "core/simulation.h"
#include "memory_computer.h"
#include "memory_hid_socket.h"
#include "memory_record.h"

namespace quarlin::sim::testing {

inline constexpr const char* kIntermec = "[[device]]\nkind = \"intermec-scanner\"\nname = \"scanner\"\n";
inline constexpr const char* kHoneywell = "[[device]]\nkind = \"honeywell-scanner\"\nname = \"scanner\"\n";

// Scanners in a simulation, on a computer and with libraries that are in the test's hands.
class ScannerTest : public ::testing::Test {
  protected:
    using Json = nlohmann::json;

    void Play(const std::string& scenario) {
        SimulationOptions options;
        options.machineRecords = machine_.Makers();
        options.computer = computer_.Parts();
        options.makeHidSocket = [this] { return std::make_unique<MemoryHidSocket>(places_.emplace_back()); };
        log_.AddSink(logText_);
        simulation_.emplace(ReadScenario(scenario, "test.toml"), options, log_);
        simulation_->Start();
    }
    std::string Do(const std::string& command) { return simulation_->Execute(command).Line(); }
    Json Status(const std::string& device) {
        const Reply reply = simulation_->Execute("status " + device);
        EXPECT_TRUE(reply.ok) << reply.text;
        return Json::parse(reply.text);
    }

    IntermecState& Intermec() { return *machine_.intermec; }
    HoneywellState& Honeywell() { return *machine_.honeywell; }

    // What a program does with a menu command.
    void Menu(std::string_view command, std::uint16_t status = kHoneywellGood) {
        EngineCall call{};
        call.function = static_cast<std::uint32_t>(HoneywellFunction::kSendMenuCommand);
        call.status = status;
        call.requestLength = static_cast<std::uint32_t>(command.size());
        call.requestBytes = call.requestLength;
        std::copy(command.begin(), command.end(), call.request);
        Honeywell().log.Add(call);
    }

    // The oldest scan on its way, and no longer; nothing when there is none.
    template <typename State>
    static std::optional<ScanSlot> Take(State& state) {
        if (state.inbox.IsEmpty()) {
            return std::nullopt;
        }
        const ScanSlot scan = state.inbox.Oldest();
        ++state.inbox.fetched;
        return scan;
    }
    static std::string BytesOf(const ScanSlot& scan) {
        return {reinterpret_cast<const char*>(scan.bytes), scan.length};
    }

    Log log_;
    std::ostringstream logText_;
    MemoryMachine machine_;
    MemoryComputer computer_;
    std::deque<HidPlace> places_;
    std::optional<Simulation> simulation_;
};

}  // namespace quarlin::sim::testing
