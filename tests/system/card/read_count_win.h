// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <atomic>

#include "support/import_hook_win.h"
#include "support/wait_win.h"

namespace quarlin::test {

// Counts the reads that the library begins. A report that it is done with has been followed by a new read, whatever has
// become of the report. One count at a time.
class ReadCount {
  public:
    ReadCount() { reads_ = 0; }

    int Reads() const { return reads_; }
    // Throws std::runtime_error when they do not come.
    void AwaitReads(int count) const {
        Await("the library's reads", [&] { return reads_ >= count; });
    }

  private:
    static BOOL WINAPI CountedRead(HANDLE file, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
        const BOOL result = ReadFile(file, buffer, size, read, overlapped);
        const DWORD error = GetLastError();
        ++reads_;
        SetLastError(error);
        return result;
    }

    inline static std::atomic<int> reads_ = 0;
    ImportHook hook_{"KERNEL32.dll", "ReadFile", &CountedRead};
};

}  // namespace quarlin::test
