// SPDX-License-Identifier: Apache-2.0
#include "edge/console_stop_win.h"

#include <windows.h>
#include <condition_variable>
#include <mutex>

namespace quarlin::sim {
namespace {

// The system's handler takes no context, hence a state of the whole process.
std::mutex stateLock;
std::condition_variable ended;
std::function<void()> stopFunction;

BOOL WINAPI OnConsoleEvent(DWORD event) {
    std::unique_lock lock(stateLock);
    if (!stopFunction) {
        return FALSE;
    }
    stopFunction();
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        // The process is ended as soon as this returns.
        ended.wait_for(lock, std::chrono::seconds(4), [] { return !stopFunction; });
    }
    return TRUE;
}

}  // namespace

ConsoleStop::ConsoleStop(std::function<void()> stop) {
    const std::lock_guard hold(stateLock);
    stopFunction = std::move(stop);
    // Whoever started this program in the background may have switched Ctrl-C off for it, and that is inherited.
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

ConsoleStop::~ConsoleStop() {
    SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
    const std::lock_guard hold(stateLock);
    stopFunction = nullptr;
    ended.notify_all();
}

}  // namespace quarlin::sim
