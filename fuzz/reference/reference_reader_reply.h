// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarlin::reference {

// The rules of the UHF reader's replies once more, written for clarity alone and sharing nothing with the product.

enum class Question {
    kInventory,
    kSelect,
    kRead,
    kWrite,
    kLock,
    kKill,
    kSetPower,
    kGetPower,
    kLinkFrequency,
    kMiller,
    kSession,
    kQBegin,
    kSensitivity
};

// What a caller must find after a reply.
struct Expectation {
    std::int32_t code = 0;
    std::string message;
    // Bytes in the caller's buffer: an identifier, or words.
    std::vector<std::uint8_t> bytes;
    // Signal, power or parameter; nothing when the caller's variable stays as it was.
    std::optional<int> number;
};

// room: bytes of an identifier, or words, that the caller has room for.
Expectation ExpectedOf(Question question, int room, const std::vector<std::uint8_t>& reply);

}  // namespace quarlin::reference
