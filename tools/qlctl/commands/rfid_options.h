// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "commands/commands.h"
#include "sdk/rfid_reader.h"

namespace quarlin::qlctl {

// What the command line says; hex texts have been checked.
struct RfidOptions {
    bool json = false;
    std::optional<double> timeout;
    int repeat = 1;  // 0: no end
    double interval = 0.5;
    std::string epc;
    std::string password = "00000000";
    TagPlace place;
    int count = 1;
    std::string data;
    unsigned lockParameter1 = 0;
    unsigned lockParameter2 = 0;
    std::optional<unsigned> power;
    QueryChange query;
};

using RfidCommand = ExitStatus (*)(const RfidOptions&, Output&);

struct RfidCommands {
    RfidCommand inventory;
    RfidCommand read;
    RfidCommand write;
    RfidCommand lock;
    RfidCommand kill;
    RfidCommand power;
    RfidCommand query;
};

// Adds the words and options of `qlctl rfid`.
void AddRfidCommandLine(CLI::App& program, Chosen& chosen, const RfidCommands& commands);

}  // namespace quarlin::qlctl
