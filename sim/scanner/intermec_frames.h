// SPDX-License-Identifier: Apache-2.0
// What an Intermec engine does about the frames it gets.
#pragma once

#include <cstddef>
#include <cstdint>

#include "scanner/intermec_state.h"

namespace quarlin::sim {

struct Frame {
    const std::uint8_t* bytes;
    std::uint32_t length;

    std::uint16_t Identifier(std::uint32_t at) const {
        return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
    }
};

// What the engine answers. Bytes that there is no room for are counted.
class FrameAnswer {
  public:
    static constexpr std::size_t kRoom = 4200;

    void Add(std::uint8_t byte) {
        if (length_ < kRoom) {
            bytes_[length_] = byte;
        }
        ++length_;
    }
    void AddIdentifier(std::uint16_t id) {
        Add(static_cast<std::uint8_t>(id >> 8));
        Add(static_cast<std::uint8_t>(id & 0xFF));
    }
    const std::uint8_t* Bytes() const { return &bytes_[0]; }
    std::uint32_t Length() const { return length_; }

  private:
    std::uint8_t bytes_[kRoom];
    std::uint32_t length_ = 0;
};

// One or more parameters, three bytes each; they come back as the answer.
IntermecStatus WriteSetup(IntermecState& state, const Frame& frame, FrameAnswer& answer);
// One or more parameters, two bytes each; they come back with their values.
IntermecStatus ReadSetup(const IntermecState& state, const Frame& frame, FrameAnswer& answer);
// A command, of which the identifier comes back. Those that mean nothing here succeed.
IntermecStatus Control(IntermecState& state, const Frame& frame, FrameAnswer& answer);
// A status, two bytes; what is no status of this engine answers two zeroes.
IntermecStatus ReadStatus(const IntermecState& state, const Frame& frame, FrameAnswer& answer);

}  // namespace quarlin::sim
