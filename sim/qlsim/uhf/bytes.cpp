// SPDX-License-Identifier: Apache-2.0
#include "uhf/bytes.h"

#include <charconv>

namespace quarlin::sim {

std::optional<std::uint32_t> NumberOfHex(std::string_view text) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (error != std::errc() || end != text.data() + text.size() || text.size() > 8) {
        return std::nullopt;
    }
    return value;
}

}  // namespace quarlin::sim
