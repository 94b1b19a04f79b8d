// SPDX-License-Identifier: Apache-2.0
#include "emulator/emulator_control_win.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "scanner/honeywell_state.h"

namespace quarlin::sim {
namespace {

// Another waiter may have got the event: the record is looked at again after this time.
constexpr DWORD kLookAgain = 20;
constexpr UINT kKilled = 99;

std::string Narrow(const std::wstring& text) {
    std::string narrow;
    std::transform(text.begin(), text.end(), std::back_inserter(narrow),
                   [](wchar_t c) { return c < 0x7F ? static_cast<char>(c) : '?'; });
    return narrow;
}

std::wstring OwnFolder() {
    std::vector<wchar_t> path(32768);
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::wstring own(path.data(), length);
    return own.substr(0, own.find_last_of(L'\\') + 1);
}

std::wstring Find(const std::wstring& program) {
    if (program.find_first_of(L"\\/") != std::wstring::npos) {
        return program;
    }
    if (GetFileAttributesW((OwnFolder() + program).c_str()) != INVALID_FILE_ATTRIBUTES) {
        return OwnFolder() + program;
    }
    std::vector<wchar_t> path(32768);
    const DWORD length =
        SearchPathW(nullptr, program.c_str(), nullptr, static_cast<DWORD>(path.size()), path.data(), nullptr);
    if (length == 0 || length >= path.size()) {
        throw EmulatorError("there is no program " + Narrow(program));
    }
    return {path.data(), length};
}

// The scanner is free when a program that held it has ended without a word.
void LetScannerGo() {
    SharedState<HoneywellState> shared;
    if (const SharedState<HoneywellState>::Access scanner(shared); scanner) {
        scanner->heldByEmulator = 0;
    }
}

}  // namespace

EmulatorControl::EmulatorControl()
    : order_(CreateEventW(nullptr, FALSE, FALSE, InstanceName(EmulatorState::kOrderEvent).Text())),
      change_(CreateEventW(nullptr, FALSE, FALSE, InstanceName(EmulatorState::kChangeEvent).Text())) {
    if (order_ == nullptr || change_ == nullptr || !state_.Open()) {
        for (HANDLE const event : {order_, change_}) {
            if (event != nullptr) {
                CloseHandle(event);
            }
        }
        throw EmulatorError("the emulator's shared memory cannot be opened");
    }
}

EmulatorControl::~EmulatorControl() {
    try {
        End();
    } catch (const EmulatorError&) {
        TerminateProcess(process_, kKilled);
        LetScannerGo();
        CloseProcess();
    }
    CloseHandle(order_);
    CloseHandle(change_);
}

void EmulatorControl::Start(const std::wstring& program, const std::wstring& arguments) {
    if (IsRunning()) {
        throw EmulatorError("the emulator is running already");
    }
    CloseProcess();
    const std::wstring path = Find(program);
    std::wstring line = L"\"" + path + L"\" --parent " + std::to_wstring(GetCurrentProcessId()) + L" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    Use([](EmulatorState& state) {
        state.ready = 0;
        state.orders.carriedOut = state.orders.added;
    });
    if (CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started) ==
        FALSE) {
        throw EmulatorError(Narrow(path) + " cannot be started, error " + std::to_string(GetLastError()));
    }
    CloseHandle(started.hThread);
    process_ = started.hProcess;
    processId_ = started.dwProcessId;
    const bool up = WaitUntil([this](const EmulatorState& state) {
        return (state.process == processId_ && state.ready != 0) || !IsRunning();
    });
    if (!up || !IsRunning()) {
        Kill();
        throw EmulatorError(Narrow(path) + " does not come up");
    }
}

bool EmulatorControl::IsRunning() const {
    return process_ != nullptr && WaitForSingleObject(process_, 0) == WAIT_TIMEOUT;
}

void EmulatorControl::End() {
    if (IsRunning()) {
        Put(EmulatorOrder::kEnd);
        if (WaitForSingleObject(process_, kPatience) != WAIT_OBJECT_0) {
            throw EmulatorError("the emulator does not end");
        }
    }
    CloseProcess();
}

void EmulatorControl::Kill() {
    if (process_ == nullptr) {
        return;
    }
    if (IsRunning()) {
        TerminateProcess(process_, kKilled);
        WaitForSingleObject(process_, kPatience);
    }
    Use([this](EmulatorState& state) {
        if (state.process == processId_) {
            state.process = 0;
            state.ready = 0;
            state.window = 0;
            state.orders.carriedOut = state.orders.added;
        }
    });
    LetScannerGo();
    CloseProcess();
}

void EmulatorControl::Give(EmulatorOrder order) {
    WaitForOrder(Put(order));
}

std::uint64_t EmulatorControl::Put(EmulatorOrder order) {
    std::uint64_t number = 0;
    bool added = false;
    Use([&](EmulatorState& state) { added = state.orders.Add(order, number); });
    if (!added) {
        throw EmulatorError("the emulator does not carry out its orders");
    }
    SetEvent(order_);
    return number;
}

void EmulatorControl::WaitForOrder(std::uint64_t number) {
    if (!WaitUntil([number](const EmulatorState& state) { return state.orders.carriedOut > number; })) {
        throw EmulatorError("the emulator does not carry out an order");
    }
}

void EmulatorControl::Use(const std::function<void(EmulatorState&)>& use) {
    const SharedState<EmulatorState>::Access state(state_);
    if (!state) {
        throw EmulatorError("another program keeps the emulator's shared memory to itself");
    }
    use(*state);
}

EmulatorState EmulatorControl::Read() {
    EmulatorState copy;
    Use([&copy](const EmulatorState& state) { copy = state; });
    return copy;
}

bool EmulatorControl::WaitUntil(const std::function<bool(const EmulatorState&)>& wanted, DWORD patience) {
    const ULONGLONG end = GetTickCount64() + patience;
    for (;;) {
        bool isSo = false;
        Use([&](const EmulatorState& state) { isSo = wanted(state); });
        const ULONGLONG now = GetTickCount64();
        if (isSo || now >= end) {
            return isSo;
        }
        WaitForSingleObject(change_, std::min(kLookAgain, static_cast<DWORD>(end - now)));
    }
}

void EmulatorControl::CloseProcess() {
    if (process_ != nullptr) {
        CloseHandle(process_);
        process_ = nullptr;
        processId_ = 0;
    }
}

}  // namespace quarlin::sim
