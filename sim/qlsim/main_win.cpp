// SPDX-License-Identifier: Apache-2.0
// qlsim: plays the devices of a portable computer from a scenario file.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <iostream>

#include "core/simulation.h"
#include "edge/arguments_win.h"
#include "edge/command_pipe_win.h"
#include "edge/computer_parts_win.h"
#include "edge/console_stop_win.h"
#include "edge/machine_record_win.h"
#include "edge/serial_port_win.h"
#include "hidbus/hid_socket_win.h"

namespace {

using namespace quarlin::sim;

enum ExitStatus {
    kDone = 0,
    kBadInput = 2,     // arguments or scenario
    kCannotStart = 3,  // a device, the pipe or the log
};

struct Arguments {
    std::string scenario;
    SimulationOptions options;
    std::string pipe = "qlsim";
    std::string logFile;
    bool listDevices = false;
    bool quiet = false;
};

void Describe(CLI::App& app, Arguments& arguments) {
    app.allow_windows_style_options(false);  // a path may begin with a slash
    app.add_option("SCENARIO", arguments.scenario, "scenario file (TOML)");
    app.add_option("--seed", arguments.options.seed, "seed of the run, instead of the scenario's");
    app.add_option("--pipe", arguments.pipe, "name of the command pipe")->capture_default_str();
    app.add_option("--duration", arguments.options.duration, "end after so many seconds of the simulation")
        ->check(CLI::Range(0.0, 1e6));
    app.add_flag("--list-devices", arguments.listDevices,
                 "check the scenario and list its devices; without a scenario, list the kinds of devices");
    app.add_option("--log", arguments.logFile, "write what happens to a file too");
    app.add_flag("--quiet", arguments.quiet, "do not write what happens to standard error");
    app.footer(
        "Examples:\n"
        "  qlsim sim/scenarios/patrol.toml\n"
        "  qlsim patrol.toml --seed 7 --duration 60\n"
        "  qlsim --list-devices patrol.toml\n"
        "While it runs, qlsim-ctl gives it commands; \"qlsim-ctl help\" lists them.\n"
        "Exit status: 0 done, 2 wrong arguments or scenario, 3 a device or the pipe cannot start.");
}

void PrintKinds() {
    for (const DeviceKind& kind : DeviceKinds()) {
        std::cout << kind.name << "  " << kind.summary << "\n";
    }
}

void PrintDevices(const Scenario& scenario) {
    for (const ScenarioDevice& device : scenario.devices) {
        std::cout << device.name << "  " << device.kind << "  " << device.plan->Summary() << "\n";
    }
}

int Play(Arguments& arguments, Scenario scenario) {
    Log log;
    std::ofstream logFile;
    if (!arguments.quiet) {
        log.AddSink(std::cerr);
    }
    if (!arguments.logFile.empty()) {
        logFile.open(std::filesystem::u8path(arguments.logFile), std::ios::binary);
        if (!logFile) {
            std::cerr << "qlsim: the log \"" << arguments.logFile << "\" cannot be written\n";
            return kCannotStart;
        }
        log.AddSink(logFile);
    }
    arguments.options.makePort = MakeSerialPort;
    arguments.options.makeHidSocket = MakeHidSocket;
    arguments.options.machineRecords = MachineRecords();
    arguments.options.computer = PartsOfThisComputer();
    Simulation simulation(std::move(scenario), arguments.options, log);
    const ConsoleStop consoleStop([&simulation] { simulation.RequestEnd(); });
    try {
        simulation.Start();
        // After the devices, so that whoever reaches the pipe finds them at work.
        const CommandPipe pipe(arguments.pipe,
                               [&simulation](const std::string& line) { return simulation.Execute(line).Line(); });
        log.Write(0, "qlsim", "playing " + arguments.scenario + ", commands on \\\\.\\pipe\\" + arguments.pipe);
        simulation.WaitForEnd();
    } catch (const std::runtime_error& error) {
        std::cerr << "qlsim: " << error.what() << "\n";
        return kCannotStart;
    }
    simulation.Stop();
    return kDone;
}

}  // namespace

int main() {
    CLI::App app("Plays the devices of a portable computer from a scenario file.", "qlsim");
    Arguments arguments;
    Describe(app, arguments);
    try {
        app.parse(ReversedArguments());
        if (arguments.scenario.empty()) {
            if (!arguments.listDevices) {
                throw CLI::RequiredError("SCENARIO");
            }
            PrintKinds();
            return kDone;
        }
        Scenario scenario = LoadScenario(arguments.scenario);
        if (arguments.listDevices) {
            PrintDevices(scenario);
            return kDone;
        }
        return Play(arguments, std::move(scenario));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kDone : kBadInput;
    } catch (const ScenarioError& error) {
        std::cerr << error.what() << "\n";
        return kBadInput;
    }
}
