// SPDX-License-Identifier: Apache-2.0
#include "core/command.h"

#include <algorithm>
#include <charconv>
#include <numeric>

namespace quarlin::sim {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// How many letters have to be changed, added or taken away.
std::size_t EditDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

}  // namespace

Words SplitWords(std::string_view line) {
    Words words;
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && IsBlank(line[at])) {
            ++at;
        }
        if (at == line.size()) {
            return words;
        }
        std::string word;
        bool quoted = false;
        for (; at < line.size() && (quoted || !IsBlank(line[at])); ++at) {
            if (line[at] != '"') {
                word += line[at];
            } else if (quoted && at + 1 < line.size() && line[at + 1] == '"') {
                word += line[++at];
            } else {
                quoted = !quoted;
            }
        }
        if (quoted) {
            throw CommandError("a quote is not closed");
        }
        words.push_back(std::move(word));
    }
}

std::string JoinWords(const Words& words) {
    std::string line;
    for (const std::string& word : words) {
        line += line.empty() ? "" : " ";
        if (!word.empty() && std::none_of(word.begin(), word.end(), [](char c) { return IsBlank(c) || c == '"'; })) {
            line += word;
            continue;
        }
        line += '"';
        for (const char c : word) {
            line += c == '"' ? "\"\"" : std::string(1, c);
        }
        line += '"';
    }
    return line;
}

double ProbabilityArgument(const std::string& word) {
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || !(value >= 0 && value <= 1)) {
        throw CommandError("\"" + word + "\" is no probability from 0 to 1");
    }
    return value;
}

bool SwitchArgument(const std::string& word) {
    if (word != "on" && word != "off") {
        throw CommandError("\"" + word + "\" is neither on nor off");
    }
    return word == "on";
}

std::string Reply::Line() const {
    return (ok ? "ok" : "error") + (text.empty() ? "" : " " + text);
}

std::string Suggestion(std::string_view given, const std::vector<std::string>& known) {
    const std::string* nearest = nullptr;
    std::size_t least = 3;  // farther away it would be a guess
    for (const std::string& name : known) {
        const std::size_t distance = EditDistance(given, name);
        if (distance < least && distance < name.size()) {
            least = distance;
            nearest = &name;
        }
    }
    return nearest == nullptr ? std::string() : "; did you mean \"" + *nearest + "\"?";
}

}  // namespace quarlin::sim
