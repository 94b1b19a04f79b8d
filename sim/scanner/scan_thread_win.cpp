// SPDX-License-Identifier: Apache-2.0
#include "scanner/scan_thread_win.h"

#include <initializer_list>

#include "shared/shared_section_win.h"

namespace quarlin::sim {
namespace {

// A thread that has nothing to do but to end, or to return from a callback.
constexpr DWORD kPatience = 10000;
constexpr DWORD kPatienceForEnd = 1000;

}  // namespace

bool ScanThread::Start(const wchar_t* scanEvent, const Work& work) {
    if (thread_ != nullptr && !Ending()) {
        return true;
    }
    Stop(false);  // one that stopped itself
    work_ = work;
    ending_ = 0;
    fate_ = kOpen;
    scan_ = CreateEventW(nullptr, FALSE, FALSE, InstanceName(scanEvent).Text());
    look_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    left_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    entered_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (scan_ != nullptr && look_ != nullptr && left_ != nullptr && entered_ != nullptr) {
        thread_ = CreateThread(nullptr, 0, Run, this, 0, &id_);
    }
    // A thread that has not begun when the library goes would begin in what is no longer there.
    if (thread_ == nullptr || WaitForSingleObject(entered_, kPatience) != WAIT_OBJECT_0) {
        Close();
        return false;
    }
    return true;
}

void ScanThread::Look() {
    if (look_ != nullptr) {
        SetEvent(look_);
    }
}

void ScanThread::Stop(bool unloading) {
    if (thread_ == nullptr) {
        return;
    }
    // In DllMain this thread keeps others from ending. So the other one waits outside of all locks and is ended.
    const bool stays = unloading && InterlockedCompareExchange(&fate_, kStays, kOpen) == kOpen;
    InterlockedExchange(&ending_, 1);
    SetEvent(look_);
    if (GetCurrentThreadId() == id_ && !unloading) {
        return;
    }
    HANDLE ends[] = {thread_, left_};
    const DWORD end = WaitForMultipleObjects(2, &ends[0], FALSE, kPatience);
    if (end == WAIT_OBJECT_0 + 1) {
        if (stays) {
            TerminateThread(thread_, 0);
        }
        // It is out of this library. When it does not end, somebody called from a DllMain, and that holds it up.
        WaitForSingleObject(thread_, kPatienceForEnd);
    }
    Close();
}

DWORD WINAPI ScanThread::Run(void* thread) {
    static_cast<ScanThread*>(thread)->Loop();
    return 0;
}

void ScanThread::Loop() {
    SetEvent(entered_);
    HANDLE const events[] = {look_, scan_};
    while (!Ending()) {
        // A connection elsewhere needs the event more than a library that has none.
        if (WaitForMultipleObjects(work_.wanted() ? 2 : 1, &events[0], FALSE, INFINITE) > WAIT_OBJECT_0 + 1) {
            break;
        }
        if (!Ending()) {
            work_.look();
        }
    }
    const bool leaves = InterlockedCompareExchange(&fate_, kLeaves, kOpen) == kOpen;
    SetEvent(left_);
    if (!leaves) {
        Sleep(INFINITE);
    }
}

void ScanThread::Close() {
    for (HANDLE* const handle : {&thread_, &scan_, &look_, &left_, &entered_}) {
        if (*handle != nullptr) {
            CloseHandle(*handle);
            *handle = nullptr;
        }
    }
}

}  // namespace quarlin::sim
