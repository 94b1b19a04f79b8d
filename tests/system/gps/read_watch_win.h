// SPDX-License-Identifier: Apache-2.0
// Looks at how the library's reading thread reads, and answers for the port when a test wants it. One watch at a time;
// begin it before the GPS is enabled and end it after the GPS was disabled.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "support/import_hook_win.h"

namespace quarlin::test {

class ReadWatch {
  public:
    // A read that the port does not see: it gives no byte and leaves an error.
    struct Answer {
        BOOL result;
        DWORD error;
    };

    ReadWatch();
    ReadWatch(const ReadWatch&) = delete;
    ReadWatch& operator=(const ReadWatch&) = delete;
    ~ReadWatch();

    // The next reads give these, one each; the port answers again after the last one.
    void AnswerNext(std::vector<Answer> answers);
    // The error that each pause of the reading thread leaves behind, as other work of the thread might.
    void LeaveErrorInPauses(DWORD error);

    // Bytes that were read and that the thread is done with: it has come back for the next one.
    size_t DoneBytes() const;
    // Reads that gave nothing.
    size_t EmptyReads() const;
    // The lengths of the thread's pauses between reads, in milliseconds.
    std::vector<DWORD> Pauses() const;
    // Whether every read asked for one byte, and not for later.
    bool AllReadsOfOneByte() const;

  private:
    std::unique_ptr<ImportHook> readHook_;
    std::unique_ptr<ImportHook> sleepHook_;
};

}  // namespace quarlin::test
