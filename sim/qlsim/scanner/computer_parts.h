// SPDX-License-Identifier: Apache-2.0
// What a scanner changes on the computer beside its library's record. Each of these throws DeviceError when the system
// refuses.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "emulator/emulator_state.h"

namespace quarlin::sim {

// A serial port in the list of devices, with the name that people see. Nothing can be read from it. It is there as long
// as this lives.
class ListedPort {
  public:
    virtual ~ListedPort() = default;
};

// The product name that the firmware gives; nothing: it gives none.
class ProductName {
  public:
    virtual ~ProductName() = default;

    virtual std::optional<std::string> Read() = 0;
    virtual void Write(const std::optional<std::string>& name) = 0;
};

// The barcode emulator program.
class EmulatorProgram {
  public:
    virtual ~EmulatorProgram() = default;

    // Returns when it has come up. The arguments are those of its command line.
    virtual void Start(const std::string& program, const std::vector<std::string>& arguments) = 0;
    virtual bool IsRunning() = 0;
    // Both return when it has ended, and do nothing when it does not run. Kill lets it tidy nothing up.
    virtual void End() = 0;
    virtual void Kill() = 0;
    // Returns when it has been carried out.
    virtual void Give(EmulatorOrder order) = 0;
    // Runs a function while nobody else touches the record.
    virtual void Use(const std::function<void(EmulatorState&)>& use) = 0;
};

struct ComputerParts {
    std::function<std::unique_ptr<ListedPort>(const std::string& friendlyName)> listPort;
    std::function<std::unique_ptr<ProductName>()> productName;
    std::function<std::unique_ptr<EmulatorProgram>()> emulator;
};

}  // namespace quarlin::sim
