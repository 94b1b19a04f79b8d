// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/reader_transport_win.h"

#include <windows.h>

extern "C" {
#include <hidsdi.h>
}

namespace quarlin::uhfrfid {

bool HidReaderTransport::Send(std::span<std::uint8_t> outputReport) {
    return HidD_SetOutputReport(handle_, outputReport.data(), static_cast<ULONG>(outputReport.size()));
}

std::optional<std::size_t> HidReaderTransport::Receive(std::span<std::uint8_t> buffer) {
    DWORD received = 0;
    if (!ReadFile(handle_, buffer.data(), static_cast<DWORD>(buffer.size()), &received, nullptr)) {
        return std::nullopt;
    }
    return received;
}

bool IsReaderHandle(const void* handle) {
    return handle != nullptr && handle != INVALID_HANDLE_VALUE;
}

void* InvalidReaderHandle() {
    return INVALID_HANDLE_VALUE;
}

bool CloseReaderHandle(void* handle) {
    return CloseHandle(handle);
}

}  // namespace quarlin::uhfrfid
