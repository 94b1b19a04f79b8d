// SPDX-License-Identifier: Apache-2.0
#include "scanner/honeywell_engine_win.h"

namespace quarlin::sim {
namespace {

bool HasName(const HoneywellDevice& device, const char* name, std::uint32_t length) {
    return length <= HoneywellDevice::kRoom && std::memcmp(&device.name[0], name, length) == 0 &&
           (length == HoneywellDevice::kRoom || device.name[length] == 0);
}

bool IsListed(const HoneywellState& state, const char* name, std::uint32_t length) {
    for (std::uint32_t number = 0;; ++number) {
        const HoneywellDevice* const device = ListedDevice(state, number);
        if (device == nullptr || HasName(*device, name, length)) {
            return device != nullptr;
        }
    }
}

}  // namespace

const HoneywellDevice* ListedDevice(const HoneywellState& state, std::uint32_t number) {
    for (std::uint32_t i = 0; i < state.deviceCount && i < HoneywellState::kDevices; ++i) {
        if (state.limited != 0 && state.devices[i].foreign != 0) {
            continue;
        }
        if (number-- == 0) {
            return &state.devices[i];
        }
    }
    return nullptr;
}

std::uint32_t ListedDevices(const HoneywellState& state) {
    std::uint32_t count = 0;
    while (ListedDevice(state, count) != nullptr) {
        ++count;
    }
    return count;
}

HoneywellStatus HoneywellEngine::Readiness() const {
    if (!IsInitialized()) {
        return kHoneywellNotInitialized;
    }
    return IsConnected() ? kHoneywellGood : kHoneywellNotConnected;
}

HoneywellStatus HoneywellEngine::Initialize(HoneywellState& state) {
    if (IsInitialized()) {
        return kHoneywellAlreadyInitialized;
    }
    initialized_ = true;
    state.initialized = GetCurrentProcessId();
    state.limited = 0;
    state.pathLength = 0;
    state.path[0] = 0;
    return kHoneywellGood;
}

HoneywellStatus HoneywellEngine::Deinitialize(HoneywellState& state) {
    if (!IsInitialized()) {
        return kHoneywellNotInitialized;
    }
    if (IsConnected()) {
        Disconnect(state);
    }
    SetCallback(state, nullptr);
    initialized_ = false;
    state.initialized = 0;
    return kHoneywellGood;
}

HoneywellStatus HoneywellEngine::SetCallback(HoneywellState& state, HoneywellCallback callback) {
    if (!IsInitialized()) {
        return kHoneywellNotInitialized;
    }
    callback_ = callback;
    state.callback = reinterpret_cast<std::uintptr_t>(callback);
    return kHoneywellGood;
}

HoneywellStatus HoneywellEngine::Connect(HoneywellState& state, const ScanThread::Work& work) {
    if (!IsInitialized()) {
        return kHoneywellNotInitialized;
    }
    if (IsConnected()) {
        return kHoneywellAlreadyConnected;
    }
    if (state.pathLength == 0) {
        return kHoneywellNoPath;
    }
    if (state.heldByEmulator != 0) {
        return kHoneywellHeld;
    }
    if (!IsListed(state, &state.path[0], state.pathLength) || !delivery_.Start(work)) {
        return kHoneywellNoDevice;
    }
    state.reading = 0;
    delivery_.Connect(state);
    return kHoneywellGood;
}

HoneywellStatus HoneywellEngine::Disconnect(HoneywellState& state) {
    const HoneywellStatus status = Readiness();
    if (status == kHoneywellGood) {
        delivery_.Disconnect(state);
        state.reading = 0;
    }
    return status;
}

void HoneywellEngine::Deliver(HoneywellState& record, const ScanSlot& scan) {
    std::uint8_t* const buffer = &buffers_[delivered_++ % kBuffers][0];
    std::memcpy(buffer, &scan.bytes[0], scan.length);
    // Nothing of an earlier scan behind it.
    std::memset(buffer + scan.length, 0, kBufferRoom - scan.length);
    const HoneywellCallback callback = callback_;
    if (callback == nullptr || (scan.flags & kScanSilent) != 0) {
        return;
    }
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    record.announcements.Add(now.QuadPart);
    callback(scan.eventType, 0, 0, (scan.flags & kScanNoData) != 0 ? nullptr : buffer, scan.claimed);
    std::atomic_ref(record.callbacks).fetch_add(1);
}

}  // namespace quarlin::sim
