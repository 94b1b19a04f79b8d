// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "core/threaded_device.h"
#include "hid/hid_plug.h"
#include "magnesafe/reader.h"
#include "magnesafe/reader_command.h"
#include "magnesafe/reader_plan.h"

namespace quarlin::sim::magnesafe {

// A reader in its socket: commands become swipes and faults.
class ReaderBehaviour final : public Behaviour {
  public:
    ReaderBehaviour(const ReaderPlanSettings& settings, const Surroundings& surroundings);

    void Begin() override;
    void End() override { plug_.Unplug(); }
    double NextStep() const override { return std::numeric_limits<double>::infinity(); }
    void Step(double) override {}
    bool HasOutput() const override { return pending_ > 0; }
    // Sends some of the swipes that are still to come.
    void Push() override;
    std::string Command(const Words& words, double now) override;
    nlohmann::ordered_json Describe(double now) override;

  private:
    std::string Swipe(const ReaderCommand& command);
    std::string SwipeRaw(const ReaderCommand& command);
    std::string SwipeMany(const ReaderCommand& command);
    Card FindCard(const std::string& name) const;
    Card CardOfFile(const std::string& name) const;
    SwipeOptions OptionsOf(const ReaderCommand& command) const;

    ReaderPlanSettings settings_;
    std::string name_;
    std::filesystem::path scenarioFolder_;
    Log* log_;
    MagneSafeReader reader_;
    HidPlug plug_;
    double lastTime_ = 0;

    std::uint64_t pending_ = 0;  // swipes of swipe-many
    Card card_;                  // theirs
    SwipeOptions options_;
};

}  // namespace quarlin::sim::magnesafe
