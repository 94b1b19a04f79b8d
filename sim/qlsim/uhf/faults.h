// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "uhf/frames.h"

namespace quarlin::sim {

// Something that goes wrong with a command. Made by one of the functions below and narrowed with For, Times and Always:
//     UhfFault::Status(0x84).For(UhfCode::kWrite).Always()
// Without them it happens to the next command, whichever that is. Several faults may meet in one command: those of the
// answer's bytes are applied in the order in which they were set.
struct UhfFault {
    enum class Kind {
        kStatus,    // value; the command is not carried out
        kByte,      // value at offset of the reply
        kShort,     // value bytes are left of the reply, and it says so
        kSilence,   // carried out and not answered
        kHold,      // answered when UhfReader::AnswerNow is called
        kDelay,     // answered after a time, or when AnswerNow is called
        kRefuse,    // the output report fails
        kVanish,    // the device goes away in the middle of the output report, which fails
        kGoSilent,  // carried out; then the device goes away instead of an answer
    };

    Kind kind = Kind::kSilence;
    std::uint8_t value = 0;
    std::size_t offset = 0;
    std::chrono::milliseconds delay{0};
    std::optional<UhfCode> code;       // only commands of this code
    std::optional<unsigned> times{1};  // nothing: until the faults are cleared

    static UhfFault Status(std::uint8_t status) { return Of(Kind::kStatus, status); }
    static UhfFault Byte(std::size_t offset, std::uint8_t value) { return Of(Kind::kByte, value, offset); }
    static UhfFault ReplyCode(std::uint8_t code) { return Byte(0, code); }
    static UhfFault LengthByte(std::uint8_t length) { return Byte(1, length); }
    static UhfFault WordCount(std::uint8_t words) { return Byte(3, words).For(UhfCode::kRead); }
    static UhfFault IdentifierLength(std::uint8_t bytes) { return Byte(8, bytes).For(UhfCode::kInventory); }
    static UhfFault Short(std::uint8_t bytes) { return Of(Kind::kShort, bytes); }
    static UhfFault Silence() { return Of(Kind::kSilence); }
    static UhfFault Hold() { return Of(Kind::kHold); }
    static UhfFault Delay(std::chrono::milliseconds delay) {
        UhfFault fault = Of(Kind::kDelay);
        fault.delay = delay;
        return fault;
    }
    static UhfFault Refuse() { return Of(Kind::kRefuse); }
    static UhfFault UnplugDuring() { return Of(Kind::kVanish); }
    static UhfFault UnplugBeforeAnswer() { return Of(Kind::kGoSilent); }

    UhfFault For(UhfCode only) const {
        UhfFault fault = *this;
        fault.code = only;
        return fault;
    }
    UhfFault Times(unsigned count) const {
        UhfFault fault = *this;
        fault.times = count;
        return fault;
    }
    UhfFault Always() const {
        UhfFault fault = *this;
        fault.times.reset();
        return fault;
    }

    // In the words of the simulator's commands.
    std::string Text() const;

  private:
    static UhfFault Of(Kind kind, std::uint8_t value = 0, std::size_t offset = 0) {
        UhfFault fault;
        fault.kind = kind;
        fault.value = value;
        fault.offset = offset;
        return fault;
    }
};

// The faults that are set.
class UhfFaults {
  public:
    void Add(const UhfFault& fault) { faults_.push_back(fault); }
    void Clear() { faults_.clear(); }
    // Those that happen to this command; each is used up by one.
    std::vector<UhfFault> Take(std::uint8_t code);
    const std::vector<UhfFault>& All() const { return faults_; }

  private:
    std::vector<UhfFault> faults_;
};

// Applies the faults of the answer's bytes. The reply may be as long as a whole report.
void Spoil(Bytes& reply, const std::vector<UhfFault>& faults);
// Whether there is one of a kind, and the last of them.
const UhfFault* FindFault(const std::vector<UhfFault>& faults, UhfFault::Kind kind);

}  // namespace quarlin::sim
