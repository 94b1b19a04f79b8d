// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

namespace quarlin::qlctl {

// Words of 2 bytes up to the last one that holds anything but the fill.
inline size_t WordsWithout(std::uint8_t fill, std::span<const std::uint8_t> bytes) {
    const auto last = std::find_if(bytes.rbegin(), bytes.rend(), [fill](std::uint8_t byte) { return byte != fill; });
    return (static_cast<size_t>(bytes.rend() - last) + 1) / 2;
}

}  // namespace quarlin::qlctl
