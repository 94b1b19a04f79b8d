// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/command.h"
#include "hid/request_faults.h"
#include "magnesafe/swipe_report.h"

namespace quarlin::sim::magnesafe {

struct ReaderCommand {
    enum class Verb {
        kPlug,
        kUnplug,
        kSwipe,
        kSwipeRaw,
        kSwipeMany,
        kSecurityLevel,
        kFault,
        kResult,
        kShortAnswer,
        kNoFaults,
        kStatus,
    };

    Verb verb = Verb::kStatus;
    std::string card;                     // swipe, swipe-many: an id or a file; empty: the first card
    std::optional<Form> form;             // nothing: what the reader does at its security level
    SwipeOptions options;                 // all but the form
    std::vector<std::uint8_t> bytes;      // swipe-raw
    std::optional<std::uint64_t> number;  // swipe-many, security-level, result, short-answer; nothing: off
    RequestFault fault;
};

// Throws CommandError.
ReaderCommand ParseReaderCommand(const Words& words);
std::vector<std::string> ReaderCommandUsage();

}  // namespace quarlin::sim::magnesafe
