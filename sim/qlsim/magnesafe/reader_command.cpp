// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/reader_command.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "core/command_table.h"
#include "hid/hex.h"
#include "magnesafe/card_text.h"

namespace quarlin::sim::magnesafe {
namespace {

using Verb = ReaderCommand::Verb;

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
constexpr std::uint64_t kMostSwipes = 10'000'000;  // the counter in the report has 24 bits

std::uint64_t Number(const std::string& word, int base, std::uint64_t most) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number, base);
    if (error != std::errc() || end != word.data() + word.size() || number > most) {
        throw CommandError("\"" + word + "\" is no " + (base == 16 ? "hexadecimal" : "whole") + " number up to " +
                           std::to_string(most));
    }
    return number;
}

std::array<bool, kTracks> TrackList(const std::string& word) {
    const auto tracks = ParseTrackList(word);
    if (!tracks) {
        throw CommandError("\"" + word + "\" is no list of tracks such as 1,3 or all or none");
    }
    return *tracks;
}

void ParseNothing(const Words&, ReaderCommand&) {
}

void ParseSwipeFrom(const Words& words, std::size_t first, ReaderCommand& command) {
    for (std::size_t at = first; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (const auto form = FormNamed(word)) {
            command.form = form;
        } else if (at + 1 < words.size() && word == "tracks") {
            command.options.tracks = TrackList(words[++at]);
        } else if (at + 1 < words.size() && word == "bad") {
            command.options.bad = TrackList(words[++at]);
        } else if (at + 1 < words.size() && word == "with") {
            const auto patch = ParsePatch(words[++at]);
            if (!patch) {
                throw CommandError("\"" + words[at] +
                                   "\" has to be a place from 0 to 887 and hexadecimal bytes, such as 495=06");
            }
            command.options.patches.push_back(*patch);
        } else if (command.card.empty()) {
            command.card = word;
        } else {
            throw CommandError("\"" + word + "\" is none of clear, masked, encrypted, tracks, bad and with");
        }
    }
}

void ParseSwipe(const Words& words, ReaderCommand& command) {
    ParseSwipeFrom(words, 1, command);
}

void ParseSwipeMany(const Words& words, ReaderCommand& command) {
    command.number = Number(words[1], 10, kMostSwipes);
    ParseSwipeFrom(words, 2, command);
}

void ParseSwipeRaw(const Words& words, ReaderCommand& command) {
    std::string text;
    for (std::size_t at = 1; at < words.size(); ++at) {
        text += words[at] + " ";
    }
    const auto bytes = ParseHex(text);
    if (!bytes) {
        throw CommandError("the report has to be hexadecimal, with the report ID 00 in front");
    }
    command.bytes = *bytes;
}

void ParseLevel(const Words& words, ReaderCommand& command) {
    command.number = Number(words[1], 10, 255);
}

void ParseFail(const Words& words, ReaderCommand& command) {
    command.fault = ParseRequestFault(words, HidAnswer::kRefuse);
}

void ParseUnplugOn(const Words& words, ReaderCommand& command) {
    command.fault = ParseRequestFault(words, HidAnswer::kUnplug);
}

void ParseResult(const Words& words, ReaderCommand& command) {
    if (words[1] != "normal") {
        command.number = Number(words[1], 16, 255);
    }
}

void ParseShortAnswer(const Words& words, ReaderCommand& command) {
    if (words[1] != "off") {
        command.number = Number(words[1], 10, kSwipeLength);
    }
}

struct Row {
    const char* name;
    Verb verb;
    std::size_t least;  // arguments
    std::size_t most;
    const char* arguments;
    void (*parse)(const Words&, ReaderCommand&);
};

constexpr const char* kSwipeArguments =
    " [CARD|FILE[#CARD]] [clear|masked|encrypted] [tracks LIST] [bad LIST] [with AT=HEX]...";

constexpr std::array<Row, 12> kRows = {{
    {"plug", Verb::kPlug, 0, 0, "", ParseNothing},
    {"unplug", Verb::kUnplug, 0, 0, "", ParseNothing},
    {"swipe", Verb::kSwipe, 0, kAny, kSwipeArguments, ParseSwipe},
    {"swipe-raw", Verb::kSwipeRaw, 1, kAny, " HEX", ParseSwipeRaw},
    {"swipe-many", Verb::kSwipeMany, 1, kAny,
     " N [CARD|FILE[#CARD]] [clear|masked|encrypted] [tracks LIST] [bad LIST] [with AT=HEX]...", ParseSwipeMany},
    {"security-level", Verb::kSecurityLevel, 1, 1, " LEVEL", ParseLevel},
    {"fail-feature", Verb::kFault, 0, kAny, " [set|get|output|any] [starting HEX] [after N] [times N|always]",
     ParseFail},
    {"unplug-on", Verb::kFault, 0, kAny, " [set|get|output|any] [starting HEX] [after N] [times N|always]",
     ParseUnplugOn},
    {"result", Verb::kResult, 1, 1, " HEX|normal", ParseResult},
    {"short-answer", Verb::kShortAnswer, 1, 1, " BYTES|off", ParseShortAnswer},
    {"no-faults", Verb::kNoFaults, 0, 0, "", ParseNothing},
    {"status", Verb::kStatus, 0, 0, "", ParseNothing},
}};

std::string UsageOf(const Row& row) {
    return std::string(row.name) + row.arguments;
}

}  // namespace

ReaderCommand ParseReaderCommand(const Words& words) {
    return ParseByTable<ReaderCommand>(kRows, words, UsageOf);
}

std::vector<std::string> ReaderCommandUsage() {
    return UsageByTable(kRows, UsageOf);
}

}  // namespace quarlin::sim::magnesafe
