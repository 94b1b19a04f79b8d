// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "uhf/frames.h"
#include "uhf/tag.h"

namespace quarlin::sim {

// As the reader carries them.
struct UhfQuery {
    std::uint8_t linkFrequency = 9;  // 0: 40 kHz, 6: 160, 8: 213, 9: 256, 12: 320, 15: 640
    std::uint8_t miller = 2;
    std::uint8_t session = 0;
    std::uint8_t qBegin = 4;
    std::int8_t sensitivity = -70;  // dBm

    bool operator==(const UhfQuery&) const = default;
};

struct UhfRadio {
    std::uint8_t power = 27;
    std::uint8_t mostPower = 255;
    UhfQuery query;
};

// The reader's radio and command set, without USB: one command in, its reply out. Tags keep the order in which they
// came into the field.
class UhfEngine {
  public:
    struct Present {
        std::uint64_t number = 0;  // its own, never used again
        Tag tag;
        std::int8_t signal = 0;
        std::uint8_t power = 0;
        std::uint8_t writePower = 0;
    };

    explicit UhfEngine(const UhfRadio& radio) : start_(radio), radio_(radio) {}

    // The reply as long as it says; nothing for a code that is no command.
    std::optional<Bytes> Execute(std::span<const std::uint8_t> report);
    // As after a loss of power: radio settings as at the start, no inventory round, nothing selected.
    void Restart();

    void Add(const TagSettings& settings);
    // By EPC, the first of equal ones; false when there is none.
    bool Remove(const Bytes& epc);
    bool SetSignal(const Bytes& epc, std::int8_t signal);
    const std::vector<Present>& Field() const { return field_; }
    // Null when nothing is selected, or what was selected is gone.
    const Present* Selected() const;

    std::uint8_t Power() const { return radio_.power; }
    void SetPower(std::uint8_t power) { radio_.power = power; }
    const UhfQuery& Query() const { return radio_.query; }
    // Whatever the values are: a reader may say what its own commands would not take.
    void SetQuery(const UhfQuery& query) { radio_.query = query; }

  private:
    using Frame = std::span<const std::uint8_t>;

    struct Opened {
        UhfStatus status = UhfStatus::kSuccess;
        Tag* tag = nullptr;
        Tag::Access access = Tag::Access::kOpen;
    };

    UhfStatus Run(UhfCode code, Frame command, Bytes& reply);
    UhfStatus Select(Frame command);
    UhfStatus Read(Frame command, Bytes& reply);
    UhfStatus Write(Frame command, Bytes& reply);
    UhfStatus Lock(Frame command);
    UhfStatus Kill(Frame command);
    UhfStatus Inventory(Frame command, Bytes& reply);
    UhfStatus ChangeQuery(Frame command, Bytes& reply);

    Present* Find(const Bytes& epc);
    bool IsHeard(const Present& present) const;
    // What a command for one tag reaches: the selected tag, or without a selection the strongest. Null: nobody answers.
    Present* Target();
    // For a change of a tag: the one that is meant, when the power is enough and the password is right.
    Opened Open(std::uint32_t password);

    UhfRadio start_;
    UhfRadio radio_;
    std::vector<Present> field_;
    std::uint64_t nextNumber_ = 1;
    std::deque<std::uint64_t> round_;  // numbers of tags not yet reported
    std::optional<std::uint64_t> selected_;
};

}  // namespace quarlin::sim
