// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/library_thread_win.h"

#include <windows.h>

#include <atomic>

namespace quarlin::bcr {

// What arrives on the listener window, on its thread.
class ListenerEvents {
  public:
    // A scan waits in the Intermec library. False: the window treats the message as any other.
    virtual bool OnIntermecFrame(WPARAM code) = 0;
    // A scan of the Honeywell library.
    virtual void OnRawData(WPARAM length, LPARAM data) = 0;
    // The emulator says that the scanner has changed hands.
    virtual void OnEmulatorNotice() = 0;

  protected:
    constexpr ListenerEvents() = default;
    constexpr ~ListenerEvents() = default;
};

// The hidden window that scans arrive on, and the thread that runs it. Started and stopped by one thread at a time.
class ListenerWindow {
  public:
    explicit ListenerWindow(ListenerEvents& events) : events_(events) {}
    ListenerWindow(const ListenerWindow&) = delete;
    ListenerWindow& operator=(const ListenerWindow&) = delete;

    // Returns when the window is there; raises QLERR_INTERNAL_ERROR when the system refuses it.
    void Start();
    // Returns when the window is gone. What is being delivered ends first.
    void Stop();

    // Events that are posted from now on are told from those before, which may still lie in the window's queue.
    void BeginConnection();
    WPARAM Connection() const { return connection_; }
    // On the window's thread: whether what is being handled belongs to the latest connection.
    bool IsConnectionCurrent() const { return passedConnection_ == connection_; }

    // Has the emulator's notice handled once more, when its turn comes.
    void PostNotice() const;

    bool IsRunning() const { return phase_ == Phase::kAlive; }
    // Null when it does not run.
    HWND Window() const { return window_; }
    bool IsCurrentThread() const { return IsRunning() && threadId_ == GetCurrentThreadId(); }

  private:
    enum class Phase {
        kIdle,
        kStarting,
        kAlive,
        kEnded
    };

    void Run();
    void Serve();
    LRESULT Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    ListenerEvents& events_;
    LibraryThread thread_;
    // Signalled when the phase has changed, and now and then without a reason.
    void* changed_ = nullptr;
    std::atomic<Phase> phase_ = Phase::kIdle;
    std::atomic<const char*> failure_ = nullptr;
    std::atomic<HWND> window_ = nullptr;
    std::atomic<DWORD> threadId_ = 0;
    std::atomic<bool> stopping_ = false;
    std::atomic<WPARAM> connection_ = 0;
    std::atomic<WPARAM> passedConnection_ = 0;
};

}  // namespace quarlin::bcr
