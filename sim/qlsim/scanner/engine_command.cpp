// SPDX-License-Identifier: Apache-2.0
#include "scanner/engine_command.h"

#include <array>
#include <charconv>
#include <limits>

#include "core/command_table.h"
#include "core/escape.h"
#include "hid/hex.h"
#include "scanner/honeywell_state.h"
#include "scanner/intermec_state.h"
#include "scanner/symbology.h"

namespace quarlin::sim::scanner {
namespace {

using Verb = EngineCommand::Verb;

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
constexpr std::uint64_t kMost32 = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t kMostTimes = 1'000'000'000;
constexpr std::uint64_t kLongestPause = 3'600'000;  // milliseconds

// Decimal, or hexadecimal behind 0x.
std::uint64_t NumberArgument(const std::string& word, std::uint64_t most, const std::string& what) {
    const bool hexadecimal = word.rfind("0x", 0) == 0;
    const char* const first = word.data() + (hexadecimal ? 2 : 0);
    const char* const last = word.data() + word.size();
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(first, last, number, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != last || number > most) {
        throw CommandError("\"" + word + "\" is no " + what + " from 0 to " + std::to_string(most));
    }
    return number;
}

std::uint32_t CountArgument(const std::string& word) {
    return word == "always" ? Refusal::kAlways
                            : static_cast<std::uint32_t>(NumberArgument(word, kMost32 - 1, "number of calls"));
}

std::vector<std::uint8_t> HexArgument(const std::string& word, std::size_t most) {
    auto bytes = word == "-" ? std::vector<std::uint8_t>() : ParseHex(word);
    if (!bytes || bytes->size() > most) {
        throw CommandError("\"" + word + "\" is not hexadecimal of at most " + std::to_string(most) +
                           " bytes, nor - for none");
    }
    return *bytes;
}

// Both bytes of an identifier in one number.
std::uint16_t IdentifierArgument(const std::string& word) {
    const auto bytes = ParseHex(word);
    if (!bytes || bytes->size() != 2) {
        throw CommandError("\"" + word + "\" is no pair of bytes such as 7041");
    }
    return static_cast<std::uint16_t>((*bytes)[0] << 8 | (*bytes)[1]);
}

ShownCode CodeArgument(const Words& words, std::size_t at) {
    ShownCode code;
    code.text = Unescape(words[at]);
    code.symbology = SymbologyArgument(at + 1 < words.size() ? words[at + 1] : "Code128");
    return code;
}

void ParseNothing(Family, const Words&, EngineCommand&) {
}

void ParseScan(Family, const Words& words, EngineCommand& command) {
    command.code = CodeArgument(words, 1);
}

void ParsePresent(Family, const Words& words, EngineCommand& command) {
    command.times = NumberArgument(words[1], kMostTimes, "number of times");
    if (words.size() == 2) {
        if (command.times != 0) {
            throw CommandError("the command has to be: present TIMES MILLISECONDS TEXT [SYMBOLOGY], or present 0");
        }
        return;
    }
    if (words.size() == 3) {
        throw CommandError("the command has to be: present TIMES MILLISECONDS TEXT [SYMBOLOGY], or present 0");
    }
    command.every = static_cast<double>(NumberArgument(words[2], kLongestPause, "number of milliseconds")) / 1000;
    command.code = CodeArgument(words, 3);
}

void ParseScanRaw(Family, const Words& words, EngineCommand& command) {
    command.bytes = HexArgument(words[1], ScanSlot::kRoom);
    for (std::size_t i = 2; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word.rfind("event=", 0) == 0) {
            command.event = static_cast<std::uint32_t>(NumberArgument(word.substr(6), kMost32, "event"));
        } else if (word.rfind("claimed=", 0) == 0) {
            command.claimed = static_cast<std::uint32_t>(NumberArgument(word.substr(8), kMost32, "length"));
        } else if (word == "no-data") {
            command.flags |= kScanNoData;
        } else if (word == "silent") {
            command.flags |= kScanSilent;
        } else if (word == "while-disconnecting") {
            command.flags |= kScanWhileDisconnecting;
        } else {
            throw CommandError("\"" + word + "\" is none of event=N, claimed=N, no-data, silent, while-disconnecting");
        }
    }
}

void ParseSymbology(Family, const Words& words, EngineCommand& command) {
    command.symbology = SymbologyArgument(words[1]);
    command.on = SwitchArgument(words[2]);
}

void ParseSwitch(Family, const Words& words, EngineCommand& command) {
    command.on = SwitchArgument(words[1]);
}

void ParseFirmware(Family, const Words& words, EngineCommand& command) {
    command.texts = {Unescape(words[1])};
    if (command.texts.front().size() > IntermecState::kVersionRoom) {
        throw CommandError("the text is too long");
    }
}

void ParseParameter(Family, const Words& words, EngineCommand& command) {
    command.parameter = IdentifierArgument(words[1]);
    if (words.size() > 2) {
        command.value = static_cast<std::uint8_t>(NumberArgument(words[2], 255, "value"));
    }
}

void ParseDevices(Family, const Words& words, EngineCommand& command) {
    command.texts.assign(words.begin() + 1, words.end());
    for (const std::string& name : command.texts) {
        if (name.size() >= HoneywellDevice::kRoom) {
            throw CommandError("a device's name has at most " + std::to_string(HoneywellDevice::kRoom - 1) + " bytes");
        }
    }
}

void ParseRefuse(Family family, const Words& words, EngineCommand& command) {
    command.function = FunctionArgument(words[1], FunctionsOf(family));
    command.refusal.status = static_cast<std::uint16_t>(NumberArgument(words[2], 0xFFFF, "status"));
    command.refusal.count = words.size() > 3 ? CountArgument(words[3]) : Refusal::kAlways;
    if (words.size() > 4) {
        command.refusal.skip = static_cast<std::uint32_t>(NumberArgument(words[4], kMost32, "number of calls"));
    }
    if (words.size() > 5) {
        command.refusal.beginning = IdentifierArgument(words[5]);
    }
}

void ParseAnswer(Family family, const Words& words, EngineCommand& command) {
    command.function = FunctionArgument(words[1], FunctionsOf(family));
    command.bytes = HexArgument(words[2], AnswerInstead::kRoom);
    command.count = words.size() > 3 ? CountArgument(words[3]) : 1;
    if (words.size() > 4) {
        command.claimed = static_cast<std::uint32_t>(NumberArgument(words[4], kMost32, "length"));
    }
}

void ParseAccept(Family family, const Words& words, EngineCommand& command) {
    if (words.size() > 1) {
        command.function = FunctionArgument(words[1], FunctionsOf(family));
    }
}

void ParseLog(Family, const Words& words, EngineCommand& command) {
    command.calls =
        words.size() > 1 ? NumberArgument(words[1], EngineCallLog::kRoom, "number of calls") : EngineCallLog::kRoom;
}

struct Row {
    const char* name;
    Verb verb;
    std::size_t least;  // arguments
    std::size_t most;
    const char* usage;
    void (*read)(Family, const Words&, EngineCommand&);
    std::optional<Family> only;
    Family family = Family::kIntermec;  // of whoever asks

    void parse(const Words& words, EngineCommand& command) const { read(family, words, command); }
};

constexpr std::array<Row, 18> kRows = {{
    {"plug", Verb::kPlug, 0, 0, "plug", ParseNothing, {}},
    {"unplug", Verb::kUnplug, 0, 0, "unplug", ParseNothing, {}},
    {"scan", Verb::kScan, 1, 2, "scan TEXT [SYMBOLOGY]", ParseScan, {}},
    {"scan-raw",
     Verb::kScanRaw,
     1,
     kAny,
     "scan-raw HEX|- [event=N] [claimed=N] [no-data] [silent] [while-disconnecting]",
     ParseScanRaw,
     {}},
    {"present", Verb::kPresent, 1, 4, "present TIMES MILLISECONDS TEXT [SYMBOLOGY]", ParsePresent, {}},
    {"symbology", Verb::kSymbology, 2, 2, "symbology NAME on|off", ParseSymbology, {}},
    {"symbologies", Verb::kListSymbologies, 0, 0, "symbologies", ParseNothing, {}},
    {"firmware", Verb::kFirmware, 1, 1, "firmware TEXT", ParseFirmware, {}},
    {"hardware-trigger", Verb::kHardwareTrigger, 1, 1, "hardware-trigger on|off", ParseSwitch, {}},
    {"parameter", Verb::kParameter, 1, 2, "parameter ID [VALUE]", ParseParameter, Family::kIntermec},
    {"devices", Verb::kDevices, 0, HoneywellState::kDevices, "devices [NAME...]", ParseDevices, Family::kHoneywell},
    {"refuse", Verb::kRefuse, 2, 5, "refuse FUNCTION STATUS [COUNT|always [SKIP [BEGINNING]]]", ParseRefuse, {}},
    {"answer", Verb::kAnswer, 2, 4, "answer FUNCTION HEX|- [COUNT|always [CLAIMED]]", ParseAnswer, {}},
    {"accept", Verb::kAccept, 0, 1, "accept [FUNCTION]", ParseAccept, {}},
    {"log", Verb::kLog, 0, 1, "log [COUNT]", ParseLog, {}},
    {"clear-log", Verb::kClearLog, 0, 0, "clear-log", ParseNothing, {}},
    {"reset", Verb::kReset, 0, 0, "reset", ParseNothing, {}},
    {"status", Verb::kStatus, 0, 0, "status", ParseNothing, {}},
}};

std::vector<Row> RowsOf(Family family) {
    std::vector<Row> rows;
    for (Row row : kRows) {
        if (!row.only || *row.only == family) {
            row.family = family;
            rows.push_back(row);
        }
    }
    return rows;
}

const char* UsageOf(const Row& row) {
    return row.usage;
}

}  // namespace

FunctionNames FunctionsOf(Family family) {
    return family == Family::kIntermec ? FunctionNames(kIntermecFunctionNames) : FunctionNames(kHoneywellFunctionNames);
}

EngineCommand ParseEngineCommand(Family family, const Words& words) {
    return ParseByTable<EngineCommand>(RowsOf(family), words, UsageOf);
}

std::vector<std::string> EngineCommandUsage(Family family) {
    return UsageByTable(RowsOf(family), UsageOf);
}

}  // namespace quarlin::sim::scanner
