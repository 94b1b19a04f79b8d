// SPDX-License-Identifier: Apache-2.0
#include "bcr/emulator_program_win.h"

#include "bcr/window_messages_win.h"
#include "core/device_owners_win.h"

#include <windows.h>

#include <psapi.h>
#include <array>
#include <string_view>

namespace quarlin::bcr {
namespace {

constexpr std::wstring_view kProgram = L"SCN2D_Emu_USB.exe";
constexpr const wchar_t* kWindowClass = L"Norvane_SCN2D_Emu_Class";

constexpr WPARAM kConnect = 3;

// An emulator may take its time, but one that is stuck must not take ours for good.
constexpr UINT kPatience = 60000;

bool IsEmulator(DWORD processId) {
    const KernelHandle process(nullptr, OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
    std::array<HMODULE, 1> program{};
    DWORD needed = 0;
    if (!process.IsValid() || !K32EnumProcessModules(process.Get(), program.data(), sizeof program, &needed)) {
        return false;
    }
    std::array<wchar_t, 260> name{};
    const DWORD length =
        K32GetModuleBaseNameW(process.Get(), program.front(), name.data(), static_cast<DWORD>(name.size()));
    return std::wstring_view(name.data(), length) == kProgram;
}

std::optional<std::intptr_t> Ask(void* window, UINT message, WPARAM wParam) {
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(static_cast<HWND>(window), message, wParam, 0, SMTO_NORMAL, kPatience, &answer) == 0) {
        return std::nullopt;
    }
    return static_cast<std::intptr_t>(answer);
}

}  // namespace

bool RunningEmulator::IsRunning() {
    std::array<DWORD, 1024> processes{};
    DWORD bytes = 0;
    if (!K32EnumProcesses(processes.data(), sizeof processes, &bytes)) {
        return false;
    }
    for (std::size_t i = 0; i < bytes / sizeof(DWORD); ++i) {
        if (IsEmulator(processes[i])) {
            return true;
        }
    }
    return false;
}

void* RunningEmulator::Window() {
    return FindWindowW(kWindowClass, nullptr);
}

std::optional<std::intptr_t> RunningEmulator::AskForScanner(void* window) {
    return Ask(window, windowMessages.emulatorConnect, kConnect);
}

std::optional<std::intptr_t> RunningEmulator::ConnectState(void* window) {
    return Ask(window, windowMessages.emulatorGetConnectState, 0);
}

void RunningEmulator::Register(void* window, void* listener) {
    PostMessageW(static_cast<HWND>(window), windowMessages.emulatorStateRegist, 0, reinterpret_cast<LPARAM>(listener));
}

}  // namespace quarlin::bcr
