// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "core/command.h"

namespace quarlin::sim {

// A device's commands are a table: each row has a `name`, a `verb`, the `least` and `most` arguments, and a function
// `parse` that reads them. `usageOf` gives a row's usage. Throws a CommandError that says what is wrong.
template <typename Command, typename Rows, typename UsageOf>
Command ParseByTable(const Rows& rows, const Words& words, const UsageOf& usageOf) {
    if (words.empty()) {
        throw CommandError("a command is missing; \"help\" lists what there is");
    }
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& r) { return r.name == words.front(); });
    if (row == rows.end()) {
        std::vector<std::string> names;
        for (const auto& known : rows) {
            names.emplace_back(known.name);
        }
        throw CommandError("there is no command \"" + words.front() + "\"" + Suggestion(words.front(), names));
    }
    const std::size_t arguments = words.size() - 1;
    if (arguments < row->least || arguments > row->most) {
        throw CommandError("the command has to be: " + std::string(usageOf(*row)));
    }
    Command command;
    command.verb = row->verb;
    row->parse(words, command);
    return command;
}

// One line for each command.
template <typename Rows, typename UsageOf>
std::vector<std::string> UsageByTable(const Rows& rows, const UsageOf& usageOf) {
    std::vector<std::string> usage;
    for (const auto& row : rows) {
        usage.emplace_back(usageOf(row));
    }
    return usage;
}

}  // namespace quarlin::sim
