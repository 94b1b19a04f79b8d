// SPDX-License-Identifier: Apache-2.0
// A connection, and the way of scans from the record to the program that is connected.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "scanner/engine_record.h"
#include "scanner/scan_thread_win.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {

// Engine: HasRoom(): whether it takes another scan; Deliver(record, scan): takes it and announces it, without the
// record's lock.
template <typename State, typename Engine>
class ScanDelivery {
  public:
    using Access = typename SharedState<State>::Access;

    constexpr ScanDelivery(SharedState<State>& shared, Engine& engine) : shared_(shared), engine_(engine) {}

    void Attach() { InitializeCriticalSectionEx(&announcing_, 0, CRITICAL_SECTION_NO_DEBUG_INFO); }
    void Detach() {
        thread_.Stop(true);
        DeleteCriticalSection(&announcing_);
    }

    bool Start(const ScanThread::Work& work) { return thread_.Start(State::kScanEvent, work); }
    void Stop() { thread_.Stop(false); }
    void LookSoon() { thread_.Look(); }

    bool IsConnected() const { return connected_.load(std::memory_order_acquire); }

    // The following two by whoever holds the record.

    void Connect(State& state) {
        connected_ = true;
        state.connected = GetCurrentProcessId();
        LookSoon();
    }
    // When it returns, nothing is announced any more.
    void Disconnect(State& state) {
        EnterCriticalSection(&announcing_);
        for (std::uint32_t i = 0; i < heldBack_; ++i) {
            engine_.Deliver(state, heldBackScans_[i]);
        }
        heldBack_ = 0;
        connected_ = false;
        LeaveCriticalSection(&announcing_);
        state.connected = 0;
    }

    // All that is in the record and that the engine has room for, by whoever holds it.
    void FetchSilently(State& state) {
        while (!state.inbox.IsEmpty() && engine_.HasRoom()) {
            if (Fetch(state)) {
                engine_.Take(state, current_);
            }
        }
    }

    // The thread's work.
    void Look() {
        while (FetchOne()) {
        }
        State* const record = shared_.Unlocked();
        while (record != nullptr && IsConnected() && !thread_.Ending() && record->burst.Done() < Ordered(*record)) {
            Play(*record);
        }
    }

  private:
    static constexpr std::uint32_t kMostHeldBack = 8;
    static constexpr int kSpins = 4000;

    static std::uint64_t Ordered(State& record) { return std::atomic_ref(record.burst.ordered).load(); }

    static void Copy(ScanSlot& to, const ScanSlot& from) {
        const std::uint32_t length = from.length < ScanSlot::kRoom ? from.length : std::uint32_t{ScanSlot::kRoom};
        std::memcpy(static_cast<void*>(&to), &from, offsetof(ScanSlot, bytes) + length);
        to.length = length;
    }

    // The oldest scan, into current_. False when it is held back.
    bool Fetch(State& state) {
        const ScanSlot& oldest = state.inbox.Oldest();
        const bool later = (oldest.flags & kScanWhileDisconnecting) != 0 && heldBack_ < kMostHeldBack;
        Copy(later ? heldBackScans_[heldBack_++] : current_, oldest);
        const bool wasFull = state.inbox.IsFull();
        ++state.inbox.fetched;
        ++state.fetchedScans;
        if (wasFull) {
            HANDLE const fetched = CreateEventW(nullptr, FALSE, FALSE, InstanceName(State::kFetchedEvent).Text());
            SetEvent(fetched);
            CloseHandle(fetched);
        }
        return !later;
    }

    // False when there is nothing to fetch.
    bool FetchOne() {
        std::optional<Access> state(std::in_place, shared_);
        if (!*state || !IsConnected() || (*state)->inbox.IsEmpty() || !engine_.HasRoom()) {
            return false;
        }
        const bool now = Fetch(**state);
        State* const record = shared_.Unlocked();
        // From the record's lock to that of the announcements without a gap: whoever disconnects waits for the end of
        // this one, and none begins after it.
        EnterCriticalSection(&announcing_);
        state.reset();
        if (now) {
            engine_.Deliver(*record, current_);
        }
        LeaveCriticalSection(&announcing_);
        return true;
    }

    void Play(State& record) {
        Burst& burst = record.burst;
        const std::uint64_t ahead =
            burst.ahead == 0 || burst.ahead > Burst::kMostAhead ? Burst::kMostAhead : burst.ahead;
        Copy(repeated_, burst.scan);
        for (std::uint64_t i = 0; i < burst.count && WaitForTurn(burst, i, ahead); ++i) {
            WriteNumber(burst, burst.first + i);
            EnterCriticalSection(&announcing_);
            if (IsConnected()) {
                engine_.Deliver(record, repeated_);
            }
            LeaveCriticalSection(&announcing_);
            std::atomic_ref(burst.sent).store(i + 1, std::memory_order_release);
        }
        std::atomic_ref(burst.done).fetch_add(1);
    }

    // False when the burst is cut off.
    bool WaitForTurn(Burst& burst, std::uint64_t number, std::uint64_t ahead) {
        for (int spins = 0; burst.Handled() + ahead <= number || !engine_.HasRoom(); ++spins) {
            if (!IsConnected() || thread_.Ending()) {
                return false;
            }
            if (spins < kSpins) {
                YieldProcessor();
            } else {
                SwitchToThread();
            }
        }
        return IsConnected() && !thread_.Ending();
    }

    void WriteNumber(const Burst& burst, std::uint64_t number) {
        if (burst.numberAt > repeated_.length || burst.digits > repeated_.length - burst.numberAt) {
            return;
        }
        for (std::uint32_t i = burst.digits; i > 0; --i) {
            repeated_.bytes[burst.numberAt + i - 1] = static_cast<std::uint8_t>('0' + number % 10);
            number /= 10;
        }
    }

    SharedState<State>& shared_;
    Engine& engine_;
    ScanThread thread_;
    // Held while a scan is announced.
    CRITICAL_SECTION announcing_{};
    std::atomic<bool> connected_{false};
    ScanSlot current_{};   // fetched from the inbox
    ScanSlot repeated_{};  // of a burst
    ScanSlot heldBackScans_[kMostHeldBack]{};
    std::uint32_t heldBack_ = 0;
};

}  // namespace quarlin::sim
