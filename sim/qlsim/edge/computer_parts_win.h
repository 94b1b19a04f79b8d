// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "scanner/computer_parts.h"

namespace quarlin::sim {

std::unique_ptr<ListedPort> ListPort(const std::string& friendlyName);
std::unique_ptr<ProductName> FirmwareProductName();
std::unique_ptr<EmulatorProgram> MakeEmulatorProgram();

// All of them, on this machine.
inline ComputerParts PartsOfThisComputer() {
    return {ListPort, FirmwareProductName, MakeEmulatorProgram};
}

}  // namespace quarlin::sim
