// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <limits>
#include <mutex>
#include <string>
#include <vector>

#include "core/threaded_device.h"
#include "hid/hid_plan.h"
#include "hid/hid_plug.h"
#include "hid/request_faults.h"

namespace quarlin::sim {

// Takes every report, gives back the last feature report, and counts.
class PlainHidFunction final : public HidFunction {
  public:
    HidAnswer SetFeature(std::span<const std::uint8_t> report) override;
    HidAnswer GetFeature(std::span<std::uint8_t> report) override;
    HidAnswer SetOutput(std::span<const std::uint8_t> report) override;

    void AddFault(RequestFault fault);
    void ClearFaults();
    nlohmann::ordered_json Describe() const;

  private:
    mutable std::mutex lock_;
    RequestFaults faults_;
    std::vector<std::uint8_t> feature_;  // the last one
    std::vector<std::uint8_t> output_;   // likewise
    std::uint64_t setFeatures_ = 0;
    std::uint64_t getFeatures_ = 0;
    std::uint64_t outputs_ = 0;
};

class HidBehaviour final : public Behaviour {
  public:
    HidBehaviour(HidSettings settings, const Surroundings& surroundings);

    // Throws CommandError when the verb or its arguments are wrong.
    static void Check(const Words& words);
    static std::vector<std::string> Usage();

    void Begin() override;
    void End() override { plug_.Unplug(); }
    double NextStep() const override { return std::numeric_limits<double>::infinity(); }
    void Step(double) override {}
    std::string Command(const Words& words, double now) override;
    nlohmann::ordered_json Describe(double now) override;

  private:
    std::string Input(const Words& words);

    HidSettings settings_;
    std::string name_;
    PlainHidFunction function_;
    HidPlug plug_;
};

}  // namespace quarlin::sim
