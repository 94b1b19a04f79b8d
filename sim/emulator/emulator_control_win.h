// SPDX-License-Identifier: Apache-2.0
// Starts the barcode emulator program, steers it and sees what it does. For qlsim and for tests.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

#include "emulator/emulator_state.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {

class EmulatorError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// All functions throw EmulatorError when something cannot be done, or is not done in time. One thread at a time.
class EmulatorControl {
  public:
    static constexpr DWORD kPatience = 20000;

    EmulatorControl();
    EmulatorControl(const EmulatorControl&) = delete;
    EmulatorControl& operator=(const EmulatorControl&) = delete;
    // Ends the program, when it is this one that started it.
    ~EmulatorControl();

    // Starts a program by its path, or by its name when it lies beside this one or on the search path, and returns when
    // it has come up. `arguments` as on its command line. It ends with this process at the latest.
    void Start(const std::wstring& program, const std::wstring& arguments = {});
    // The program that this one started is alive.
    bool IsRunning() const;
    // Its process id; 0 when none was started.
    DWORD ProcessId() const { return processId_; }
    // Returns when the program has ended. Does nothing when none runs.
    void End();
    // Ends it as a crash would, with nothing tidied up.
    void Kill();

    // Returns when it has been carried out, a sent notice included.
    void Give(EmulatorOrder order);
    // Returns at once; the number is for WaitForOrder.
    std::uint64_t Put(EmulatorOrder order);
    void WaitForOrder(std::uint64_t number);

    void Use(const std::function<void(EmulatorState&)>& use);
    // A copy of the record.
    EmulatorState Read();
    // Waits until the record is as wanted; false when it is not in time.
    bool WaitUntil(const std::function<bool(const EmulatorState&)>& wanted, DWORD patience = kPatience);

  private:
    void CloseProcess();

    SharedState<EmulatorState> state_;
    HANDLE order_;
    HANDLE change_;
    HANDLE process_ = nullptr;
    DWORD processId_ = 0;
};

}  // namespace quarlin::sim
