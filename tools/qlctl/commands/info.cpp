// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "sdk/library_facts.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

namespace quarlin::qlctl {
namespace {

// Everything that can be shown is shown; the first answer that failed decides the exit status.
ExitStatus ShowInfo(bool json, Output& output) {
    const InfoReport report = GatherInfo();
    output.Write(json ? InfoJson(report) : InfoText(report));
    ExitStatus status = ExitStatus::kDone;
    for (const InfoPart& part : report.parts) {
        if (const auto& error = part.answer.error) {
            std::cerr << "qlctl: " << part.title << ": " << Describe(*error) << '\n';
            status = status == ExitStatus::kDone ? StatusOf(error->code) : status;
        }
    }
    return status;
}

}  // namespace

void AddInfoCommand(CLI::App& program, Chosen& chosen) {
    CLI::App* const info =
        program.add_subcommand("info", "Tell about the library, the machine and the device families");
    const auto json = std::make_shared<bool>(false);
    info->add_flag("--json", *json, "Print one JSON object");
    info->footer(
        "Examples:\n"
        "  qlctl info\n"
        "  qlctl info --json");
    info->callback([&chosen, json] { chosen.run = [json](Output& output) { return ShowInfo(*json, output); }; });
}

}  // namespace quarlin::qlctl
