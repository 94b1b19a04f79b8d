// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/engine_system.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

namespace quarlin::bcr {

// What an engine's library answers every call with; 0 alone is a success. Sixteen bits: what the upper half of the
// register holds does not matter.
using EngineStatus = std::uint16_t;
inline constexpr EngineStatus kEngineOk = 0;

// What all engines share: the buffers for requests and answers, and the status of the last call. Used by whoever has
// an EngineHold.
struct EngineShare {
    static constexpr std::uint32_t kRoom = 4096;

    explicit EngineShare(EngineSystem& engineSystem) : system(engineSystem) {}

    void SetRequest(std::span<const std::uint8_t> bytes) {
        requestLength = static_cast<std::uint32_t>(std::min<std::size_t>(bytes.size(), kRoom));
        std::memcpy(request.data(), bytes.data(), requestLength);
    }
    // The answer, as long as the engine says and no longer than the buffer. What lies behind it is of older answers.
    std::span<const std::uint8_t> Answer() const { return {answer.data(), std::min(answerLength, kRoom)}; }

    EngineSystem& system;
    std::array<std::uint8_t, kRoom> request{};
    std::uint32_t requestLength = 0;
    std::array<std::uint8_t, kRoom> answer{};
    std::uint32_t answerLength = 0;
    EngineStatus lastStatus = kEngineOk;
};

}  // namespace quarlin::bcr
