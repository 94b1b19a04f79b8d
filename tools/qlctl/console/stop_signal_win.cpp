// SPDX-License-Identifier: Apache-2.0
#include "console/stop_signal.h"

#include "failure.h"

#include <windows.h>
#include <algorithm>
#include <string>

namespace quarlin::qlctl {
namespace {

// Windows ends the process five seconds after the console was closed, or as soon as the handler returns.
constexpr DWORD kCloseGraceMs = 4500;

// Process-wide, because the console's handler gets no argument. They live until the process ends: the handler runs on
// a thread of its own and may be at work while the StopSignal goes away.
HANDLE stopEvent = nullptr;
HANDLE finishedEvent = nullptr;

BOOL WINAPI OnConsoleControl(DWORD control) {
    SetEvent(stopEvent);
    if (control != CTRL_C_EVENT && control != CTRL_BREAK_EVENT) {
        WaitForSingleObject(finishedEvent, kCloseGraceMs);
    }
    return TRUE;
}

void Require(bool succeeded, const char* step) {
    if (!succeeded) {
        throw Failure(ExitStatus::kSystem,
                      std::string(step) + " failed with Windows error " + std::to_string(GetLastError()));
    }
}

}  // namespace

StopSignal::StopSignal() {
    stopEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    Require(stopEvent != nullptr, "CreateEvent");
    finishedEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    Require(finishedEvent != nullptr, "CreateEvent");
    Require(SetConsoleCtrlHandler(OnConsoleControl, TRUE) != FALSE, "SetConsoleCtrlHandler");
}

StopSignal::~StopSignal() {
    SetConsoleCtrlHandler(OnConsoleControl, FALSE);
    SetEvent(finishedEvent);
}

bool StopSignal::Wait(std::chrono::milliseconds atMost) const {
    const auto ms = std::clamp<std::chrono::milliseconds::rep>(atMost.count(), 0, INFINITE - 1);
    return WaitForSingleObject(stopEvent, static_cast<DWORD>(ms)) == WAIT_OBJECT_0;
}

}  // namespace quarlin::qlctl
