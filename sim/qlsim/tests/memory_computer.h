// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/device.h"
#include "scanner/computer_parts.h"

namespace quarlin::sim::testing {

// A computer that has only what the test sees.
struct MemoryComputer {
    std::vector<std::string> ports;  // in the list of devices
    std::optional<std::string> productName = "TEST-1";
    int productNameWrites = 0;

    EmulatorState emulator;
    bool emulatorRuns = false;
    bool emulatorCannotStart = false;
    bool emulatorDoesNotEnd = false;
    std::vector<std::string> emulatorStarts;  // command lines
    std::vector<EmulatorOrder> emulatorOrders;
    int emulatorKills = 0;

    MemoryComputer() { emulator.SetDefaults(); }
    ComputerParts Parts();
};

class MemoryPortInList final : public ListedPort {
  public:
    MemoryPortInList(MemoryComputer& computer, std::string name) : computer_(computer), name_(std::move(name)) {
        computer_.ports.push_back(name_);
    }
    MemoryPortInList(const MemoryPortInList&) = delete;
    MemoryPortInList& operator=(const MemoryPortInList&) = delete;
    ~MemoryPortInList() override { std::erase(computer_.ports, name_); }

  private:
    MemoryComputer& computer_;
    std::string name_;
};

class MemoryProductName final : public ProductName {
  public:
    explicit MemoryProductName(MemoryComputer& computer) : computer_(computer) {}

    std::optional<std::string> Read() override { return computer_.productName; }
    void Write(const std::optional<std::string>& name) override {
        computer_.productName = name;
        ++computer_.productNameWrites;
    }

  private:
    MemoryComputer& computer_;
};

class MemoryEmulatorProgram final : public EmulatorProgram {
  public:
    explicit MemoryEmulatorProgram(MemoryComputer& computer) : computer_(computer) {}

    void Start(const std::string& program, const std::vector<std::string>& arguments) override {
        if (computer_.emulatorCannotStart) {
            throw DeviceError("there is no program " + program);
        }
        std::string line = program;
        for (const std::string& argument : arguments) {
            line += " " + argument;
        }
        computer_.emulatorStarts.push_back(line);
        computer_.emulatorRuns = true;
    }
    bool IsRunning() override { return computer_.emulatorRuns; }
    void End() override {
        if (computer_.emulatorDoesNotEnd) {
            throw DeviceError("the emulator does not end");
        }
        computer_.emulatorRuns = false;
    }
    void Kill() override {
        ++computer_.emulatorKills;
        computer_.emulatorRuns = false;
    }
    void Give(EmulatorOrder order) override { computer_.emulatorOrders.push_back(order); }
    void Use(const std::function<void(EmulatorState&)>& use) override { use(computer_.emulator); }

  private:
    MemoryComputer& computer_;
};

inline ComputerParts MemoryComputer::Parts() {
    return {[this](const std::string& name) { return std::make_unique<MemoryPortInList>(*this, name); },
            [this] { return std::make_unique<MemoryProductName>(*this); },
            [this] { return std::make_unique<MemoryEmulatorProgram>(*this); }};
}

}  // namespace quarlin::sim::testing
