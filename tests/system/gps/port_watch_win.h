// SPDX-License-Identifier: Apache-2.0
// Looks at every system call that the library makes to open and close a port, with its arguments, and fails single
// ones. One watch at a time. The calls go through to the system unless said otherwise.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/import_hook_win.h"

namespace quarlin::test {

class PortWatch {
  public:
    PortWatch();
    PortWatch(const PortWatch&) = delete;
    PortWatch& operator=(const PortWatch&) = delete;
    ~PortWatch();

    // Names of the calls, in their order. CloseHandle and WaitForSingleObject are told with what they were for: "port",
    // "thread", or nothing when it was another object.
    std::vector<std::string> calls;

    struct FileOpening {
        std::string name;
        DWORD access;
        DWORD sharing;
        const void* security;
        DWORD disposition;
        DWORD flags;
        HANDLE templateFile;
        HANDLE result;
    };
    std::vector<FileOpening> opened;

    struct ThreadStart {
        const void* security;
        SIZE_T stackSize;
        bool hasProcedure;
        bool hasArgument;
        DWORD flags;
        bool wantsId;
        HANDLE result;
    };
    std::vector<ThreadStart> threads;

    std::vector<DCB> states;
    std::vector<COMMTIMEOUTS> timeouts;
    std::vector<DWORD> purges;
    std::vector<DWORD> waits;  // milliseconds

    // The call of this name fails with an error, without reaching the system.
    std::string failing;
    // What GetCommState tells instead of the port's own settings. SetCommState is then not passed on.
    std::optional<DCB> toldState;

  private:
    std::vector<std::unique_ptr<ImportHook>> hooks_;
};

}  // namespace quarlin::test
