// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <atomic>

#include "support/import_hook_win.h"

namespace quarlin::test {

// Notes the completion port of the reader that the library opened last, and the file bound to it. One watch at a time.
class PortWatch {
  public:
    PortWatch() {
        port_ = nullptr;
        file_ = nullptr;
    }

    HANDLE Port() const { return port_; }
    HANDLE File() const { return file_; }

  private:
    static HANDLE WINAPI WatchedPort(HANDLE file, HANDLE existing, ULONG_PTR key, DWORD threads) {
        HANDLE const port = CreateIoCompletionPort(file, existing, key, threads);
        port_ = port;
        file_ = file;
        return port;
    }

    inline static std::atomic<HANDLE> port_ = nullptr;
    inline static std::atomic<HANDLE> file_ = nullptr;
    ImportHook hook_{"KERNEL32.dll", "CreateIoCompletionPort", &WatchedPort};
};

}  // namespace quarlin::test
