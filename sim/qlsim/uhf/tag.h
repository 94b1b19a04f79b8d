// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "uhf/bytes.h"
#include "uhf/frames.h"

namespace quarlin::sim {

enum class TagBank : std::uint8_t {
    kReserved,  // kill password, access password
    kEpc,       // checksum, protocol control word, EPC
    kTid,
    kUser,
};

// What can be locked, by the numbers of a lock command's first parameter.
enum class LockArea : std::uint8_t {
    kKillPassword,
    kAccessPassword,
    kEpc,
    kTid,
    kUser,
};

// By the numbers of its second parameter: bit 1 asks for the access password, bit 0 makes it stay so for ever. A locked
// bank can be read and not written, a locked password neither.
enum class LockState : std::uint8_t {
    kUnlocked,
    kAlwaysUnlocked,
    kLocked,  // but not for who gives the access password
    kAlwaysLocked,
};

inline constexpr std::array<std::pair<std::string_view, LockArea>, 5> kLockAreas = {
    {{"kill_password", LockArea::kKillPassword},
     {"access_password", LockArea::kAccessPassword},
     {"epc", LockArea::kEpc},
     {"tid", LockArea::kTid},
     {"user", LockArea::kUser}}};
inline constexpr std::array<std::pair<std::string_view, LockState>, 4> kLockStates = {
    {{"unlocked", LockState::kUnlocked},
     {"always_unlocked", LockState::kAlwaysUnlocked},
     {"locked", LockState::kLocked},
     {"always_locked", LockState::kAlwaysLocked}}};

struct TagSettings {
    Bytes epc;  // whole words, at most 31
    Bytes tid;
    Bytes user;
    std::optional<std::uint16_t> pc;   // protocol control word; by default nothing but the EPC's length
    std::uint32_t accessPassword = 0;  // 0: none is asked for
    std::uint32_t killPassword = 0;    // 0: it cannot be killed
    std::array<LockState, 5> locks = {LockState::kUnlocked, LockState::kUnlocked, LockState::kUnlocked,
                                      LockState::kAlwaysLocked, LockState::kUnlocked};
    std::int8_t signal = -60;     // strength at the reader, dBm
    std::uint8_t power = 0;       // the least transmit power at which it answers
    std::uint8_t writePower = 0;  // the least at which it can be written, locked and killed

    LockState& Lock(LockArea area) { return locks.at(static_cast<std::size_t>(area)); }
};

// What is wrong with a tag's settings, a sentence; nothing when it can be made.
std::optional<std::string> ProblemOf(const TagSettings& settings);

// The tag itself: memory, locks and life, as EPC Gen2 has them.
class Tag {
  public:
    // What a command's password has opened.
    enum class Access {
        kOpen,
        kSecured,
    };

    // Throws std::invalid_argument when there is a problem with the settings.
    explicit Tag(const TagSettings& settings);

    // The EPC, as long as the protocol control word says.
    Bytes Epc() const;
    // Protocol control word and EPC: how it answers an inventory.
    Bytes Identifier() const;
    const Bytes& Memory(TagBank bank) const { return memory_.at(static_cast<std::size_t>(bank)); }
    LockState Lock(LockArea area) const { return locks_.at(static_cast<std::size_t>(area)); }
    bool IsKilled() const { return killed_; }

    // Nothing when the password is wrong. Password 0 means that none is given.
    std::optional<Access> Enter(std::uint32_t password) const;
    // words 0: all that are left, at most `most`.
    UhfStatus Read(Access access, TagBank bank, std::size_t pointer, std::size_t words, std::size_t most,
                   Bytes& data) const;
    // All of the data or nothing.
    UhfStatus Write(Access access, TagBank bank, std::size_t pointer, std::span<const std::uint8_t> data);
    UhfStatus ChangeLock(Access access, LockArea area, LockState state);
    UhfStatus Kill(std::uint32_t password);

  private:
    std::uint32_t Password(std::size_t at) const;
    LockState LockOfWord(TagBank bank, std::size_t word) const;
    void RenewChecksum();

    std::array<Bytes, 4> memory_;
    std::array<LockState, 5> locks_;
    bool killed_ = false;
};

// Of a tag's protocol control word and EPC: CRC-16 as in ISO/IEC 13239, the remainder complemented.
std::uint16_t TagChecksum(std::span<const std::uint8_t> bytes);

}  // namespace quarlin::sim
