// SPDX-License-Identifier: Apache-2.0
// qlsim-ctl: gives a running qlsim one command and prints its reply.
#include <CLI/CLI.hpp>
#include <iostream>
#include <nlohmann/json.hpp>

#include "core/command.h"
#include "edge/arguments_win.h"
#include "edge/command_pipe_win.h"

namespace {

using namespace quarlin::sim;

enum ExitStatus {
    kAccepted = 0,
    kRefused = 1,  // also for wrong arguments of this program
    kNotReachable = 2,
};

// A list comes as one line of JSON; people like a line for each.
void PrintReply(const std::string& text, bool asLines) {
    const auto list = nlohmann::json::parse(asLines ? text : "", nullptr, false);
    if (!list.is_array()) {
        std::cout << text << "\n";
        return;
    }
    for (const auto& line : list) {
        std::cout << (line.is_string() ? line.get<std::string>() : line.dump()) << "\n";
    }
}

}  // namespace

int main() {
    CLI::App app("Gives a running qlsim one command and prints its reply.", "qlsim-ctl");
    std::string pipe = "qlsim";
    double wait = 5;
    app.add_option("--pipe", pipe, "name of the command pipe")->capture_default_str();
    app.add_option("--wait", wait, "seconds to wait for the pipe")
        ->check(CLI::Range(0.0, 600.0))
        ->capture_default_str();
    app.allow_windows_style_options(false);
    app.prefix_command();
    app.footer(
        "Examples:\n"
        "  qlsim-ctl help\n"
        "  qlsim-ctl gps lose-fix\n"
        "  qlsim-ctl gps replay C:\\logs\\receiver.nmea full-speed\n"
        "  qlsim-ctl status gps\n"
        "Exit status: 0 accepted, 1 refused, 2 nobody answers.");
    try {
        app.parse(ReversedArguments());
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kAccepted : kRefused;
    }
    const Words words = app.remaining();
    if (words.empty()) {
        std::cerr << "qlsim-ctl: a command is missing; try \"qlsim-ctl help\"\n";
        return kRefused;
    }
    try {
        const std::string reply = AskPipe(pipe, JoinWords(words), std::chrono::milliseconds(std::lround(wait * 1000)));
        const std::size_t blank = reply.find(' ');
        const std::string text = blank == std::string::npos ? "" : reply.substr(blank + 1);
        if (reply.substr(0, blank) == "ok") {
            PrintReply(text, words.front() == "help" || words.front() == "devices");
            return kAccepted;
        }
        std::cerr << "qlsim-ctl: " << text << "\n";
        return kRefused;
    } catch (const PipeError& error) {
        std::cerr << "qlsim-ctl: " << error.what() << "\n";
        return kNotReachable;
    }
}
