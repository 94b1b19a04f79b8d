// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "uhfrfid/exchange.h"

namespace quarlin::uhfrfid {

// One caller's handle of a reader, for the length of a call. The handle stays the caller's.
class HidReaderTransport final : public ReaderTransport {
  public:
    explicit HidReaderTransport(void* handle) : handle_(handle) {}

    bool Send(std::span<std::uint8_t> outputReport) override;
    // Without a time-out: an answer is waited for until it comes or the device goes.
    std::optional<std::size_t> Receive(std::span<std::uint8_t> buffer) override;

  private:
    void* handle_;
};

// False for the two values that stand for no handle.
bool IsReaderHandle(const void* handle);
void* InvalidReaderHandle();

// Closes what QLUHFRFID_OpenReader gave. False when the system does not know the handle.
bool CloseReaderHandle(void* handle);

}  // namespace quarlin::uhfrfid
