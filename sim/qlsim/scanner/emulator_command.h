// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/command.h"
#include "emulator/emulator_state.h"

namespace quarlin::sim::scanner {

struct EmulatorCommand {
    enum class Verb {
        kStart,
        kEnd,
        kKill,
        kSet,    // a setting, by `set`
        kOrder,  // `order`
        kLog,
        kClearLog,
        kReset,
        kStatus,
    };

    Verb verb = Verb::kStatus;
    bool noWindow = false;    // start
    bool handedOver = false;  // start
    std::function<void(EmulatorSettings&)> set;
    std::string said;  // of a setting
    EmulatorOrder order = EmulatorOrder::kNotify;
};

// Throws CommandError.
EmulatorCommand ParseEmulatorCommand(const Words& words);
std::vector<std::string> EmulatorCommandUsage();

// "none", "posted" or "sent"; nothing for another word.
std::optional<EmulatorNotice> NoticeNamed(const std::string& word);
const char* NameOf(EmulatorNotice notice);

}  // namespace quarlin::sim::scanner
