// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "uhfrfid/command_frame.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace quarlin::uhfrfid {

// The way to one open reader. It moves bytes; what they mean is not its affair.
class ReaderTransport {
  public:
    ReaderTransport() = default;
    ReaderTransport(const ReaderTransport&) = delete;
    ReaderTransport& operator=(const ReaderTransport&) = delete;
    virtual ~ReaderTransport() = default;

    virtual bool Send(std::span<std::uint8_t> outputReport) = 0;
    // Waits for an input report, for ever if none comes. The number of bytes received, or nothing after a failure.
    virtual std::optional<std::size_t> Receive(std::span<std::uint8_t> buffer) = 0;
};

// A byte of a reply that stands for a number below 0, too.
inline int SignedByte(std::uint8_t byte) {
    return byte < 0x80 ? byte : byte - 0x100;
}

// The reader's answer. Its bytes are untrusted: one that was not received cannot be had.
class Reply {
  public:
    static constexpr std::size_t kCapacity = 1024;
    // Offset of what follows code, length and status.
    static constexpr std::size_t kData = 3;

    // Both raise QLERR_UHFRFID_UNCLASSIFIED.
    std::uint8_t Byte(std::size_t offset) const { return Bytes(offset, 1)[0]; }
    std::span<const std::uint8_t> Bytes(std::size_t offset, std::size_t count) const;

    std::size_t Received() const { return received_; }

  private:
    friend Reply Exchange(ReaderTransport& reader, std::size_t reportSize, const CommandFrame& command);

    std::array<std::uint8_t, kCapacity> bytes_;
    std::size_t received_ = 0;
};

// Sends a command, waits for the reply, and raises what went wrong: on the way, with the reply, or, by its status, in
// the reader or the tag. reportSize is the size of the reader's output report in bytes.
Reply Exchange(ReaderTransport& reader, std::size_t reportSize, const CommandFrame& command);

}  // namespace quarlin::uhfrfid
