// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/command.h"
#include "hidbus/hid_device.h"

namespace quarlin::sim {

enum class HidRequest {
    kSetFeature,
    kGetFeature,
    kSetOutput,
};

// What goes wrong, and with which of a program's requests.
struct RequestFault {
    HidAnswer answer = HidAnswer::kRefuse;
    std::optional<HidRequest> request{};  // nothing: any
    // What the request has to begin with, after its report ID. Of GetFeature: what the SetFeature before began with.
    std::vector<std::uint8_t> start{};
    std::uint64_t skip = 0;   // requests that fit and go well first
    std::uint64_t times = 1;  // 0: from then on for good
};

// The faults that wait for their requests. No locks of its own.
class RequestFaults {
  public:
    void Add(RequestFault fault) { faults_.push_back(std::move(fault)); }
    void Clear() { faults_.clear(); }
    std::size_t Waiting() const { return faults_.size(); }

    // What becomes of a request; kDone unless a fault fits. start: as above.
    HidAnswer Meet(HidRequest request, std::span<const std::uint8_t> start);

  private:
    std::vector<RequestFault> faults_;
};

// The words after a command's name: [set|get|output|any] [starting HEX] [after N] [times N|always]. Throws
// CommandError.
RequestFault ParseRequestFault(const Words& words, HidAnswer answer);
inline constexpr const char* kRequestFaultUsage = "[set|get|output|any] [starting HEX] [after N] [times N|always]";

}  // namespace quarlin::sim
