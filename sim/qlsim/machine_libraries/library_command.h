// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

#include "core/command.h"
#include "core/table_reader.h"
#include "shared/call_log.h"

namespace quarlin::sim {

using FunctionNames = std::span<const char* const>;

// What a command does is done to this.
template <typename State>
struct LibraryScene {
    State& state;
    std::uint64_t now;  // milliseconds of the machine's clock
};

// A command that has been read and checked; it returns what to say.
template <typename State>
using LibraryAction = std::function<std::string(const LibraryScene<State>&)>;

template <typename State>
struct LibraryCommand {
    const char* name;
    std::size_t arguments;
    const char* usage;
    // The words have the right number. Throws CommandError.
    LibraryAction<State> (*read)(const Words& words);
};

// A whole number of a command; throws CommandError when it is none, or out of range. `what` names it: "a device".
std::int64_t IntegerArgument(const std::string& word, std::int64_t least, std::int64_t most, const std::string& what);
std::int32_t StatusArgument(const std::string& word);
// A function's place in the list of names.
std::size_t FunctionArgument(const std::string& word, FunctionNames names);

// A text of 7-bit characters that is no longer than the room for it.
bool FitsAsText(const std::string& text, std::size_t room);

// The table "answers" of a device: statuses by the names of functions.
void ReadAnswers(TableReader& table, FunctionNames names, std::int32_t* answers);

// The statuses that are set, by name.
nlohmann::ordered_json AnswersOf(FunctionNames names, const std::int32_t* answers);
// The calls that the log still has, oldest first.
nlohmann::ordered_json CallsOf(FunctionNames names, const CallLog& log);

// One line of JSON.
std::string OneLine(const nlohmann::ordered_json& json);

// Whether it is the command of this name, which takes no arguments; throws CommandError when it has some.
bool IsPlainCommand(const Words& words, const char* name);

[[noreturn]] void RefuseCommand(const std::string& name, const std::vector<std::string>& known);

// Reads a command by a list of them; throws CommandError.
template <typename State>
LibraryAction<State> ReadCommand(std::span<const LibraryCommand<State>> commands, const Words& words) {
    if (words.empty()) {
        throw CommandError("a command is missing; \"help\" lists what there is");
    }
    std::vector<std::string> names;
    for (const LibraryCommand<State>& command : commands) {
        names.emplace_back(command.name);
        if (words.front() != command.name) {
            continue;
        }
        if (words.size() - 1 != command.arguments) {
            throw CommandError("the command has to be: " + std::string(command.usage));
        }
        return command.read(words);
    }
    RefuseCommand(words.front(), names);
}

// The commands that every machine library takes; Names has the names of its functions.
template <typename State, const auto& Names>
struct CommonCommands {
    static LibraryAction<State> Answer(const Words& words) {
        const std::size_t function = FunctionArgument(words[1], Names);
        const std::int32_t status = StatusArgument(words[2]);
        return [function, status](const LibraryScene<State>& scene) {
            scene.state.answers[function] = status;
            return std::string(Names[function]) + " answers " +
                   (status == 0 ? std::string("what it finds") : std::to_string(status));
        };
    }
    static LibraryAction<State> Log(const Words&) {
        return [](const LibraryScene<State>& scene) { return OneLine(CallsOf(Names, scene.state.log)); };
    }
    static LibraryAction<State> ClearLog(const Words&) {
        return [](const LibraryScene<State>& scene) {
            scene.state.log.Clear();
            return std::string("the log is empty");
        };
    }
};

}  // namespace quarlin::sim
