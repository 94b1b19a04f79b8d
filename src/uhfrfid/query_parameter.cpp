// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/query_parameter.h"

#include "uhfrfid/exchange.h"

#include <algorithm>
#include <array>

namespace quarlin::uhfrfid {
namespace {

struct LinkFrequency {
    std::int64_t kHz;
    std::uint8_t code;
};

constexpr std::array kLinkFrequencies{
    LinkFrequency{40, 0},  LinkFrequency{160, 6},  LinkFrequency{213, 8},
    LinkFrequency{256, 9}, LinkFrequency{320, 12}, LinkFrequency{640, 15},
};
// What a code without a frequency is taken for.
constexpr std::int64_t kUnknownFrequency = 160;

std::optional<std::uint8_t> EncodeLinkFrequency(std::int64_t kHz) {
    const auto row = std::ranges::find(kLinkFrequencies, kHz, &LinkFrequency::kHz);
    return row == kLinkFrequencies.end() ? std::nullopt : std::optional(row->code);
}

std::int64_t DecodeLinkFrequency(std::uint8_t code) {
    const auto row = std::ranges::find(kLinkFrequencies, code, &LinkFrequency::code);
    return row == kLinkFrequencies.end() ? kUnknownFrequency : row->kHz;
}

template <int minimum, int maximum>
std::optional<std::uint8_t> EncodeRange(std::int64_t value) {
    return value < minimum || value > maximum ? std::nullopt : std::optional(static_cast<std::uint8_t>(value));
}

std::int64_t DecodeUnsigned(std::uint8_t byte) {
    return byte;
}

std::int64_t DecodeSigned(std::uint8_t byte) {
    return SignedByte(byte);
}

}  // namespace

constinit const QueryParameter kLinkFrequency{2, 4, EncodeLinkFrequency, DecodeLinkFrequency};
constinit const QueryParameter kMiller{4, 6, EncodeRange<0, 3>, DecodeUnsigned};
constinit const QueryParameter kSession{6, 8, EncodeRange<0, 3>, DecodeUnsigned};
constinit const QueryParameter kQBegin{10, 12, EncodeRange<0, 15>, DecodeUnsigned};
constinit const QueryParameter kSensitivity{12, 14, EncodeRange<-86, -50>, DecodeSigned};

}  // namespace quarlin::uhfrfid
