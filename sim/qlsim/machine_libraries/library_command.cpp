// SPDX-License-Identifier: Apache-2.0
#include "machine_libraries/library_command.h"

#include <algorithm>
#include <charconv>

namespace quarlin::sim {
namespace {

constexpr std::int64_t kLowestStatus = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighestStatus = std::numeric_limits<std::int32_t>::max();

}  // namespace

std::int64_t IntegerArgument(const std::string& word, std::int64_t least, std::int64_t most, const std::string& what) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || value < least || value > most) {
        throw CommandError("\"" + word + "\" is no " + what + " from " + std::to_string(least) + " to " +
                           std::to_string(most));
    }
    return value;
}

std::int32_t StatusArgument(const std::string& word) {
    return static_cast<std::int32_t>(IntegerArgument(word, kLowestStatus, kHighestStatus, "status"));
}

std::size_t FunctionArgument(const std::string& word, FunctionNames names) {
    const auto found = std::find(names.begin(), names.end(), word);
    if (found == names.end()) {
        throw CommandError("there is no function \"" + word + "\"" +
                           Suggestion(word, std::vector<std::string>(names.begin(), names.end())));
    }
    return static_cast<std::size_t>(found - names.begin());
}

bool FitsAsText(const std::string& text, std::size_t room) {
    return text.size() <= room && std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

void ReadAnswers(TableReader& table, FunctionNames names, std::int32_t* answers) {
    auto read = table.Table("answers", "a table of answers");
    if (!read) {
        return;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        answers[i] = static_cast<std::int32_t>(read->Integer(names[i], 0, kLowestStatus, kHighestStatus));
    }
    read->RefuseTheRest();
}

nlohmann::ordered_json AnswersOf(FunctionNames names, const std::int32_t* answers) {
    auto json = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (answers[i] != 0) {
            json[names[i]] = answers[i];
        }
    }
    return json;
}

nlohmann::ordered_json CallsOf(FunctionNames names, const CallLog& log) {
    auto json = nlohmann::ordered_json::array();
    for (std::uint64_t number = log.First(); number < log.count; ++number) {
        const LoggedCall& call = log.At(number);
        // Any program of the machine can write to the record.
        json.push_back({{"function", call.function < names.size() ? names[call.function] : "?"},
                        {"arguments", call.arguments},
                        {"status", call.status},
                        {"process", call.process}});
    }
    return json;
}

std::string OneLine(const nlohmann::ordered_json& json) {
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

bool IsPlainCommand(const Words& words, const char* name) {
    if (words.empty() || words.front() != name) {
        return false;
    }
    if (words.size() > 1) {
        throw CommandError("the command has to be: " + std::string(name));
    }
    return true;
}

void RefuseCommand(const std::string& name, const std::vector<std::string>& known) {
    throw CommandError("there is no command \"" + name + "\"" + Suggestion(name, known));
}

}  // namespace quarlin::sim
