// SPDX-License-Identifier: Apache-2.0
#include "uhf/frames.h"

#include <algorithm>

namespace quarlin::sim {

const UhfCommandShape* FindUhfCommand(std::uint8_t code) {
    const auto found = std::find_if(kUhfCommands.begin(), kUhfCommands.end(),
                                    [code](const UhfCommandShape& shape) { return Raw(shape.code) == code; });
    return found == kUhfCommands.end() ? nullptr : &*found;
}

const UhfCommandShape* FindUhfCommand(std::string_view name) {
    const auto found = std::find_if(kUhfCommands.begin(), kUhfCommands.end(),
                                    [name](const UhfCommandShape& shape) { return shape.name == name; });
    return found == kUhfCommands.end() ? nullptr : &*found;
}

bool IsUhfReplyCode(std::uint8_t code) {
    return code != 0 && FindUhfCommand(static_cast<std::uint8_t>(code - 1)) != nullptr;
}

Bytes UhfFrameOf(std::span<const std::uint8_t> report) {
    const auto last = std::find_if(report.rbegin(), report.rend(), [](std::uint8_t byte) { return byte != 0; });
    const auto used = static_cast<std::size_t>(report.rend() - last);
    const std::size_t claimed = report.size() < 2 ? report.size() : std::min<std::size_t>(report[1], report.size());
    return {report.begin(), report.begin() + static_cast<std::ptrdiff_t>(std::max(used, claimed))};
}

}  // namespace quarlin::sim
