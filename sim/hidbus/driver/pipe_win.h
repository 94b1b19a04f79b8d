// SPDX-License-Identifier: Apache-2.0
// The way of input reports from the dispatching thread to the class driver's reading thread of a device.
#pragma once

#include "hidbus/driver/kernel_win.h"

// Waiting on an address costs no trip to Wine's server, while each wait for the kernel's events takes several. It is
// not the kernel's, but Wine's drivers may use it; from ntdll itself they may not take it, or Wine would not load them
// as drivers.
extern "C" {
__declspec(dllimport) int WINAPI WaitOnAddress(volatile void* address, void* compare, SIZE_T size, ULONG milliseconds);
__declspec(dllimport) void WINAPI WakeByAddressAll(void* address);
}

namespace quarlin::sim::bus {

// One report at a time. All zero is a new pipe.
class Pipe {
  public:
    // The reading thread: waits for a report and says its length; 0 when the pipe has been closed.
    ULONG Take(void* out, ULONG room) {
        out_ = out;
        room_ = room;
        if (!Change(State::kAway, State::kReading)) {
            return 0;
        }
        while (Wait(State::kReading) || Wait(State::kFilling)) {
        }
        return Change(State::kHanded, State::kAway) ? length_ : 0;
    }

    // The dispatching thread: hands over a report, and returns when the reading thread has done with it and asks for
    // the next. False when the pipe has been closed, or the thread does not come back or has no room.
    bool Put(const UCHAR* report, ULONG length) {
        while (Wait(State::kAway)) {
        }
        if (length == 0 || !Change(State::kReading, State::kFilling)) {
            return false;
        }
        if (length > room_) {
            Change(State::kFilling, State::kReading);
            return false;
        }
        RtlCopyMemory(out_, report, length);
        length_ = length;
        Change(State::kFilling, State::kHanded);
        while (Wait(State::kHanded) || Wait(State::kAway)) {
        }
        return true;
    }

    // A report that is being handed over still passes.
    void Close() {
        for (;;) {
            const State state = Now();
            if (state == State::kFilling) {
                Wait(state);
            } else if (Change(state, State::kClosed)) {
                return;
            }
        }
    }

  private:
    enum class State : LONG {
        kAway,
        kReading,
        kFilling,
        kHanded,
        kClosed
    };

    State Now() const { return static_cast<State>(InterlockedCompareExchange(&state_, 0, 0)); }

    bool Change(State from, State to) {
        const bool changed = InterlockedCompareExchange(&state_, static_cast<LONG>(to), static_cast<LONG>(from)) ==
                             static_cast<LONG>(from);
        WakeByAddressAll(const_cast<LONG*>(&state_));
        return changed;
    }

    // Waits until the state may have changed from this one. False when it is another; or when the reading thread, which
    // may wait for ever itself, takes too long.
    bool Wait(State state) {
        LONG unwanted = static_cast<LONG>(state);
        const ULONG patience = state == State::kReading ? kForever : kPatience;
        return Now() == state && WaitOnAddress(&state_, &unwanted, sizeof(unwanted), patience) != 0;
    }

    static constexpr ULONG kForever = 0xffffffff;
    static constexpr ULONG kPatience = 2000;

    mutable volatile LONG state_;
    void* out_;
    ULONG room_;
    ULONG length_;
};

}  // namespace quarlin::sim::bus
