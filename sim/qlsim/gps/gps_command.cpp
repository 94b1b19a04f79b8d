// SPDX-License-Identifier: Apache-2.0
#include "gps/gps_command.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "core/command_table.h"
#include "core/escape.h"

namespace quarlin::sim {
namespace {

using Verb = GpsCommand::Verb;

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

void ParseNothing(const Words&, GpsCommand&) {
}

void ParseSwitch(const Words& words, GpsCommand& command) {
    command.on = SwitchArgument(words[1]);
}

void ParseProbability(const Words& words, GpsCommand& command) {
    command.probability = ProbabilityArgument(words[1]);
}

void ParseSatellites(const Words& words, GpsCommand& command) {
    const std::string& word = words[1];
    if (word == "all") {
        return;
    }
    std::size_t count = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
    if (error != std::errc() || end != word.data() + word.size()) {
        throw CommandError("\"" + word + "\" is neither a number of satellites nor \"all\"");
    }
    command.satellites = count;
}

void ParseReplay(const Words& words, GpsCommand& command) {
    command.text = words[1];
    for (std::size_t i = 2; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "full-speed" || word == "paced") {
            command.fullSpeed = word == "full-speed";
        } else if (word == "then-silent" || word == "then-resume") {
            command.thenSilent = word == "then-silent";
        } else {
            throw CommandError("\"" + word + "\" is none of paced, full-speed, then-resume and then-silent");
        }
    }
}

void ParseText(const Words& words, GpsCommand& command) {
    for (std::size_t i = 1; i < words.size(); ++i) {
        command.text += (i == 1 ? "" : " ") + words[i];
    }
}

void ParseBytes(const Words& words, GpsCommand& command) {
    GpsCommand escaped;
    ParseText(words, escaped);
    command.text = Unescape(escaped.text);
}

struct Row {
    const char* name;
    Verb verb;
    std::size_t least;  // arguments
    std::size_t most;
    const char* usage;
    void (*parse)(const Words&, GpsCommand&);
};

constexpr std::array<Row, 13> kRows = {{
    {"lose-fix", Verb::kLoseFix, 0, 0, "lose-fix", ParseNothing},
    {"regain-fix", Verb::kRegainFix, 0, 0, "regain-fix", ParseNothing},
    {"unplug", Verb::kUnplug, 0, 0, "unplug", ParseNothing},
    {"plug", Verb::kPlug, 0, 0, "plug", ParseNothing},
    {"silence", Verb::kSilence, 1, 1, "silence on|off", ParseSwitch},
    {"noise", Verb::kNoise, 1, 1, "noise PROBABILITY", ParseProbability},
    {"drop", Verb::kDrop, 1, 1, "drop PROBABILITY", ParseProbability},
    {"bad-checksum", Verb::kBadChecksum, 1, 1, "bad-checksum PROBABILITY", ParseProbability},
    {"satellites", Verb::kSatellites, 1, 1, "satellites NUMBER|all", ParseSatellites},
    {"replay", Verb::kReplay, 1, 3, "replay FILE [paced|full-speed] [then-resume|then-silent]", ParseReplay},
    {"send", Verb::kSend, 1, kAny, "send TEXT", ParseText},
    {"send-bytes", Verb::kSendBytes, 1, kAny, "send-bytes TEXT", ParseBytes},
    {"status", Verb::kStatus, 0, 0, "status", ParseNothing},
}};

std::string UsageOf(const Row& row) {
    return row.usage;
}

}  // namespace

GpsCommand ParseGpsCommand(const Words& words) {
    return ParseByTable<GpsCommand>(kRows, words, UsageOf);
}

std::vector<std::string> GpsCommandUsage() {
    return UsageByTable(kRows, UsageOf);
}

}  // namespace quarlin::sim
