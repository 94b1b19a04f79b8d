// SPDX-License-Identifier: Apache-2.0
#include "msr/feature_command.h"

#include <cstddef>

namespace quarlin::msr {

namespace {

constexpr std::size_t kDataAt = 3;  // after report ID, result code and length

}  // namespace

std::wstring PropertyText(std::span<const std::uint8_t> reply) {
    std::wstring text;
    if (reply.size() > kDataAt) {
        const auto data = reply.subspan(kDataAt);
        // Bytes are characters of their own number, so that none of them becomes negative on the way.
        text.assign(data.begin(), data.end());
    }
    return text;
}

std::optional<std::uint8_t> SecurityLevel(std::span<const std::uint8_t> reply) {
    constexpr std::size_t kResultCodeAt = 1;
    if (reply.size() > kDataAt) {
        return reply[kDataAt];
    }
    if (reply.size() > kResultCodeAt && reply[kResultCodeAt] == 0) {
        // Good, as far as it goes: what was not sent is zero.
        return std::uint8_t{0};
    }
    return std::nullopt;
}

}  // namespace quarlin::msr
