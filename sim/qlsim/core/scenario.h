// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/device.h"
#include "core/table_reader.h"

namespace quarlin::sim {

struct ScenarioDevice {
    std::string name;
    std::string kind;
    std::unique_ptr<DevicePlan> plan;
    std::vector<TimedCommand> timeline;  // in the order of their times
};

struct Scenario {
    std::filesystem::path folder;
    std::uint64_t seed = 1;
    std::int64_t startUtc = 0;  // milliseconds since 1970
    double speedFactor = 1;     // 0: nothing waits
    std::optional<double> duration;
    std::vector<ScenarioDevice> devices;
};

// Both throw ScenarioError with everything that is wrong.
Scenario ReadScenario(std::string_view text, const std::string& file);
Scenario LoadScenario(const std::string& file);

}  // namespace quarlin::sim
