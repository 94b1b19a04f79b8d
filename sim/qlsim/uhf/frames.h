// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "uhf/bytes.h"

namespace quarlin::sim {

// The first byte of a command, and the report ID that carries it. The reply's is one more.
enum class UhfCode : std::uint8_t {
    kSelect = 0x33,
    kWrite = 0x35,
    kRead = 0x37,
    kLock = 0x3B,
    kKill = 0x3D,
    kInventory = 0x43,
    kQuery = 0x59,
    kSetPower = 0xC0,
    kGetPower = 0xC2,
};

// The third byte of a reply.
enum class UhfStatus : std::uint8_t {
    kSuccess = 0x00,
    kNotAllowed = 0x01,
    kAccess = 0x02,  // the access password is wrong
    kKill = 0x03,    // the kill password is wrong, or the tag has none
    kNoReply = 0x04,
    kLock = 0x05,
    kWrite = 0x06,
    kErase = 0x07,
    kRead = 0x08,
    kSelect = 0x09,  // no tag fits
    kChannelTimeout = 0x0A,
    kInvalidParameter = 0x0F,
    kOther = 0x80,
    kMemoryOverrun = 0x83,
    kMemoryLocked = 0x84,
    kInsufficientPower = 0x8B,
    kNonspecific = 0x8F,
    kReadOnly = 0xA0,
};

struct UhfCommandShape {
    UhfCode code;
    std::string_view name;      // in the simulator's own commands
    std::uint8_t replyLength;   // as the reply says itself
    std::uint8_t fixedLength;   // of the command, with code and length byte; 0: it depends on the two below
    std::uint8_t countAt;       // where the command says how much data it has
    std::uint8_t bytesInCount;  // bytes of data for each one counted
    std::uint8_t lengthBefore;  // bytes of the command beside the data
};

inline constexpr std::array<UhfCommandShape, 9> kUhfCommands = {{
    {UhfCode::kSelect, "select", 3, 0, 2, 1, 3},
    {UhfCode::kWrite, "write", 4, 0, 8, 2, 9},
    {UhfCode::kRead, "read", 64, 9, 0, 0, 0},
    {UhfCode::kLock, "lock", 3, 8, 0, 0, 0},
    {UhfCode::kKill, "kill", 3, 6, 0, 0, 0},
    {UhfCode::kInventory, "inventory", 64, 3, 0, 0, 0},
    {UhfCode::kQuery, "query", 15, 14, 0, 0, 0},
    {UhfCode::kSetPower, "set-power", 3, 3, 0, 0, 0},
    {UhfCode::kGetPower, "get-power", 4, 2, 0, 0, 0},
}};

constexpr std::uint8_t Raw(UhfCode code) {
    return static_cast<std::uint8_t>(code);
}
constexpr std::uint8_t ReplyCode(UhfCode code) {
    return static_cast<std::uint8_t>(Raw(code) + 1);
}

// Null when there is none.
const UhfCommandShape* FindUhfCommand(std::uint8_t code);
const UhfCommandShape* FindUhfCommand(std::string_view name);
bool IsUhfReplyCode(std::uint8_t code);

// The part of a report that says something: what the frame's length byte claims and the report holds, and whatever
// comes after it that is not zero.
Bytes UhfFrameOf(std::span<const std::uint8_t> report);

}  // namespace quarlin::sim
