// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace quarlin::qlctl {

// The objects of JSON lines; a line that is none gives a discarded value.
inline std::vector<nlohmann::json> JsonLines(const std::string& text) {
    std::vector<nlohmann::json> objects;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        objects.push_back(nlohmann::json::parse(line, nullptr, false));
    }
    return objects;
}

inline size_t CountOf(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

// Standard error has the line ends of the C runtime.
inline std::string WithoutReturns(std::string text) {
    std::erase(text, '\r');
    return text;
}

}  // namespace quarlin::qlctl
