// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

namespace quarlin::sim {

// The thread on which an engine library looks after its scans. It never runs code of the library when that is gone,
// whichever way it goes.
class ScanThread {
  public:
    struct Work {
        bool (*wanted)();  // whether new scans are of interest
        void (*look)();    // fetches what is there
    };

    constexpr ScanThread() = default;
    ScanThread(const ScanThread&) = delete;
    ScanThread& operator=(const ScanThread&) = delete;
    ~ScanThread() = default;  // the library stops it: there is no telling here whether the process ends

    // Looks whenever the event of that name is set and scans are wanted. Does nothing when it runs.
    bool Start(const wchar_t* scanEvent, const Work& work);
    // Looks as soon as it can, wanted or not.
    void Look();
    // Returns when the thread is out of the library; on the thread itself, it leaves as soon as `look` returns.
    // `unloading`: from DllMain, where no thread can end.
    void Stop(bool unloading);
    bool Ending() const { return InterlockedCompareExchange(&ending_, 0, 0) != 0; }

  private:
    enum Fate : LONG {
        kOpen,
        kLeaves,  // the thread goes by itself
        kStays,   // it waits to be ended
    };

    static DWORD WINAPI Run(void* thread);
    void Loop();
    void Close();

    Work work_{};
    HANDLE thread_ = nullptr;
    DWORD id_ = 0;
    HANDLE scan_ = nullptr;
    HANDLE look_ = nullptr;
    HANDLE entered_ = nullptr;
    HANDLE left_ = nullptr;
    mutable volatile LONG ending_ = 0;
    volatile LONG fate_ = kOpen;
};

}  // namespace quarlin::sim
