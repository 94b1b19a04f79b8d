// SPDX-License-Identifier: Apache-2.0
// The barcode emulator program. Programs know it by its file name, so that it is built under several.
#include <CLI/CLI.hpp>

#include <windows.h>

#include <charconv>
#include <cstdio>
#include <map>
#include <optional>
#include <string>

#include "emulator/emulator_win.h"

namespace {

using namespace quarlin::sim;

enum ExitStatus {
    kDone = 0,
    kBadInput = 2,
    kCannotStart = 3,
};

// What the command line says; nothing: as the record has it.
struct Arguments {
    std::optional<std::uint32_t> answer;
    std::optional<std::string> handOverAt;
    std::optional<std::uint32_t> stateBefore;
    std::optional<std::uint32_t> connectDelay;
    std::optional<std::uint32_t> stateDelay;
    std::optional<EmulatorNotice> notice;
    std::optional<EmulatorNotice> noticeInConnect;
    std::optional<std::uint32_t> noticeTimeout;
    std::optional<std::uint32_t> parent;
    bool noWindow = false;
    bool handedOver = false;
};

void Describe(CLI::App& app, Arguments& arguments) {
    const std::map<std::string, EmulatorNotice> notices = {
        {"none", EmulatorNotice::kNone}, {"posted", EmulatorNotice::kPosted}, {"sent", EmulatorNotice::kSent}};
    app.add_option("--answer", arguments.answer, "answer to a request to hand the scanner over; 0 accepts");
    app.add_option("--hand-over-at", arguments.handOverAt, "the poll that is answered 3: 1, 2, ... or never");
    app.add_option("--state-before", arguments.stateBefore, "what the polls before are answered");
    app.add_option("--connect-delay", arguments.connectDelay, "milliseconds before a request is answered");
    app.add_option("--state-delay", arguments.stateDelay, "milliseconds before a poll is answered");
    app.add_option("--notice", arguments.notice, "how a change is told: none, posted or sent")
        ->transform(CLI::CheckedTransformer(notices));
    app.add_option("--notice-in-connect", arguments.noticeInConnect, "likewise, from inside the answer to a request")
        ->transform(CLI::CheckedTransformer(notices));
    app.add_option("--notice-timeout", arguments.noticeTimeout, "milliseconds to wait for the answer to a sent notice");
    app.add_option("--parent", arguments.parent, "end when the process with this id ends");
    app.add_flag("--no-window", arguments.noWindow, "have no window until one is ordered");
    app.add_flag("--handed-over", arguments.handedOver, "begin without the scanner");
    app.footer(
        "It lives until it is ordered to end (emulator/emulator_state.h), or its parent ends.\n"
        "Exit status: 0 done, 2 wrong arguments, 3 it cannot start.");
}

void Put(const std::optional<std::uint32_t>& from, std::uint32_t& to) {
    to = from.value_or(to);
}

std::uint32_t PollArgument(const std::string& word) {
    std::uint32_t poll = 0;
    const char* const end = word.data() + word.size();
    const auto [read, error] = std::from_chars(word.data(), end, poll);
    if (word == "never") {
        return EmulatorSettings::kNever;
    }
    if (error != std::errc() || read != end || poll == 0) {
        throw CLI::ValidationError("--hand-over-at", "\"" + word + "\" is neither a poll nor never");
    }
    return poll;
}

bool ApplySettings(const Arguments& arguments) {
    std::optional<std::uint32_t> handOverAt;
    if (arguments.handOverAt) {
        handOverAt = PollArgument(*arguments.handOverAt);
    }
    static SharedState<EmulatorState> shared;  // to the end of the program, so that the emulator finds it as it is here
    const SharedState<EmulatorState>::Access state(shared);
    if (!state) {
        return false;
    }
    EmulatorSettings& settings = state->settings;
    Put(arguments.answer, settings.connectAnswer);
    Put(handOverAt, settings.handOverAtPoll);
    Put(arguments.stateBefore, settings.stateBefore);
    Put(arguments.connectDelay, settings.connectDelay);
    Put(arguments.stateDelay, settings.stateDelay);
    Put(arguments.noticeTimeout, settings.noticeTimeout);
    settings.notice = arguments.notice.value_or(settings.notice);
    settings.noticeInConnect = arguments.noticeInConnect.value_or(settings.noticeInConnect);
    return true;
}

int Live(const Arguments& arguments) {
    Emulator::Options options;
    options.window = !arguments.noWindow;
    options.handedOver = arguments.handedOver;
    if (arguments.parent) {
        options.parent = OpenProcess(SYNCHRONIZE, FALSE, *arguments.parent);
        if (options.parent == nullptr) {
            std::fprintf(stderr, "the emulator: there is no process %u\n", static_cast<unsigned>(*arguments.parent));
            return kCannotStart;
        }
    }
    Emulator emulator(options);
    if (!emulator.Run()) {
        std::fputs("the emulator: the system refuses its window or its shared memory\n", stderr);
        return kCannotStart;
    }
    return kDone;
}

}  // namespace

int main(int count, char** values) {
    CLI::App app("Holds the barcode scanner, and hands it over to programs that ask for it.", "SCN2D_Emu_USB");
    Arguments arguments;
    Describe(app, arguments);
    try {
        app.parse(count, values);
        if (!ApplySettings(arguments)) {
            std::fputs("the emulator: its shared memory cannot be opened\n", stderr);
            return kCannotStart;
        }
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kDone : kBadInput;
    }
    return Live(arguments);
}
