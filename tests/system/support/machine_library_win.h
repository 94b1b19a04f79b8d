// SPDX-License-Identifier: Apache-2.0
// The simulated machine's libraries for device checks and for the camera light, steered by a test: what they know, what
// they answer, which calls they got, and which of their files the system finds.
#pragma once

#include <windows.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "shared/call_log.h"
#include "shared/shared_section_win.h"
#include "support/owners_win.h"

namespace quarlin::test {

// A machine library's record, for this test alone: as on a machine that nobody has touched, and so again at the end.
template <typename State>
class MachineLibrary {
  public:
    using Access = typename sim::SharedState<State>::Access;

    // Waits for its turn, at most a minute; throws std::runtime_error when it does not come.
    MachineLibrary() : turn_(CreateMutexW(nullptr, FALSE, State::kTestMutex)) {
        const DWORD result = WaitForSingleObject(turn_.Get(), 60000);
        if ((result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) || !shared_.Open()) {
            throw std::runtime_error("the machine library's record is not to be had");
        }
        Use()->SetDefaults();
    }
    MachineLibrary(const MachineLibrary&) = delete;
    MachineLibrary& operator=(const MachineLibrary&) = delete;
    ~MachineLibrary() {
        if (const Access state(shared_); state) {
            state->SetDefaults();
        }
        ReleaseMutex(turn_.Get());
    }

    // The record, held to the end of the expression or scope. The library waits meanwhile: no call of it in between.
    Access Use() { return Access(shared_); }

    // What a function answers from now on; 0: what it finds.
    template <typename Function>
    void Answer(Function function, int status) {
        Use()->answers[static_cast<std::size_t>(function)] = status;
    }

    // The calls since the last time, in order. They are forgotten.
    std::vector<sim::LoggedCall> TakeCalls() {
        const Access state(shared_);
        std::vector<sim::LoggedCall> calls;
        for (auto number = state->log.First(); number < state->log.count; ++number) {
            calls.push_back(state->log.At(number));
        }
        state->log.Clear();
        return calls;
    }

  private:
    UniqueHandle turn_;
    sim::SharedState<State> shared_;
};

// The system looks for libraries in this folder before it looks at the PATH.
class LibraryFolder {
  public:
    explicit LibraryFolder(const std::wstring& folder) { SetDllDirectoryW(folder.c_str()); }
    LibraryFolder(const LibraryFolder&) = delete;
    LibraryFolder& operator=(const LibraryFolder&) = delete;
    ~LibraryFolder() { SetDllDirectoryW(nullptr); }
};

// The folder with the variant of a machine library that lacks a function; it lies beside that of the tests.
inline std::wstring FolderWithout(const std::string& function) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    for (int i = 0; i < 2; ++i) {
        path.resize(path.find_last_of(L"\\/"));
    }
    return path + L"\\sim\\without\\" + std::wstring(function.begin(), function.end());
}

// How often a library is loaded in this process. It is not, afterwards.
inline int UnloadWholly(const wchar_t* library) {
    int loads = 0;
    while (HMODULE const module = GetModuleHandleW(library)) {
        FreeLibrary(module);
        ++loads;
    }
    return loads;
}

}  // namespace quarlin::test
