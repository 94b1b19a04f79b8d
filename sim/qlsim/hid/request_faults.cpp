// SPDX-License-Identifier: Apache-2.0
#include "hid/request_faults.h"

#include <algorithm>
#include <charconv>

#include "hid/hex.h"

namespace quarlin::sim {
namespace {

bool Fits(const RequestFault& fault, HidRequest request, std::span<const std::uint8_t> start) {
    return (!fault.request || *fault.request == request) && fault.start.size() <= start.size() &&
           std::equal(fault.start.begin(), fault.start.end(), start.begin());
}

std::uint64_t Count(const std::string& word) {
    std::uint64_t count = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
    if (error != std::errc() || end != word.data() + word.size()) {
        throw CommandError("\"" + word + "\" is no whole number");
    }
    return count;
}

}  // namespace

HidAnswer RequestFaults::Meet(HidRequest request, std::span<const std::uint8_t> start) {
    for (auto fault = faults_.begin(); fault != faults_.end(); ++fault) {
        if (!Fits(*fault, request, start)) {
            continue;
        }
        if (fault->skip > 0) {
            --fault->skip;
            continue;
        }
        const HidAnswer answer = fault->answer;
        if (fault->times == 1) {
            faults_.erase(fault);
        } else if (fault->times > 1) {
            --fault->times;
        }
        return answer;
    }
    return HidAnswer::kDone;
}

RequestFault ParseRequestFault(const Words& words, HidAnswer answer) {
    RequestFault fault;
    fault.answer = answer;
    for (std::size_t at = 1; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (word == "any") {
            fault.request.reset();
        } else if (word == "set") {
            fault.request = HidRequest::kSetFeature;
        } else if (word == "get") {
            fault.request = HidRequest::kGetFeature;
        } else if (word == "output") {
            fault.request = HidRequest::kSetOutput;
        } else if (word == "always") {
            fault.times = 0;
        } else if ((word == "starting" || word == "after" || word == "times") && at + 1 < words.size()) {
            const std::string& value = words[++at];
            if (word == "after") {
                fault.skip = Count(value);
            } else if (word == "times") {
                fault.times = std::max<std::uint64_t>(Count(value), 1);
            } else if (const auto bytes = ParseHex(value)) {
                fault.start = *bytes;
            } else {
                throw CommandError("\"" + value + "\" is not hexadecimal");
            }
        } else {
            throw CommandError("the command has to be: " + words.front() + " " + kRequestFaultUsage);
        }
    }
    return fault;
}

}  // namespace quarlin::sim
