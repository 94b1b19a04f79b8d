// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quarlin::msr {

// The questions that a reader answers through its feature report: a request, then a reply of the report's size. Both
// begin with the report ID 0.

// Command 0x00, get property, with one byte of data: the property.
inline constexpr std::array<std::uint8_t, 4> kGetSoftwareId = {0x00, 0x00, 0x01, 0x00};
inline constexpr std::array<std::uint8_t, 4> kGetSerialNumber = {0x00, 0x00, 0x01, 0x03};
// Command 0x15, without data.
inline constexpr std::array<std::uint8_t, 3> kGetSecurityLevel = {0x00, 0x15, 0x00};

// A property's text: every byte from the fourth on as one character, zero bytes at the end included. The reply's result
// code and length are not looked at: programs rely on getting what readers of all firmwares send.
std::wstring PropertyText(std::span<const std::uint8_t> reply);

// The security level; none for a reply that holds none. A reply of four bytes or more counts, whatever its result code
// says: callers rely on readers that report an error beside their level.
std::optional<std::uint8_t> SecurityLevel(std::span<const std::uint8_t> reply);

// Readers of this security level and above encrypt track data.
inline constexpr std::uint8_t kEncryptingSecurityLevel = 3;

}  // namespace quarlin::msr
