// SPDX-License-Identifier: Apache-2.0
#include "edge/computer_parts_win.h"

#include <windows.h>

#include "core/device.h"
#include "edge/system_error_win.h"
#include "emulator/emulator_control_win.h"

namespace quarlin::sim {
namespace {

// Says what the control says in the words of devices.
template <typename Work>
auto Try(Work&& work) {
    try {
        return work();
    } catch (const EmulatorError& error) {
        throw DeviceError(error.what());
    }
}

class ControlledEmulator final : public EmulatorProgram {
  public:
    void Start(const std::string& program, const std::vector<std::string>& arguments) override {
        std::string line;
        for (const std::string& argument : arguments) {
            line += argument + " ";
        }
        Try([&] { control_.Start(Wide(program), Wide(line)); });
    }
    bool IsRunning() override { return control_.IsRunning(); }
    void End() override {
        Try([&] { control_.End(); });
    }
    void Kill() override {
        Try([&] { control_.Kill(); });
    }
    void Give(EmulatorOrder order) override {
        Try([&] { control_.Give(order); });
    }
    void Use(const std::function<void(EmulatorState&)>& use) override {
        Try([&] { control_.Use(use); });
    }

  private:
    EmulatorControl control_;
};

}  // namespace

std::unique_ptr<EmulatorProgram> MakeEmulatorProgram() {
    return Try([] { return std::make_unique<ControlledEmulator>(); });
}

}  // namespace quarlin::sim
