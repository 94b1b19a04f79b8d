// SPDX-License-Identifier: Apache-2.0
// What passes between the bus driver and the program that plays a device. One open handle of the bus is one socket.
#pragma once

#include <cstdint>

namespace quarlin::sim::bus {

inline constexpr wchar_t kDeviceName[] = L"\\Device\\QlsimHidBus";
inline constexpr wchar_t kLinkName[] = L"\\??\\QlsimHidBus";
inline constexpr wchar_t kPath[] = L"\\\\.\\QlsimHidBus";

// Buffered, any access.
constexpr std::uint32_t ControlCode(std::uint32_t function) {
    return (0x8000u << 16) | (function << 2);
}

// In: PlugRequest and the report descriptor. Done when programs can open the device.
inline constexpr std::uint32_t kPlug = ControlCode(0x800);
// Done when programs no longer find the device.
inline constexpr std::uint32_t kUnplug = ControlCode(0x801);
// In: the answer to the last request, if there was one, and input reports that the device sends with it. Out: the next
// request, as soon as there is one. Fails with "device not connected" when the device has gone.
inline constexpr std::uint32_t kExchange = ControlCode(0x802);
// In: an input report with its ID. Done when it waits for the reader of every open handle.
inline constexpr std::uint32_t kSendInput = ControlCode(0x803);
// Done when all that programs had asked for before has been looked at. The driver asks itself.
inline constexpr std::uint32_t kCatchUp = ControlCode(0x804);

inline constexpr std::uint32_t kMaxInstance = 64;
inline constexpr std::uint32_t kMaxDescriptor = 4096;
inline constexpr std::uint32_t kMaxCollection = 99;
// With the report ID.
inline constexpr std::uint32_t kMaxReport = 4097;

struct PlugRequest {
    std::uint16_t vendor;
    std::uint16_t product;
    std::uint16_t version;
    std::uint16_t descriptorLength;
    // 0: the device has one collection at the top, which has no number.
    std::uint16_t collection;
    // Ends with a zero unless it fills the field; empty: made up.
    char instance[kMaxInstance];
};

enum class Kind : std::uint32_t {
    kSetFeature,
    kGetFeature,
    kSetOutput
};

struct Request {
    std::uint64_t id;
    Kind kind;
    // Of the report that follows, with its ID. To get a feature only the ID follows.
    std::uint32_t length;
};

enum class Verdict : std::uint32_t {
    kDone,
    kRefuse,
    kVanish
};

struct Answer {
    std::uint64_t id;  // 0: no answer yet
    Verdict verdict;
    // Of the report that follows; only for a feature to get.
    std::uint32_t length;
    // How many input reports follow, each as a 32-bit length and the report with its ID.
    std::uint32_t inputs;
    std::uint32_t reserved;
};

}  // namespace quarlin::sim::bus
