// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/command.h"
#include "machine_libraries/library_command.h"
#include "scanner/engine_record.h"

namespace quarlin::sim::scanner {

enum class Family {
    kIntermec,
    kHoneywell,
};

FunctionNames FunctionsOf(Family family);

// A code that somebody holds in front of the engine.
struct ShownCode {
    std::string text;
    std::size_t symbology = 0;
};

struct EngineCommand {
    enum class Verb {
        kPlug,
        kUnplug,
        kScan,
        kScanRaw,
        kPresent,
        kSymbology,
        kListSymbologies,
        kFirmware,
        kHardwareTrigger,
        kParameter,
        kDevices,
        kRefuse,
        kAnswer,
        kAccept,
        kLog,
        kClearLog,
        kReset,
        kStatus,
    };

    Verb verb = Verb::kStatus;
    ShownCode code;                        // scan, present
    std::uint64_t times = 0;               // present
    double every = 0;                      // present: seconds
    std::vector<std::uint8_t> bytes;       // scan-raw, answer
    std::optional<std::uint32_t> claimed;  // likewise: the length that the library tells, when it is another
    std::optional<std::uint32_t> event;    // scan-raw
    std::uint32_t flags = 0;               // scan-raw
    std::size_t symbology = 0;             // symbology
    bool on = false;                       // symbology, hardware-trigger
    std::vector<std::string> texts;        // firmware, devices
    std::uint16_t parameter = 0;
    std::optional<std::uint8_t> value;    // parameter
    std::optional<std::size_t> function;  // refuse, answer, accept
    Refusal refusal{};
    std::uint32_t count = 1;  // answer
    std::uint64_t calls = 0;  // log
};

// Both families take the same commands but for a few. Throws CommandError.
EngineCommand ParseEngineCommand(Family family, const Words& words);
std::vector<std::string> EngineCommandUsage(Family family);

}  // namespace quarlin::sim::scanner
