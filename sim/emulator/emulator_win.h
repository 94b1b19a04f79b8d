// SPDX-License-Identifier: Apache-2.0
// The barcode emulator program: it holds the scanner, and hands it over and takes it back through messages.
#pragma once

#include <windows.h>

#include "emulator/emulator_state.h"
#include "scanner/honeywell_state.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {

class Emulator {
  public:
    struct Options {
        bool window = true;
        bool handedOver = false;  // it begins without the scanner
        HANDLE parent = nullptr;  // it ends when this process has ended; it takes the handle over
    };

    explicit Emulator(const Options& options);
    Emulator(const Emulator&) = delete;
    Emulator& operator=(const Emulator&) = delete;
    ~Emulator();

    // Lives until it is told to end. False when the system refuses what it needs.
    bool Run();

  private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    bool Prepare();
    bool OpenWindow();
    void CloseWindow();
    // Dispatches messages and carries out orders until it is to end.
    void Live();
    void DispatchMessages();
    void CarryOutOrders();
    bool CarryOut(EmulatorOrder order);

    LRESULT Answer(EmulatorMessage message, WPARAM wParam, LPARAM lParam);
    LRESULT AnswerConnect();
    LRESULT AnswerState();
    void Register(LPARAM listener);
    void SetConnectState(std::uint32_t state);
    void Notify(EmulatorNotice notice);
    // Does nothing but let time pass, as a busy program would, unless it is to end.
    void BeBusy(DWORD milliseconds);
    void HoldScanner(bool hold);

    void Log(const EmulatorCall& call);
    void TellChange() const { SetEvent(change_); }

    Options options_;
    SharedState<EmulatorState> state_;
    SharedState<HoneywellState> scanner_;
    HANDLE order_ = nullptr;
    HANDLE change_ = nullptr;
    UINT messages_[kEmulatorMessageCount] = {};
    HWND window_ = nullptr;
    bool ending_ = false;
    bool ordered_ = true;  // there may be orders, also such as were given before it started
};

}  // namespace quarlin::sim
