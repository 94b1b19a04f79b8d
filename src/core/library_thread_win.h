// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <functional>

namespace quarlin {

// One thread of the library. It keeps the library loaded while it runs, so that an application that frees the library
// with a reader enabled does not leave a thread in code that is gone. The destructor neither ends it nor waits for it.
class LibraryThread {
  public:
    LibraryThread() = default;
    LibraryThread(const LibraryThread&) = delete;
    LibraryThread& operator=(const LibraryThread&) = delete;
    ~LibraryThread() { Forget(); }

    // False when the system has no thread for us. The body must not throw; the thread owns it and what it holds.
    bool Start(std::function<void()> body);

    // From Start until Forget, also when the thread has ended by itself.
    bool IsStored() const { return thread_ != nullptr; }
    bool IsCurrent() const { return IsStored() && threadId_ == GetCurrentThreadId(); }

    // Waits for the thread's end.
    void Wait(DWORD milliseconds) const;
    void Forget();

  private:
    HANDLE thread_ = nullptr;
    unsigned threadId_ = 0;
};

}  // namespace quarlin
