// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace quarlin::uhfrfid {

// A command of the reader, and the reply that belongs to it.
struct Command {
    std::uint8_t code;  // also the ID of the HID report that carries it
    std::uint8_t replyCode;
    std::uint8_t replyLength;
};

inline constexpr Command kSelect{0x33, 0x34, 3};
inline constexpr Command kWrite{0x35, 0x36, 4};
inline constexpr Command kRead{0x37, 0x38, 64};
inline constexpr Command kLock{0x3B, 0x3C, 3};
inline constexpr Command kKill{0x3D, 0x3E, 3};
inline constexpr Command kInventory{0x43, 0x44, 64};
inline constexpr Command kQuery{0x59, 0x5A, 15};
inline constexpr Command kSetPower{0xC0, 0xC1, 3};
inline constexpr Command kGetPower{0xC2, 0xC3, 4};

// What a command looks like on its way to the reader: its code, the length of the whole frame, its parameters.
class CommandFrame {
  public:
    // The longest command writes 27 words.
    static constexpr std::size_t kMaxSize = 63;

    explicit CommandFrame(const Command& command) : command_(command) {
        bytes_[0] = command.code;
        bytes_[1] = 2;
    }

    void Add(std::uint8_t byte) { bytes_[bytes_[1]++] = byte; }
    void Add(std::span<const std::uint8_t> bytes) {
        for (const std::uint8_t byte : bytes) {
            Add(byte);
        }
    }

    const Command& Kind() const { return command_; }
    std::span<const std::uint8_t> Bytes() const { return {bytes_.data(), bytes_[1]}; }

  private:
    Command command_;
    std::array<std::uint8_t, kMaxSize> bytes_{};
};

// A password as the reader takes it: 4 bytes, the given ones in reverse order, then zeros. A 32-bit number that lies in
// memory least significant byte first so arrives most significant byte first, as tags take it. At most 4 bytes.
std::array<std::uint8_t, 4> PasswordField(std::span<const std::uint8_t> password);

}  // namespace quarlin::uhfrfid
