// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "scanner/engine_desk_win.h"
#include "scanner/honeywell_state.h"
#include "scanner/scan_delivery_win.h"

namespace quarlin::sim {

using HoneywellDesk = EngineDesk<HoneywellState, HoneywellFunction>;

// What the receiving program is called with: event type, two numbers, data, length.
using HoneywellCallback = std::int32_t (*)(std::uint32_t, std::uint32_t, std::uint32_t, void*, std::uint32_t);

// The engine as one program has it: from HEDC_Initialize to HEDC_Deinitialize, and between them from HEDC_Connect to
// HEDC_Disconnect. What changes it is called by whoever holds the record.
class HoneywellEngine {
  public:
    explicit constexpr HoneywellEngine(SharedState<HoneywellState>& shared) : delivery_(shared, *this) {}

    void Attach() { delivery_.Attach(); }
    void Detach() { delivery_.Detach(); }

    bool IsInitialized() const { return initialized_.load(std::memory_order_acquire); }
    // Good when the engine can be asked.
    HoneywellStatus Readiness() const;

    HoneywellStatus Initialize(HoneywellState& state);
    HoneywellStatus Deinitialize(HoneywellState& state);
    // Without the record, when Deinitialize has been good.
    void StopThread() { delivery_.Stop(); }
    HoneywellStatus SetCallback(HoneywellState& state, HoneywellCallback callback);
    HoneywellStatus Connect(HoneywellState& state, const ScanThread::Work& work);
    HoneywellStatus Disconnect(HoneywellState& state);

    // For the delivery.

    bool IsConnected() const { return delivery_.IsConnected(); }
    void Look() { delivery_.Look(); }
    static bool HasRoom() { return true; }
    void Deliver(HoneywellState& record, const ScanSlot& scan);

  private:
    // Whoever is called back may take his time: a buffer is used again after so many more scans. A length that is too
    // great by less than a buffer still leads nowhere but here.
    static constexpr std::uint64_t kBuffers = 512;
    static constexpr std::size_t kBufferRoom = 8192;
    static_assert(kBufferRoom > ScanSlot::kRoom);

    ScanDelivery<HoneywellState, HoneywellEngine> delivery_;
    std::atomic<bool> initialized_{false};
    std::atomic<HoneywellCallback> callback_{nullptr};
    std::uint64_t delivered_ = 0;
    std::uint8_t buffers_[kBuffers + 1][kBufferRoom]{};  // the last one stays empty
};

// The number'th device of those that are listed now; null when there are fewer.
const HoneywellDevice* ListedDevice(const HoneywellState& state, std::uint32_t number);
std::uint32_t ListedDevices(const HoneywellState& state);

}  // namespace quarlin::sim
