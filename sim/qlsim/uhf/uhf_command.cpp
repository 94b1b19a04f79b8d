// SPDX-License-Identifier: Apache-2.0
#include "uhf/uhf_command.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "core/command_table.h"
#include "uhf/arguments.h"

namespace quarlin::sim {
namespace {

using Verb = UhfCommand::Verb;

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
constexpr double kLongest = 1e6;  // seconds

void ParseNothing(const Words&, UhfCommand&) {
}

// What comes after a fault's own arguments: a command's name, "always" or "times" with a number.
UhfFault Narrowed(UhfFault fault, const Words& words, std::size_t at) {
    if (at < words.size() && words[at] != "always" && words[at] != "times") {
        const UhfCommandShape* const shape = FindUhfCommand(words[at]);
        if (shape == nullptr) {
            std::vector<std::string> names = {"always", "times"};
            for (const UhfCommandShape& known : kUhfCommands) {
                names.emplace_back(known.name);
            }
            throw CommandError("the reader has no command \"" + words[at] + "\"" + Suggestion(words[at], names));
        }
        fault = fault.For(shape->code);
        ++at;
    }
    if (at < words.size() && words[at] == "always") {
        fault = fault.Always();
        ++at;
    } else if (at + 1 < words.size() && words[at] == "times") {
        fault = fault.Times(NumberArgument<unsigned>(words[at + 1], 1, 1000000));
        at += 2;
    }
    if (at < words.size()) {
        throw CommandError("a fault ends with a command's name, then \"always\" or \"times N\"; \"" + words[at] +
                           "\" is too much");
    }
    return fault;
}

void ParseUnplug(const Words& words, UhfCommand& command) {
    if (words.size() == 1) {
        return;
    }
    if (words[1] != "during" && words[1] != "before-answer") {
        throw CommandError("\"" + words[1] + "\" is neither during nor before-answer");
    }
    command.verb = Verb::kFault;
    command.fault =
        Narrowed(words[1] == "during" ? UhfFault::UnplugDuring() : UhfFault::UnplugBeforeAnswer(), words, 2);
}

void ParseAddTag(const Words& words, UhfCommand& command) {
    command.tag = TagArguments(words);
}

void ParseBytes(const Words& words, UhfCommand& command) {
    command.bytes = HexArgument(words[1]);
}

void ParseSignal(const Words& words, UhfCommand& command) {
    command.bytes = HexArgument(words[1]);
    command.signal = NumberArgument<std::int8_t>(words[2]);
}

void ParsePower(const Words& words, UhfCommand& command) {
    command.power = NumberArgument<std::uint8_t>(words[1]);
}

void ParseParameters(const Words& words, UhfCommand& command) {
    if (words.size() == 1) {
        return;
    }
    command.parameter = words[1];
    if (UhfQuery query; !SetUhfParameter(query, words[1], 0)) {
        throw CommandError("\"" + words[1] + "\" is none of link-frequency, miller, session, q-begin and sensitivity");
    }
    if (words.size() == 2) {
        throw CommandError("a value is missing");
    }
    command.value =
        words[1] == "sensitivity" ? NumberArgument<std::int8_t>(words[2]) : NumberArgument<std::uint8_t>(words[2]);
}

void ParseStatusByte(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::Status(HexByteArgument(words[1])), words, 2);
}

void ParseByte(const Words& words, UhfCommand& command) {
    command.fault =
        Narrowed(UhfFault::Byte(NumberArgument<std::uint16_t>(words[1]), HexByteArgument(words[2])), words, 3);
}

void ParseReplyCode(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::ReplyCode(HexByteArgument(words[1])), words, 2);
}

void ParseLengthByte(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::LengthByte(NumberArgument<std::uint8_t>(words[1])), words, 2);
}

void ParseWordCount(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::WordCount(NumberArgument<std::uint8_t>(words[1])), words, 2);
}

void ParseIdentifierLength(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::IdentifierLength(NumberArgument<std::uint8_t>(words[1])), words, 2);
}

void ParseShort(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::Short(NumberArgument<std::uint8_t>(words[1], 1)), words, 2);
}

void ParseSilence(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::Silence(), words, 1);
}

void ParseRefuse(const Words& words, UhfCommand& command) {
    command.fault = Narrowed(UhfFault::Refuse(), words, 1);
}

void ParseLate(const Words& words, UhfCommand& command) {
    double seconds = 0;
    const std::string word = words.size() > 1 ? words[1] : "";
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), seconds);
    if (word.empty() || error == std::errc::invalid_argument) {
        command.fault = Narrowed(UhfFault::Hold(), words, 1);
        return;
    }
    if (error != std::errc() || end != word.data() + word.size() || !(seconds >= 0 && seconds <= kLongest)) {
        throw CommandError("\"" + word + "\" is no time in seconds");
    }
    const auto delay = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
    command.fault = Narrowed(UhfFault::Delay(delay), words, 2);
}

void ParseLog(const Words& words, UhfCommand& command) {
    if (words.size() > 1) {
        command.last = NumberArgument<unsigned>(words[1]);
    }
}

struct Row {
    const char* name;
    Verb verb;
    std::size_t least;  // arguments
    std::size_t most;
    const char* usage;
    void (*parse)(const Words&, UhfCommand&);
};

// Every fault may be followed by a command of the reader, then "always" or "times N".
constexpr std::array<Row, 24> kRows = {{
    {"plug", Verb::kPlug, 0, 0, "plug", ParseNothing},
    {"unplug", Verb::kUnplug, 0, 4, "unplug [during|before-answer [WHEN]]", ParseUnplug},
    {"add-tag", Verb::kAddTag, 1, kAny, kTagUsage, ParseAddTag},
    {"remove-tag", Verb::kRemoveTag, 1, 1, "remove-tag EPC", ParseBytes},
    {"tags", Verb::kTags, 0, 0, "tags", ParseNothing},
    {"signal", Verb::kSignal, 2, 2, "signal EPC DBM", ParseSignal},
    {"power", Verb::kPower, 1, 1, "power N", ParsePower},
    {"parameters", Verb::kParameters, 0, 2, "parameters [NAME VALUE]", ParseParameters},
    {"status-byte", Verb::kFault, 1, 4, "status-byte HEX [WHEN]", ParseStatusByte},
    {"byte", Verb::kFault, 2, 5, "byte OFFSET HEX [WHEN]", ParseByte},
    {"reply-code", Verb::kFault, 1, 4, "reply-code HEX [WHEN]", ParseReplyCode},
    {"length-byte", Verb::kFault, 1, 4, "length-byte N [WHEN]", ParseLengthByte},
    {"word-count", Verb::kFault, 1, 4, "word-count N [WHEN]", ParseWordCount},
    {"identifier-length", Verb::kFault, 1, 4, "identifier-length N [WHEN]", ParseIdentifierLength},
    {"short", Verb::kFault, 1, 4, "short N [WHEN]", ParseShort},
    {"silence", Verb::kFault, 0, 3, "silence [WHEN]", ParseSilence},
    {"late", Verb::kFault, 0, 4, "late [SECONDS] [WHEN]", ParseLate},
    {"refuse", Verb::kFault, 0, 3, "refuse [WHEN]", ParseRefuse},
    {"clear-faults", Verb::kClearFaults, 0, 0, "clear-faults", ParseNothing},
    {"answer-now", Verb::kAnswerNow, 0, 0, "answer-now", ParseNothing},
    {"send", Verb::kSend, 1, 1, "send HEX", ParseBytes},
    {"log", Verb::kLog, 0, 1, "log [N]", ParseLog},
    {"clear-log", Verb::kClearLog, 0, 0, "clear-log", ParseNothing},
    {"status", Verb::kStatus, 0, 0, "status", ParseNothing},
}};

std::string UsageOf(const Row& row) {
    return row.usage;
}

}  // namespace

UhfCommand ParseUhfCommand(const Words& words) {
    return ParseByTable<UhfCommand>(kRows, words, UsageOf);
}

bool SetUhfParameter(UhfQuery& query, const std::string& name, int value) {
    if (name == "sensitivity") {
        query.sensitivity = static_cast<std::int8_t>(value);
        return true;
    }
    const auto byte = static_cast<std::uint8_t>(value);
    if (name == "link-frequency") {
        query.linkFrequency = byte;
    } else if (name == "miller") {
        query.miller = byte;
    } else if (name == "session") {
        query.session = byte;
    } else if (name == "q-begin") {
        query.qBegin = byte;
    } else {
        return false;
    }
    return true;
}

std::vector<std::string> UhfCommandUsage() {
    return UsageByTable(kRows, UsageOf);
}

}  // namespace quarlin::sim
