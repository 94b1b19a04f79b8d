// SPDX-License-Identifier: Apache-2.0
// The emulator program as a program meets it that wants the scanner: its window, its messages, and a listener window of
// one's own.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "emulator/emulator_control_win.h"
#include "scanner/honeywell_state.h"

namespace quarlin::sim::testing {

// The folder with the programs of the simulated machine; it lies beside that of the tests.
std::wstring SimFolder();

// A window that nobody sees, on a thread of its own, and what it is told.
class ListenerWindow {
  public:
    using Answer = std::function<LRESULT()>;

    // `answer` is called on the window's thread with each notice.
    explicit ListenerWindow(Answer answer = [] { return LRESULT{0}; });
    ListenerWindow(const ListenerWindow&) = delete;
    ListenerWindow& operator=(const ListenerWindow&) = delete;
    ~ListenerWindow();

    HWND Handle() const { return window_; }
    int Notices() const { return notices_; }
    // False when so many do not come within the test's patience.
    bool WaitForNotices(int count) const;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Run(std::promise<HWND>& made);

    Answer answer_;
    UINT notice_;
    std::atomic<int> notices_ = 0;
    HANDLE told_;
    HWND window_ = nullptr;
    std::thread thread_;
};

// The machine's emulator, to be started by the test. Nobody else has one meanwhile.
class EmulatorWorld : public ::testing::Test {
  protected:
    static HWND FindEmulator() { return FindWindowW(kEmulatorWindowClass, nullptr); }
    static LRESULT Send(EmulatorMessage message, WPARAM wParam = 0, LPARAM lParam = 0);
    static LRESULT Connect() { return Send(EmulatorMessage::kConnect, 3); }
    static LRESULT Poll() { return Send(EmulatorMessage::kGetConnectState); }
    // Returns when the emulator has noted it.
    void Register(const ListenerWindow& listener);

    void Start(const std::wstring& arguments = {}) { emulator_.Start(L"SCN2D_Emu_USB.exe", arguments); }
    bool ScannerIsHeld();
    // The messages that the emulator got or sent, oldest first.
    std::vector<EmulatorCall> Calls();

    SharedState<HoneywellState> scanner_;
    EmulatorControl emulator_;
};

}  // namespace quarlin::sim::testing
