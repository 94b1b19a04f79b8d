// SPDX-License-Identifier: Apache-2.0
#include "msr/usb_hid_dev_win.h"

#include "core/hid_paths_win.h"

#include <algorithm>
#include <utility>

namespace quarlin::msr {

bool CUsbHidDev::UpdateDeviceList() {
    if (!lock_.IsInitialized()) {
        return false;
    }
    const CSmartCriticalWrapper held(lock_);
    std::vector<std::wstring> paths;
    if (!EnumerateDevicePaths(paths)) {
        return false;
    }
    paths_ = std::move(paths);
    return true;
}

bool CUsbHidDev::Uninitialize() {
    const CSmartCriticalWrapper held(lock_);
    return true;
}

bool CUsbHidDev::SetListener(IUsbHidDevListener* listener) {
    const CSmartCriticalWrapper held(lock_);
    if (listener == nullptr) {
        return false;
    }
    listener_ = listener;
    return true;
}

bool CUsbHidDev::ClearListener() {
    const CSmartCriticalWrapper held(lock_);
    listener_ = nullptr;
    return true;
}

bool CUsbHidDev::Open(const std::wstring& path) {
    const CSmartCriticalWrapper held(lock_);
    void* const port = CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 0);
    if (port == nullptr) {
        return false;
    }
    port_.Reset(port);
    void* const file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    file_.Reset(file);
    const bool opened = file_.IsValid() && CreateIoCompletionPort(file, port, 0, 0) != nullptr &&
                        GetPreparsedData(preparsedData_.Out()) && GetCaps(&caps_);
    if (!opened) {
        Close();
    }
    return opened;
}

bool CUsbHidDev::Close() {
    constexpr DWORD kSettleTime = 200;  // milliseconds that the device gets between its last transfer and its closing
    const CSmartCriticalWrapper held(lock_);
    caps_ = {};
    preparsedData_.Reset();
    if (file_.IsValid()) {
        Sleep(kSettleTime);
        file_.Reset();
    }
    AwaitPendingRead();
    port_.Reset();
    return true;
}

bool CUsbHidDev::IsOpen() {
    const CSmartCriticalWrapper held(lock_);
    return file_.IsValid();
}

bool CUsbHidDev::EnumerateDevicePaths(std::vector<std::wstring>& paths) {
    const CSmartCriticalWrapper held(lock_);
    const auto before = static_cast<std::ptrdiff_t>(paths.size());
    AppendHidPaths(paths);
    std::for_each(paths.begin() + before, paths.end(), [](std::wstring& path) {
        std::ranges::transform(path, path.begin(), [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    });
    return true;
}

bool CUsbHidDev::SetFeatureReport(const std::uint8_t* bytes, std::uint32_t length) {
    const CSmartCriticalWrapper held(lock_);
    if (!file_.IsValid() || bytes == nullptr || length > caps_.FeatureReportByteLength) {
        return false;
    }
    std::vector<std::uint8_t> report(caps_.FeatureReportByteLength);
    std::copy_n(bytes, length, report.begin());
    return HidD_SetFeature(file_.Get(), report.data(), static_cast<ULONG>(report.size()));
}

bool CUsbHidDev::GetFeatureReport(std::vector<std::uint8_t>& report) {
    const CSmartCriticalWrapper held(lock_);
    if (!file_.IsValid()) {
        return false;
    }
    report.assign(caps_.FeatureReportByteLength, 0);
    return GetFeatureReportRaw(report.data(), static_cast<std::uint32_t>(report.size()));
}

bool CUsbHidDev::GetFeatureReportRaw(std::uint8_t* buffer, std::uint32_t length) {
    const CSmartCriticalWrapper held(lock_);
    return file_.IsValid() && buffer != nullptr && length == caps_.FeatureReportByteLength &&
           HidD_GetFeature(file_.Get(), buffer, length);
}

bool CUsbHidDev::GetCaps(HIDP_CAPS* caps) {
    const CSmartCriticalWrapper held(lock_);
    return caps != nullptr && preparsedData_.GetCapabilities(*caps);
}

bool CUsbHidDev::GetPreparsedData(PHIDP_PREPARSED_DATA* data) {
    const CSmartCriticalWrapper held(lock_);
    return data != nullptr && HidD_GetPreparsedData(file_.Get(), data);
}

bool CUsbHidDev::ReadInputReport() {
    HANDLE port = nullptr;
    const OVERLAPPED* own = nullptr;
    {
        const CSmartCriticalWrapper held(lock_);
        PendingRead* const read = StartedRead();
        if (read == nullptr) {
            return false;
        }
        own = &read->overlapped;
        port = port_.Get();
    }

    DWORD bytes = 0;
    ULONG_PTR key = 0;
    OVERLAPPED* completed = nullptr;
    const bool succeeded = GetQueuedCompletionStatus(port, &bytes, &key, &completed, INFINITE);
    if (completed == nullptr) {
        // CancelRead's packet, or the wait itself has failed.
        return succeeded;
    }
    if (completed != own) {
        // Feature transfers run on the same handle and leave packets of their own here.
        return true;
    }
    const std::unique_ptr<PendingRead> read = TakeRead(completed);
    if (read == nullptr || !succeeded) {
        return false;
    }
    Deliver(read->report);
    return true;
}

CUsbHidDev::PendingRead* CUsbHidDev::StartedRead() {
    if (pendingRead_ == nullptr) {
        auto read = std::make_unique<PendingRead>(caps_.InputReportByteLength);
        if (!ReadFile(file_.Get(), read->report.data(), static_cast<DWORD>(read->report.size()), nullptr,
                      &read->overlapped) &&
            GetLastError() != ERROR_IO_PENDING) {
            return nullptr;
        }
        pendingRead_ = std::move(read);
    }
    return pendingRead_.get();
}

std::unique_ptr<CUsbHidDev::PendingRead> CUsbHidDev::TakeRead(const OVERLAPPED* overlapped) {
    const CSmartCriticalWrapper held(lock_);
    if (pendingRead_ == nullptr || &pendingRead_->overlapped != overlapped) {
        return nullptr;
    }
    return std::move(pendingRead_);
}

// The handle is closed, which ends the read: its packet is on the way.
void CUsbHidDev::AwaitPendingRead() {
    constexpr DWORD kLongestWait = 2000;  // milliseconds
    if (pendingRead_ == nullptr) {
        return;
    }
    const ULONGLONG deadline = GetTickCount64() + kLongestWait;
    for (;;) {
        const ULONGLONG now = GetTickCount64();
        DWORD bytes = 0;
        ULONG_PTR key = 0;
        OVERLAPPED* completed = nullptr;
        const bool succeeded = GetQueuedCompletionStatus(port_.Get(), &bytes, &key, &completed,
                                                         now < deadline ? static_cast<DWORD>(deadline - now) : 0);
        if (completed == &pendingRead_->overlapped) {
            pendingRead_.reset();
            return;
        }
        if (completed == nullptr && !succeeded) {
            // The system keeps it: it may still write there, so that the memory is given up rather than reused.
            static_cast<void>(pendingRead_.release());
            return;
        }
    }
}

void CUsbHidDev::Deliver(const std::vector<std::uint8_t>& report) {
    IUsbHidDevListener* listener = nullptr;
    {
        const CSmartCriticalWrapper held(lock_);
        listener = listener_;
    }
    if (listener == nullptr) {
        return;
    }
    // By reference, which needs no memory.
    auto deliver = [&] {
        const CSmartCriticalWrapper held(lock_);
        if (listener_ == listener) {
            listener->OnInputReport(report);
        }
    };
    listener->AroundInputReport(std::ref(deliver));
}

bool CUsbHidDev::CancelRead() {
    const CSmartCriticalWrapper held(lock_);
    if (port_.IsValid()) {
        PostQueuedCompletionStatus(port_.Get(), 0, 0, nullptr);
    }
    return true;
}

}  // namespace quarlin::msr
