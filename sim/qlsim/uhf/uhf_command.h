// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/command.h"
#include "uhf/engine.h"
#include "uhf/faults.h"

namespace quarlin::sim {

// A command to the reader, read and checked.
struct UhfCommand {
    enum class Verb {
        kPlug,
        kUnplug,
        kAddTag,
        kRemoveTag,
        kTags,
        kSignal,
        kPower,
        kParameters,
        kFault,
        kClearFaults,
        kAnswerNow,
        kSend,
        kLog,
        kClearLog,
        kStatus
    };

    Verb verb = Verb::kStatus;
    TagSettings tag;               // add-tag
    Bytes bytes;                   // remove-tag, signal: the EPC; send: the report
    std::int8_t signal = 0;        // signal
    std::uint8_t power = 0;        // power
    std::string parameter;         // parameters: which one; empty: all are asked for
    int value = 0;                 // parameters
    UhfFault fault;                // faults
    std::optional<unsigned> last;  // log: how many transfers
};

// Throws CommandError.
UhfCommand ParseUhfCommand(const Words& words);

// Changes one of the query parameters by the name it has in commands; false when there is none of that name.
bool SetUhfParameter(UhfQuery& query, const std::string& name, int value);

// One line for each command.
std::vector<std::string> UhfCommandUsage();

}  // namespace quarlin::sim
