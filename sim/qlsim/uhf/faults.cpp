// SPDX-License-Identifier: Apache-2.0
#include "uhf/faults.h"

#include <algorithm>
#include <array>

namespace quarlin::sim {
namespace {

std::string Seconds(std::chrono::milliseconds delay) {
    std::string text = std::to_string(static_cast<double>(delay.count()) / 1000);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

std::string Act(const UhfFault& fault) {
    using Kind = UhfFault::Kind;
    switch (fault.kind) {
        case Kind::kStatus:
            return "status-byte " + HexText(std::array{fault.value});
        case Kind::kByte:
            return "byte " + std::to_string(fault.offset) + " " + HexText(std::array{fault.value});
        case Kind::kShort:
            return "short " + std::to_string(fault.value);
        case Kind::kSilence:
            return "silence";
        case Kind::kHold:
            return "late";
        case Kind::kDelay:
            return "late " + Seconds(fault.delay);
        case Kind::kRefuse:
            return "refuse";
        case Kind::kVanish:
            return "unplug during";
        case Kind::kGoSilent:
            return "unplug before-answer";
    }
    return {};
}

}  // namespace

std::string UhfFault::Text() const {
    std::string text = Act(*this);
    if (code) {
        text += " " + std::string(FindUhfCommand(Raw(*code))->name);
    }
    if (!times) {
        return text + " always";
    }
    return *times == 1 ? text : text + " times " + std::to_string(*times);
}

std::vector<UhfFault> UhfFaults::Take(std::uint8_t code) {
    std::vector<UhfFault> taken;
    for (UhfFault& fault : faults_) {
        if (fault.code && Raw(*fault.code) != code) {
            continue;
        }
        taken.push_back(fault);
        if (fault.times) {
            --*fault.times;
        }
    }
    std::erase_if(faults_, [](const UhfFault& fault) { return fault.times == 0u; });
    return taken;
}

void Spoil(Bytes& reply, const std::vector<UhfFault>& faults) {
    for (const UhfFault& fault : faults) {
        if (fault.kind == UhfFault::Kind::kShort && fault.value < reply.size()) {
            std::fill(reply.begin() + fault.value, reply.end(), std::uint8_t{0});
            reply.at(1) = fault.value;
        } else if (fault.kind == UhfFault::Kind::kByte && fault.offset < reply.size()) {
            reply[fault.offset] = fault.value;
        }
    }
}

const UhfFault* FindFault(const std::vector<UhfFault>& faults, UhfFault::Kind kind) {
    const auto found =
        std::find_if(faults.rbegin(), faults.rend(), [kind](const UhfFault& fault) { return fault.kind == kind; });
    return found == faults.rend() ? nullptr : &*found;
}

}  // namespace quarlin::sim
