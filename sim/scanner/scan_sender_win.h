// SPDX-License-Identifier: Apache-2.0
// Shows codes to the stand-in engine libraries: puts scans into their records and wakes them.
#pragma once

#include <windows.h>

#include "scanner/honeywell_state.h"
#include "scanner/intermec_state.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {

// One of a record's events (State::kScanEvent, kFetchedEvent, kHeldEvent, kGoOnEvent) in this program's instance.
class EngineEvent {
  public:
    explicit EngineEvent(const wchar_t* name)
        : event_(CreateEventW(nullptr, FALSE, FALSE, InstanceName(name).Text())) {}
    EngineEvent(const EngineEvent&) = delete;
    EngineEvent& operator=(const EngineEvent&) = delete;
    ~EngineEvent() {
        if (event_ != nullptr) {
            CloseHandle(event_);
        }
    }
    bool Set() const { return event_ != nullptr && SetEvent(event_) != FALSE; }
    // False when it is not set in time.
    bool Wait(DWORD milliseconds) const {
        return event_ != nullptr && WaitForSingleObject(event_, milliseconds) == WAIT_OBJECT_0;
    }

  private:
    HANDLE event_;
};

// Adds a scan, when there is room for it. False when there was none for so many milliseconds: no library is connected,
// or it does not get rid of what it has.
template <typename State>
bool AddScan(SharedState<State>& shared, const ScanSlot& scan, DWORD patience = 10000) {
    const EngineEvent fetched(State::kFetchedEvent);
    const ULONGLONG end = GetTickCount64() + patience;
    for (;;) {
        {
            const typename SharedState<State>::Access state(shared);
            if (!state) {
                return false;
            }
            if (!state->inbox.IsFull()) {
                state->inbox.Add(scan);
                if (!state->inbox.IsFull()) {
                    fetched.Set();  // somebody else may be waiting for the room that is left
                }
                break;
            }
        }
        const ULONGLONG now = GetTickCount64();
        if (now >= end || !fetched.Wait(static_cast<DWORD>(end - now))) {
            return false;
        }
    }
    return EngineEvent(State::kScanEvent).Set();
}

// Orders a burst of `scan`. It waits for a connection when there is none.
template <typename State>
bool OrderBurst(SharedState<State>& shared, const ScanSlot& scan, std::uint64_t count, std::uint64_t ahead,
                std::uint64_t first = 0, std::uint32_t numberAt = 0, std::uint32_t digits = 0) {
    {
        const typename SharedState<State>::Access state(shared);
        if (!state || state->burst.Done() != state->burst.ordered) {
            return false;
        }
        Burst& burst = state->burst;
        burst.count = count;
        burst.ahead = ahead;
        burst.first = first;
        burst.numberAt = numberAt;
        burst.digits = digits;
        burst.scan = scan;
        burst.Order();
    }
    return EngineEvent(State::kScanEvent).Set();
}

}  // namespace quarlin::sim
