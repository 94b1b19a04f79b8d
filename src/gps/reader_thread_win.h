// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

namespace quarlin::gps {

// One thread that runs a procedure to its end. It keeps the library loaded while it runs, so that an application that
// frees the library with the receiver enabled does not leave a thread in code that is gone. Whoever started it joins
// it: the destructor does not, because at the end of the process the system has ended the thread already.
class ReaderThread {
  public:
    using Procedure = void (*)(void* argument);

    ReaderThread() = default;
    ReaderThread(const ReaderThread&) = delete;
    ReaderThread& operator=(const ReaderThread&) = delete;

    // False when the system has no thread for us.
    bool Start(Procedure procedure, void* argument);

    // Waits without a limit for the procedure's end. Does not ask it to end.
    void Join();

  private:
    static DWORD WINAPI Run(void* self);

    Procedure procedure_ = nullptr;
    void* argument_ = nullptr;
    HMODULE module_ = nullptr;
    HANDLE thread_ = nullptr;
    DWORD threadId_ = 0;
};

}  // namespace quarlin::gps
