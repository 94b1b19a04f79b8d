// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>

namespace quarlin::bcr {

// What an Intermec engine is asked: one or more parameters, each two bytes of identifier and, when it is set, one byte
// of value.
class SetupFrame {
  public:
    constexpr SetupFrame(std::initializer_list<std::uint8_t> bytes) : size_(bytes.size()) {
        std::copy(bytes.begin(), bytes.end(), bytes_.begin());
    }
    constexpr std::span<const std::uint8_t> Bytes() const { return {bytes_.data(), size_}; }

  private:
    std::array<std::uint8_t, 9> bytes_{};
    std::size_t size_;
};

constexpr std::uint8_t SwitchByte(bool on) {
    return on ? 1 : 0;
}

constexpr SetupFrame DecodingFrame(bool on) {
    return {0x20, 0x40, SwitchByte(on)};
}
constexpr SetupFrame TriggerModeFrame(std::uint32_t mode) {
    return {0x70, 0x40, SwitchByte(mode != 0)};
}
constexpr SetupFrame HardwareTriggerFrame(bool on) {
    return {0x70, 0x41, SwitchByte(on)};
}
inline constexpr SetupFrame kHardwareTriggerQuery{0x70, 0x41};
inline constexpr SetupFrame kFirmwareQuery{0x30, 0xC0};
inline constexpr SetupFrame kDataModeQuery{0x73, 0x4E};
constexpr SetupFrame DataModeFrame(std::uint8_t value) {
    return {0x73, 0x4E, value};
}
constexpr SetupFrame LinkFrame(bool on) {
    return {0x73, 0x40, SwitchByte(on)};
}
inline constexpr SetupFrame kPrepareLink{0x50, 0x40, 0x00};
inline constexpr SetupFrame kResetLink{0x30, 0x02};

// The frame that enables or disables a symbology; nothing for a value that is not known.
std::optional<SetupFrame> SymbologyFrame(std::int32_t symbology, bool enable);

// On a Honeywell engine a mode other than 0 sends the command that ends in 0.
constexpr const char* TriggerModeCommand(std::uint32_t mode) {
    return mode != 0 ? "TRGMOD0" : "TRGMOD3";
}

}  // namespace quarlin::bcr
