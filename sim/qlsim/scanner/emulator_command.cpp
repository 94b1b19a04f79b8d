// SPDX-License-Identifier: Apache-2.0
#include "scanner/emulator_command.h"

#include <array>

#include "core/command_table.h"
#include "machine_libraries/library_command.h"

namespace quarlin::sim::scanner {
namespace {

using Verb = EmulatorCommand::Verb;

constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kLongest = 600000;  // milliseconds
constexpr std::array<const char*, 3> kNotices = {"none", "posted", "sent"};

std::uint32_t NumberArgument(const std::string& word, std::int64_t least, std::int64_t most, const char* what) {
    return static_cast<std::uint32_t>(IntegerArgument(word, least, most, what));
}

EmulatorNotice NoticeArgument(const std::string& word) {
    const auto notice = NoticeNamed(word);
    if (!notice) {
        throw CommandError("\"" + word + "\" is none of none, posted and sent");
    }
    return *notice;
}

template <typename Value>
void Set(const Words& words, EmulatorCommand& command, Value EmulatorSettings::*place, Value value) {
    command.set = [place, value](EmulatorSettings& settings) { settings.*place = value; };
    command.said = JoinWords(words);
}

void ParseNothing(const Words&, EmulatorCommand&) {
}

void ParseStart(const Words& words, EmulatorCommand& command) {
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "no-window") {
            command.noWindow = true;
        } else if (words[i] == "handed-over") {
            command.handedOver = true;
        } else {
            throw CommandError("\"" + words[i] + "\" is none of no-window and handed-over");
        }
    }
}

void ParseAccept(const Words& words, EmulatorCommand& command) {
    Set(words, command, &EmulatorSettings::connectAnswer, std::uint32_t{0});
}

void ParseRefuse(const Words& words, EmulatorCommand& command) {
    const std::uint32_t answer = words.size() > 1 ? NumberArgument(words[1], 1, kMost, "answer") : 1;
    Set(words, command, &EmulatorSettings::connectAnswer, answer);
}

void ParseHandOverAt(const Words& words, EmulatorCommand& command) {
    const std::uint32_t poll =
        words[1] == "never" ? EmulatorSettings::kNever : NumberArgument(words[1], 1, kMost - 1, "poll");
    Set(words, command, &EmulatorSettings::handOverAtPoll, poll);
}

void ParseStateBefore(const Words& words, EmulatorCommand& command) {
    Set(words, command, &EmulatorSettings::stateBefore, NumberArgument(words[1], 0, kMost, "state"));
}

void ParseConnectDelay(const Words& words, EmulatorCommand& command) {
    Set(words, command, &EmulatorSettings::connectDelay, NumberArgument(words[1], 0, kLongest, "delay"));
}

void ParseStateDelay(const Words& words, EmulatorCommand& command) {
    Set(words, command, &EmulatorSettings::stateDelay, NumberArgument(words[1], 0, kLongest, "delay"));
}

void ParseNotice(const Words& words, EmulatorCommand& command) {
    Set(words, command, &EmulatorSettings::notice, NoticeArgument(words[1]));
}

void ParseNoticeInConnect(const Words& words, EmulatorCommand& command) {
    Set(words, command, &EmulatorSettings::noticeInConnect, NoticeArgument(words[1]));
}

template <EmulatorOrder order>
void ParseOrder(const Words&, EmulatorCommand& command) {
    command.order = order;
}

struct Row {
    const char* name;
    Verb verb;
    std::size_t least;  // arguments
    std::size_t most;
    const char* usage;
    void (*parse)(const Words&, EmulatorCommand&);
};

constexpr std::array<Row, 20> kRows = {{
    {"start", Verb::kStart, 0, 2, "start [no-window] [handed-over]", ParseStart},
    {"end", Verb::kEnd, 0, 0, "end", ParseNothing},
    {"kill", Verb::kKill, 0, 0, "kill", ParseNothing},
    {"accept", Verb::kSet, 0, 0, "accept", ParseAccept},
    {"refuse", Verb::kSet, 0, 1, "refuse [ANSWER]", ParseRefuse},
    {"hand-over-at", Verb::kSet, 1, 1, "hand-over-at POLL|never", ParseHandOverAt},
    {"state-before", Verb::kSet, 1, 1, "state-before STATE", ParseStateBefore},
    {"connect-delay", Verb::kSet, 1, 1, "connect-delay MILLISECONDS", ParseConnectDelay},
    {"state-delay", Verb::kSet, 1, 1, "state-delay MILLISECONDS", ParseStateDelay},
    {"notice", Verb::kSet, 1, 1, "notice none|posted|sent", ParseNotice},
    {"notice-in-connect", Verb::kSet, 1, 1, "notice-in-connect none|posted|sent", ParseNoticeInConnect},
    {"take-back", Verb::kOrder, 0, 0, "take-back", ParseOrder<EmulatorOrder::kTakeBack>},
    {"hand-over", Verb::kOrder, 0, 0, "hand-over", ParseOrder<EmulatorOrder::kHandOver>},
    {"notify", Verb::kOrder, 0, 0, "notify", ParseOrder<EmulatorOrder::kNotify>},
    {"open-window", Verb::kOrder, 0, 0, "open-window", ParseOrder<EmulatorOrder::kOpenWindow>},
    {"close-window", Verb::kOrder, 0, 0, "close-window", ParseOrder<EmulatorOrder::kCloseWindow>},
    {"log", Verb::kLog, 0, 0, "log", ParseNothing},
    {"clear-log", Verb::kClearLog, 0, 0, "clear-log", ParseNothing},
    {"reset", Verb::kReset, 0, 0, "reset", ParseNothing},
    {"status", Verb::kStatus, 0, 0, "status", ParseNothing},
}};

const char* UsageOf(const Row& row) {
    return row.usage;
}

}  // namespace

std::optional<EmulatorNotice> NoticeNamed(const std::string& word) {
    for (std::size_t i = 0; i < kNotices.size(); ++i) {
        if (word == kNotices[i]) {
            return static_cast<EmulatorNotice>(i);
        }
    }
    return std::nullopt;
}

const char* NameOf(EmulatorNotice notice) {
    const auto place = static_cast<std::size_t>(notice);
    return place < kNotices.size() ? kNotices[place] : "?";
}

EmulatorCommand ParseEmulatorCommand(const Words& words) {
    return ParseByTable<EmulatorCommand>(kRows, words, UsageOf);
}

std::vector<std::string> EmulatorCommandUsage() {
    return UsageByTable(kRows, UsageOf);
}

}  // namespace quarlin::sim::scanner
