// SPDX-License-Identifier: Apache-2.0
#include "scanner/intermec_engine_win.h"

namespace quarlin::sim {

IntermecStatus IntermecEngine::Readiness() const {
    if (!IsInitialized()) {
        return kIntermecNotInitialized;
    }
    return IsConnected() ? kIntermecGood : kIntermecNotConnected;
}

IntermecStatus IntermecEngine::Initialize(IntermecState& state) {
    if (IsInitialized()) {
        return kIntermecAlreadyInitialized;
    }
    addressed_ = false;
    initialized_ = true;
    state.initialized = GetCurrentProcessId();
    state.port = 0;
    state.path[0] = 0;
    return kIntermecGood;
}

IntermecStatus IntermecEngine::Deinitialize(IntermecState& state) {
    if (!IsInitialized()) {
        return kIntermecNotInitialized;
    }
    if (IsConnected()) {
        Disconnect(state);
    }
    queue_.Clear();
    state.waiting = 0;
    initialized_ = false;
    state.initialized = 0;
    return kIntermecGood;
}

IntermecStatus IntermecEngine::Connect(IntermecState& state, const ScanThread::Work& work) {
    if (!IsInitialized()) {
        return kIntermecNotInitialized;
    }
    if (IsConnected()) {
        return kIntermecAlreadyConnected;
    }
    if (state.plugged == 0 || !addressed_ || !delivery_.Start(work)) {
        return kIntermecNoDevice;
    }
    // What was scanned while nobody was connected is in the engine.
    delivery_.FetchSilently(state);
    delivery_.Connect(state);
    return kIntermecGood;
}

IntermecStatus IntermecEngine::Disconnect(IntermecState& state) {
    const IntermecStatus status = Readiness();
    if (status == kIntermecGood) {
        delivery_.Disconnect(state);
        window_ = nullptr;
        state.window = 0;
    }
    return status;
}

IntermecStatus IntermecEngine::SetWindow(IntermecState& state, HWND window) {
    const IntermecStatus status = Readiness();
    if (status != kIntermecGood) {
        return status;
    }
    if (window != nullptr && IsWindow(window) == FALSE) {
        return kIntermecBadArgument;
    }
    message_ = RegisterWindowMessageW(L"WM_ISCP_FRAME");
    window_ = window;
    state.window = reinterpret_cast<std::uintptr_t>(window);
    return kIntermecGood;
}

void IntermecEngine::Take(IntermecState& record, std::uint8_t* to, std::uint32_t capacity, std::uint32_t& length) {
    bool wasFull = false;
    length = 0;
    if (!queue_.Take(to, capacity, length, wasFull)) {
        return;
    }
    std::atomic_ref(record.handedOut).fetch_add(1);
    std::atomic_ref(record.waiting).store(queue_.Size());
    if (wasFull) {
        delivery_.LookSoon();
    }
}

void IntermecEngine::Take(IntermecState& record, const ScanSlot& scan) {
    if ((scan.flags & kScanNoData) == 0) {
        queue_.Add(scan);
        std::atomic_ref(record.waiting).store(queue_.Size());
    }
}

void IntermecEngine::Deliver(IntermecState& record, const ScanSlot& scan) {
    Take(record, scan);
    const auto window = window_.load();
    if ((scan.flags & kScanSilent) != 0 || window == nullptr) {
        return;
    }
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    record.announcements.Add(now.QuadPart);
    PostMessageW(window, message_, scan.eventType, 0);
}

}  // namespace quarlin::sim
