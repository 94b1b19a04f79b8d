// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "core/threaded_device.h"
#include "uhf/uhf_command.h"
#include "uhf/uhf_plan.h"

namespace quarlin::sim {

// The reader in a scenario: it lives by the bus's threads, so that nothing is to be done in steps.
class UhfBehaviour final : public Behaviour {
  public:
    UhfBehaviour(const UhfScenario& scenario, const Surroundings& surroundings);

    void Begin() override;
    void End() override;
    double NextStep() const override;
    void Step(double now) override;
    std::string Command(const Words& words, double now) override;
    nlohmann::ordered_json Describe(double now) override;

  private:
    std::string Plug();
    std::string Unplug();
    std::string AddTag(const TagSettings& settings);
    std::string SetFault(const UhfFault& fault);
    std::string AnswerNow();
    std::string Send(const Bytes& bytes);
    std::string Parameters(const UhfCommand& command);
    nlohmann::ordered_json Tags();
    nlohmann::ordered_json LogOf(std::optional<unsigned> last) const;

    std::string name_;
    bool plugged_;
    std::unique_ptr<HidSocket> socket_;
    std::unique_ptr<UhfReader> reader_;
};

}  // namespace quarlin::sim
