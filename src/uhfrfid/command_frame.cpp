// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/command_frame.h"

#include <algorithm>

namespace quarlin::uhfrfid {

std::array<std::uint8_t, 4> PasswordField(std::span<const std::uint8_t> password) {
    std::array<std::uint8_t, 4> field{};
    std::ranges::reverse_copy(password, field.begin());
    return field;
}

}  // namespace quarlin::uhfrfid
