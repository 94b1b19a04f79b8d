// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "scanner/engine_desk_win.h"
#include "scanner/intermec_state.h"
#include "scanner/scan_delivery_win.h"
#include "scanner/scan_queue_win.h"

namespace quarlin::sim {

using IntermecDesk = EngineDesk<IntermecState, IntermecFunction>;

// The engine as one program has it: from Initialize to Deinitialize, and between them from Connect to Disconnect. What
// changes it is called by whoever holds the record.
class IntermecEngine {
  public:
    explicit constexpr IntermecEngine(SharedState<IntermecState>& shared) : delivery_(shared, *this) {}

    void Attach() { delivery_.Attach(); }
    void Detach() { delivery_.Detach(); }

    bool IsInitialized() const { return initialized_.load(std::memory_order_acquire); }
    // Good when frames can be sent.
    IntermecStatus Readiness() const;

    IntermecStatus Initialize(IntermecState& state);
    IntermecStatus Deinitialize(IntermecState& state);
    // Without the record, when Deinitialize has been good.
    void StopThread() { delivery_.Stop(); }
    // Where the device is has been said.
    void SetAddressed() { addressed_ = true; }
    IntermecStatus Connect(IntermecState& state, const ScanThread::Work& work);
    IntermecStatus Disconnect(IntermecState& state);
    IntermecStatus SetWindow(IntermecState& state, HWND window);

    // The oldest scan; the length 0 when there is none. Needs no record.
    void Take(IntermecState& record, std::uint8_t* to, std::uint32_t capacity, std::uint32_t& length);

    // For the delivery.

    bool IsConnected() const { return delivery_.IsConnected(); }
    void Look() { delivery_.Look(); }
    bool HasRoom() { return queue_.HasRoom(); }
    void Take(IntermecState& record, const ScanSlot& scan);
    void Deliver(IntermecState& record, const ScanSlot& scan);

  private:
    ScanDelivery<IntermecState, IntermecEngine> delivery_;
    ScanQueue queue_;
    std::atomic<bool> initialized_{false};
    std::atomic<HWND> window_{nullptr};
    UINT message_ = 0;
    bool addressed_ = false;
};

}  // namespace quarlin::sim
