// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/exchange.h"

#include "uhfrfid/result_text.h"

#include <algorithm>
#include <memory>
#include <new>

namespace quarlin::uhfrfid {
namespace {

// A code of the reader's own: 65536 plus its status.
QLerr StatusCode(std::uint8_t status) {
    return static_cast<QLerr>(0x10000 + status);
}

void Send(ReaderTransport& reader, std::size_t reportSize, std::span<const std::uint8_t> command) {
    Require(command.size() <= reportSize, QLERR_UHFRFID_BUFFERTOOBIG, ReaderMessage);
    const std::unique_ptr<std::uint8_t[]> report(new (std::nothrow) std::uint8_t[reportSize]());
    Require(report != nullptr, QLERR_UHFRFID_SYSTEM, ReaderMessage);
    std::ranges::copy(command, report.get());
    Require(reader.Send({report.get(), reportSize}), QLERR_UHFRFID_COMMAND_SEND, ReaderMessage);
}

}  // namespace

std::span<const std::uint8_t> Reply::Bytes(std::size_t offset, std::size_t count) const {
    Require(offset <= received_ && count <= received_ - offset, QLERR_UHFRFID_UNCLASSIFIED, ReaderMessage);
    return std::span(bytes_).subspan(offset, count);
}

Reply Exchange(ReaderTransport& reader, std::size_t reportSize, const CommandFrame& command) {
    Send(reader, reportSize, command.Bytes());

    Reply reply;
    const std::optional<std::size_t> received = reader.Receive(reply.bytes_);
    Require(received.has_value(), QLERR_UHFRFID_COMMAND_RECEIVE, ReaderMessage);
    reply.received_ = *received;

    const auto head = reply.Bytes(0, Reply::kData);
    const Command& kind = command.Kind();
    Require(head[0] == kind.replyCode && head[1] == kind.replyLength, QLERR_UHFRFID_UNCLASSIFIED, ReaderMessage);
    const std::uint8_t status = head[2];
    Require(status == 0, StatusCode(status), ReaderMessage);
    return reply;
}

}  // namespace quarlin::uhfrfid
