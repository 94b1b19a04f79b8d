// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/engine_system.h"

namespace quarlin::bcr {

// The emulator program, by its process and its window.
class RunningEmulator final : public EmulatorProgram {
  public:
    bool IsRunning() override;
    void* Window() override;
    std::optional<std::intptr_t> AskForScanner(void* window) override;
    std::optional<std::intptr_t> ConnectState(void* window) override;
    void Register(void* window, void* listener) override;
};

}  // namespace quarlin::bcr
