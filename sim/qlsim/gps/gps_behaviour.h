// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/threaded_device.h"
#include "gps/gps_command.h"
#include "gps/gps_plan.h"
#include "gps/replay.h"

namespace quarlin::sim {

// The receiver at its cable: epochs, faults, replays and commands become bytes for the port.
class GpsBehaviour final : public Behaviour {
  public:
    GpsBehaviour(const GpsSettings& settings, const Surroundings& surroundings);

    void Begin() override;
    void End() override;
    double NextStep() const override;
    void Step(double now) override;
    bool HasOutput() const override { return !outbox_.empty(); }
    void Push() override;
    std::string Command(const Words& words, double now) override;
    nlohmann::ordered_json Describe(double now) override;

  private:
    void StepEpoch(double now);
    void StepReplay(double now);
    void EndReplay(double now);
    std::string StartReplay(const GpsCommand& command, double now);
    std::string Plug(double now);
    std::string Unplug();
    std::string Send(const std::string& bytes);
    void NeedCable() const;
    void LoseCable();

    GpsSettings settings_;
    std::string name_;
    std::filesystem::path scenarioFolder_;
    Log* log_;
    bool waits_;
    std::unique_ptr<BytePort> port_;
    Receiver receiver_;
    SentenceWriter writer_;
    LineFaults faults_;
    std::optional<Replay> replay_;
    std::string outbox_;
    Epoch last_;
    std::int64_t epoch_ = 0;  // number of the next one
    bool silent_ = false;
    bool fixDenied_ = false;
    double lastTime_ = 0;
    std::uint64_t sentences_ = 0;
    std::uint64_t lostSentences_ = 0;
    std::uint64_t bytes_ = 0;
};

}  // namespace quarlin::sim
