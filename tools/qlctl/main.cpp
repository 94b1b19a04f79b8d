// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "console/arguments.h"
#include "console/process_end.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <iostream>

namespace {

using namespace quarlin::qlctl;

std::string ExitStatusHelp() {
    std::string text = "Exit status:\n";
    for (const ExitStatusRow& row : ExitStatuses()) {
        const std::string number = std::to_string(static_cast<int>(row.status));
        text.append(number.size() < 2 ? "   " : "  ").append(number).append("  ").append(row.meaning).append("\n");
    }
    return text +
           "\nExamples:\n"
           "  qlctl info\n"
           "  qlctl gps status --port 3\n"
           "  qlctl barcode watch\n"
           "  qlctl card watch --count 1\n"
           "  qlctl gps watch --help";
}

// How a command ended, and whether the process can end in the usual way.
struct Ending {
    ExitStatus status = ExitStatus::kDone;
    bool isCallAtWork = false;
};

Ending Run(const Chosen& chosen) {
    Output output;
    try {
        return {chosen.run(output)};
    } catch (const AbandonedCall& failure) {
        std::cerr << "qlctl: " << failure.what() << '\n';
        return {failure.Status(), true};
    } catch (const Failure& failure) {
        std::cerr << "qlctl: " << failure.what() << '\n';
        return {failure.Status()};
    } catch (const std::exception& error) {
        std::cerr << "qlctl: error: " << error.what() << '\n';
        return {ExitStatus::kSystem};
    }
}

}  // namespace

int main() {
    CLI::App program("Shows what qlsdk.dll knows about this machine and its devices.", "qlctl");
    program.require_subcommand(1);
    program.set_version_flag("--version", "qlctl " QLCTL_VERSION);
    program.set_help_all_flag("--help-all", "Print the help of all commands and exit");
    program.footer(ExitStatusHelp());
    program.failure_message([](const CLI::App*, const CLI::Error& error) {
        return std::string("qlctl: ") + error.what() + "\nRun with --help for more information.\n";
    });
    Chosen chosen;
    AddInfoCommand(program, chosen);
    AddGpsCommands(program, chosen);
    AddDeviceCommands(program, chosen);
    AddLightCommands(program, chosen);
    AddCardCommands(program, chosen);
    AddRfidCommands(program, chosen);
    AddBarcodeCommands(program, chosen);
    try {
        std::vector<std::string> arguments = Utf8Arguments();
        std::ranges::reverse(arguments);  // the parser takes them from the end
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        // Help and the version come this way too, with 0.
        return static_cast<int>(program.exit(error) == 0 ? ExitStatus::kDone : ExitStatus::kUsage);
    }
    const Ending ending = Run(chosen);
    if (ending.isCallAtWork) {
        EndProcessAtOnce(static_cast<int>(ending.status));
    }
    return static_cast<int>(ending.status);
}
