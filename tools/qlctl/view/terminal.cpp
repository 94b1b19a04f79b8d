// SPDX-License-Identifier: Apache-2.0
#include "view/terminal.h"

namespace quarlin::qlctl::terminal {

std::string Begin() {
    return "\x1b[?25l\x1b[2J\x1b[H";
}

std::string Frame(const std::vector<std::string>& lines) {
    constexpr const char* kHome = "\x1b[H";
    constexpr const char* kClearToLineEnd = "\x1b[K";
    constexpr const char* kClearBelow = "\x1b[J";
    std::string frame = kHome;
    for (const std::string& line : lines) {
        frame.append(line).append(kClearToLineEnd).append("\r\n");
    }
    return frame.append(kClearBelow);
}

std::string End() {
    return std::string(kPlain) + "\x1b[?25h";
}

}  // namespace quarlin::qlctl::terminal
