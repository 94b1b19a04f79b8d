// SPDX-License-Identifier: Apache-2.0
#include "emulator/emulator_win.h"

namespace quarlin::sim {
namespace {

using State = SharedState<EmulatorState>::Access;

// Whoever waits for a change while the program is busy looks again.
constexpr DWORD kWakes = 2;

}  // namespace

Emulator::Emulator(const Options& options) : options_(options) {
}

Emulator::~Emulator() {
    CloseWindow();
    HoldScanner(false);
    if (const State state(state_); state && state->process == GetCurrentProcessId()) {
        state->process = 0;
        state->ready = 0;
        state->listener = 0;
        state->connecting = 0;
        // Nobody is there any more to carry them out.
        state->orders.carriedOut = state->orders.added;
    }
    TellChange();
    for (HANDLE const handle : {order_, change_, options_.parent}) {
        if (handle != nullptr) {
            CloseHandle(handle);
        }
    }
}

bool Emulator::Run() {
    if (!Prepare() || (options_.window && !OpenWindow())) {
        return false;
    }
    if (const State state(state_); state) {
        state->ready = 1;
    }
    TellChange();
    Live();
    return true;
}

bool Emulator::Prepare() {
    order_ = CreateEventW(nullptr, FALSE, FALSE, InstanceName(EmulatorState::kOrderEvent).Text());
    change_ = CreateEventW(nullptr, FALSE, FALSE, InstanceName(EmulatorState::kChangeEvent).Text());
    for (std::size_t i = 0; i < kEmulatorMessageCount; ++i) {
        messages_[i] = RegisterWindowMessageW(kEmulatorMessageNames[i]);
    }
    const std::uint32_t begin = options_.handedOver ? kEmulatorHandedOver : kEmulatorTookBack;
    {
        const State state(state_);
        if (!state || order_ == nullptr || change_ == nullptr) {
            return false;
        }
        state->process = GetCurrentProcessId();
        state->window = 0;
        state->listener = 0;
        state->connectState = begin;
        state->connecting = 0;
        state->polls = 0;
    }
    HoldScanner(!options_.handedOver);
    return true;
}

bool Emulator::OpenWindow() {
    if (window_ != nullptr) {
        return true;
    }
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kEmulatorWindowClass;
    if (RegisterClassExW(&windowClass) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
        return false;
    }
    // Never shown; programs find it by its class all the same.
    window_ = CreateWindowExW(0, kEmulatorWindowClass, L"Barcode Emulator", WS_OVERLAPPEDWINDOW, 0, 0, 0, 0, nullptr,
                              nullptr, windowClass.hInstance, this);
    if (const State state(state_); state) {
        state->window = reinterpret_cast<std::uintptr_t>(window_);
    }
    return window_ != nullptr;
}

void Emulator::CloseWindow() {
    if (window_ == nullptr) {
        return;
    }
    DestroyWindow(window_);
    window_ = nullptr;
    if (const State state(state_); state) {
        state->window = 0;
    }
}

void Emulator::Live() {
    // The parent is the last one, so that it can be left out.
    HANDLE const wakers[kWakes] = {order_, options_.parent};
    const DWORD count = options_.parent != nullptr ? 2 : 1;
    while (!ending_) {
        CarryOutOrders();
        if (ending_) {
            return;
        }
        const DWORD woken = MsgWaitForMultipleObjectsEx(count, wakers, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        if (woken == WAIT_OBJECT_0) {
            ordered_ = true;
        } else if (woken == WAIT_OBJECT_0 + count) {
            DispatchMessages();
        } else {
            ending_ = true;
        }
    }
}

void Emulator::DispatchMessages() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        DispatchMessageW(&message);
    }
}

void Emulator::CarryOutOrders() {
    while (ordered_ && !ending_) {
        EmulatorOrder order{};
        {
            const State state(state_);
            if (!state || state->orders.carriedOut >= state->orders.added) {
                ordered_ = false;
                return;
            }
            order = state->orders.orders[state->orders.carriedOut % EmulatorOrders::kRoom];
        }
        ending_ = !CarryOut(order);
        if (const State state(state_); state) {
            ++state->orders.carriedOut;
        }
        TellChange();
    }
}

// False when it is to end.
bool Emulator::CarryOut(EmulatorOrder order) {
    EmulatorNotice notice = EmulatorNotice::kNone;
    if (const State state(state_); state) {
        notice = state->settings.notice;
    }
    switch (order) {
        case EmulatorOrder::kTakeBack:
            SetConnectState(kEmulatorTookBack);
            Notify(notice);
            return true;
        case EmulatorOrder::kHandOver:
            SetConnectState(kEmulatorHandedOver);
            Notify(notice);
            return true;
        case EmulatorOrder::kNotify:
            Notify(notice);
            return true;
        case EmulatorOrder::kOpenWindow:
            return OpenWindow();
        case EmulatorOrder::kCloseWindow:
            CloseWindow();
            return true;
        case EmulatorOrder::kEnd:
            return false;
    }
    return true;
}

LRESULT CALLBACK Emulator::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* const create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    if (auto* const emulator = reinterpret_cast<Emulator*>(GetWindowLongPtrW(window, GWLP_USERDATA))) {
        for (std::size_t i = 0; i < kEmulatorMessageCount; ++i) {
            if (message == emulator->messages_[i]) {
                return emulator->Answer(static_cast<EmulatorMessage>(i), wParam, lParam);
            }
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT Emulator::Answer(EmulatorMessage message, WPARAM wParam, LPARAM lParam) {
    EmulatorCall call{};
    call.message = message;
    call.wParam = wParam;
    call.lParam = lParam;
    call.milliseconds = GetTickCount64();
    switch (message) {
        case EmulatorMessage::kConnect:
            call.answer = AnswerConnect();
            break;
        case EmulatorMessage::kGetConnectState:
            call.answer = AnswerState();
            break;
        case EmulatorMessage::kStateRegist:
            Register(lParam);
            break;
        case EmulatorMessage::kOnConnectState:
            break;  // nobody sends it here
    }
    Log(call);
    return static_cast<LRESULT>(call.answer);
}

LRESULT Emulator::AnswerConnect() {
    EmulatorSettings settings = EmulatorState::DefaultSettings();
    if (const State state(state_); state) {
        settings = state->settings;
    }
    BeBusy(settings.connectDelay);
    Notify(settings.noticeInConnect);
    if (const State state(state_); state && settings.connectAnswer == 0) {
        state->polls = 0;
        state->connecting = state->connectState != kEmulatorHandedOver ? 1 : 0;
    }
    return static_cast<LRESULT>(settings.connectAnswer);
}

LRESULT Emulator::AnswerState() {
    DWORD delay = 0;
    if (const State state(state_); state) {
        delay = state->settings.stateDelay;
    }
    BeBusy(delay);
    bool handOver = false;
    LRESULT answer = 0;
    if (const State state(state_); state) {
        const EmulatorSettings& settings = state->settings;
        if (state->connecting != 0) {
            ++state->polls;
            handOver = settings.handOverAtPoll != EmulatorSettings::kNever && state->polls >= settings.handOverAtPoll;
        }
        answer = static_cast<LRESULT>(state->connecting != 0 && !handOver ? settings.stateBefore : state->connectState);
    }
    if (handOver) {
        SetConnectState(kEmulatorHandedOver);
        answer = kEmulatorHandedOver;
    }
    return answer;
}

void Emulator::Register(LPARAM listener) {
    if (const State state(state_); state) {
        state->listener = static_cast<std::uint64_t>(listener);
    }
}

// The scanner is free before anybody is told so, and held before anybody is told that.
void Emulator::SetConnectState(std::uint32_t connectState) {
    HoldScanner(connectState != kEmulatorHandedOver);
    if (const State state(state_); state) {
        state->connectState = connectState;
        state->connecting = 0;
    }
}

void Emulator::Notify(EmulatorNotice notice) {
    HWND listener = nullptr;
    DWORD timeout = 0;
    if (const State state(state_); state) {
        listener = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(state->listener));
        timeout = state->settings.noticeTimeout;
    }
    if (listener == nullptr || notice == EmulatorNotice::kNone) {
        return;
    }
    EmulatorCall call{};
    call.message = EmulatorMessage::kOnConnectState;
    call.milliseconds = GetTickCount64();
    const UINT message = messages_[static_cast<std::size_t>(EmulatorMessage::kOnConnectState)];
    if (notice == EmulatorNotice::kPosted) {
        call.failed = PostMessageW(listener, message, 0, 0) != FALSE ? 0 : 1;
    } else {
        // With a time-out, so that a listener that waits for somebody who waits for the emulator is found out.
        DWORD_PTR answer = 0;
        call.failed = SendMessageTimeoutW(listener, message, 0, 0, SMTO_NORMAL, timeout, &answer) != 0 ? 0 : 1;
        call.answer = static_cast<std::int64_t>(answer);
    }
    Log(call);
}

void Emulator::BeBusy(DWORD milliseconds) {
    HANDLE const wakers[kWakes] = {order_, options_.parent};
    const DWORD count = options_.parent != nullptr ? 2 : 1;
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (ULONGLONG now = GetTickCount64(); now < end; now = GetTickCount64()) {
        const DWORD woken = WaitForMultipleObjects(count, wakers, FALSE, static_cast<DWORD>(end - now));
        if (woken == WAIT_TIMEOUT) {
            return;
        }
        ordered_ = true;
        const State state(state_);
        const bool parentGone = woken != WAIT_OBJECT_0;
        if (parentGone || !state) {
            ending_ = true;
            return;
        }
        for (std::uint64_t i = state->orders.carriedOut; i < state->orders.added; ++i) {
            if (state->orders.orders[i % EmulatorOrders::kRoom] == EmulatorOrder::kEnd) {
                return;
            }
        }
    }
}

void Emulator::HoldScanner(bool hold) {
    if (const SharedState<HoneywellState>::Access scanner(scanner_); scanner) {
        scanner->heldByEmulator = hold ? 1 : 0;
    }
}

void Emulator::Log(const EmulatorCall& call) {
    if (const State state(state_); state) {
        EmulatorCall& logged = state->log.calls[state->log.count++ % EmulatorCalls::kRoom];
        logged = call;
        logged.answered = GetTickCount64();
    }
    TellChange();
}

}  // namespace quarlin::sim
