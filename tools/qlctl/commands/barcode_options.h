// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "commands/commands.h"
#include "sdk/barcode_session.h"

namespace quarlin::qlctl {

// What the command line says; texts are without escapes, symbologies are known ones.
struct BarcodeOptions {
    bool json = false;
    Scanners scanners = Scanners::kBuiltIn;
    std::optional<int> count;
    std::optional<double> timeout;
    ScanSettings settings;
    std::vector<const Symbology*> symbologies;
    std::optional<bool> hardwareTrigger;
    std::optional<unsigned> triggerMode;
};

using BarcodeCommand = ExitStatus (*)(const BarcodeOptions&, Output&);

struct BarcodeCommands {
    BarcodeCommand list;
    BarcodeCommand watch;
    BarcodeCommand scan;
    BarcodeCommand edit;
    BarcodeCommand symbologies;
    BarcodeCommand enable;
    BarcodeCommand disable;
    BarcodeCommand trigger;
    BarcodeCommand firmware;
};

// Adds the words and options of `qlctl barcode`.
void AddBarcodeCommandLine(CLI::App& program, Chosen& chosen, const BarcodeCommands& commands);

}  // namespace quarlin::qlctl
