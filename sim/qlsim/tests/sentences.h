// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::sim::testing {

// The comma-separated parts of a sentence between "$" and "*"; part 0 is talker and type.
inline std::vector<std::string> Fields(std::string_view sentence) {
    const std::string_view body = sentence.substr(1, sentence.rfind('*') - 1);
    std::vector<std::string> fields(1);
    for (const char c : body) {
        if (c == ',') {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

inline std::string Type(std::string_view sentence) {
    return Fields(sentence)[0];
}

// Counted anew here, not with the writer's own function.
inline bool ChecksumIsRight(std::string_view sentence) {
    if (sentence.size() < 4 || sentence.front() != '$' || sentence[sentence.size() - 3] != '*') {
        return false;
    }
    int sum = 0;
    for (const char c : sentence.substr(1, sentence.size() - 4)) {
        sum ^= c;
    }
    char expected[3];
    std::snprintf(expected, sizeof expected, "%02X", static_cast<unsigned>(sum) & 0xFFu);
    return sentence.substr(sentence.size() - 2) == expected;
}

// The lines of a stream that end in CR LF, without that.
inline std::vector<std::string> Lines(std::string_view stream) {
    std::vector<std::string> lines;
    for (std::size_t end = stream.find("\r\n"); end != std::string_view::npos; end = stream.find("\r\n")) {
        lines.emplace_back(stream.substr(0, end));
        stream.remove_prefix(end + 2);
    }
    return lines;
}

}  // namespace quarlin::sim::testing
