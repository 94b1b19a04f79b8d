// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "sdk/device_facts.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

namespace quarlin::qlctl {
namespace {

// Everything that can be shown has been shown; the first answer that failed decides the exit status.
ExitStatus Tell(const std::vector<LibraryError>& errors) {
    for (const LibraryError& error : errors) {
        std::cerr << "qlctl: " << Describe(error) << '\n';
    }
    return errors.empty() ? ExitStatus::kDone : StatusOf(errors.front().code);
}

ExitStatus ListDevices(bool json, Output& output) {
    const DeviceReport report = GatherDevices();
    output.Write(json ? DeviceJson(report) : DeviceText(report));
    return Tell(Failures(report));
}

ExitStatus ShowBatteries(bool json, Output& output) {
    const std::vector<BatteryReply> batteries = GatherBatteries();
    output.Write(json ? BatteryJson(batteries) : BatteryText(batteries));
    return Tell(Failures(batteries));
}

using Command = ExitStatus (*)(bool, Output&);

CLI::App* AddCommand(CLI::App& family, const char* name, const char* description, Command command, Chosen& chosen) {
    CLI::App* const added = family.add_subcommand(name, description);
    const auto json = std::make_shared<bool>(false);
    added->add_flag("--json", *json, "Print one JSON object");
    added->callback(
        [&chosen, command, json] { chosen.run = [command, json](Output& output) { return command(*json, output); }; });
    return added;
}

}  // namespace

void AddDeviceCommands(CLI::App& program, Chosen& chosen) {
    CLI::App* const device = program.add_subcommand("device", "Show the built-in devices and the batteries");
    device->require_subcommand(1);
    device->footer(
        "Examples:\n"
        "  qlctl device list\n"
        "  qlctl device battery --json");

    AddCommand(*device, "list", "Show which devices are there, powered, and enabled in the BIOS", ListDevices, chosen)
        ->footer(
            "The numbers are the machine's own. What cannot be asked is shown as an error in its place.\n\n"
            "Examples:\n"
            "  qlctl device list\n"
            "  qlctl device list --json");

    AddCommand(*device, "battery", "Show the state of both batteries", ShowBatteries, chosen)
        ->footer(
            "The values are the machine's own, in its own units.\n\n"
            "Examples:\n"
            "  qlctl device battery\n"
            "  qlctl device battery --json");
}

}  // namespace quarlin::qlctl
