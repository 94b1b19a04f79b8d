// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "console/output.h"
#include "failure.h"

#include <functional>

namespace CLI {
class App;
}

namespace quarlin::qlctl {

// The command that the command line asks for. Parsing only chooses it; it runs afterwards, so that its failures are
// not taken for errors of the command line.
struct Chosen {
    std::function<ExitStatus(Output&)> run;
};

// One function and one file per family. A new family is one more of each, and one line in main.
void AddInfoCommand(CLI::App& program, Chosen& chosen);
void AddGpsCommands(CLI::App& program, Chosen& chosen);
void AddDeviceCommands(CLI::App& program, Chosen& chosen);
void AddLightCommands(CLI::App& program, Chosen& chosen);
void AddCardCommands(CLI::App& program, Chosen& chosen);
void AddRfidCommands(CLI::App& program, Chosen& chosen);
void AddBarcodeCommands(CLI::App& program, Chosen& chosen);

}  // namespace quarlin::qlctl
