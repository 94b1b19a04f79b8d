// SPDX-License-Identifier: Apache-2.0
#include "scanner/intermec_frames.h"

namespace quarlin::sim {
namespace {

constexpr std::uint32_t kIdentifier = 2;
constexpr std::uint32_t kParameter = 3;
constexpr std::uint16_t kDecoding = 0x2040;
constexpr std::uint16_t kPrepareLink = 0x5040;
constexpr std::uint16_t kResetLink = 0x3002;
constexpr std::uint16_t kFirmware = 0x30C0;

}  // namespace

IntermecStatus WriteSetup(IntermecState& state, const Frame& frame, FrameAnswer& answer) {
    if (frame.length == 0 || frame.length % kParameter != 0) {
        return kIntermecBadFrame;
    }
    for (std::uint32_t at = 0; at < frame.length; at += kParameter) {
        const std::uint8_t value = frame.bytes[at + kIdentifier];
        if (!state.Set(frame.Identifier(at), value)) {
            return kIntermecBadFrame;
        }
        answer.AddIdentifier(frame.Identifier(at));
        answer.Add(value);
    }
    return kIntermecGood;
}

IntermecStatus ReadSetup(const IntermecState& state, const Frame& frame, FrameAnswer& answer) {
    if (frame.length == 0 || frame.length % kIdentifier != 0) {
        return kIntermecBadFrame;
    }
    for (std::uint32_t at = 0; at < frame.length; at += kIdentifier) {
        const std::uint16_t id = frame.Identifier(at);
        if (state.Find(id) == nullptr && state.unknownParameterStatus != 0) {
            return static_cast<IntermecStatus>(state.unknownParameterStatus);
        }
        answer.AddIdentifier(id);
        answer.Add(state.Value(id));
    }
    return kIntermecGood;
}

IntermecStatus Control(IntermecState& state, const Frame& frame, FrameAnswer& answer) {
    if (frame.length < kIdentifier) {
        return kIntermecBadFrame;
    }
    const std::uint16_t id = frame.Identifier(0);
    if (id == kResetLink) {
        ++state.linkReset;
    } else if (id == kPrepareLink || id == kDecoding) {
        if (frame.length != kParameter) {
            return kIntermecBadFrame;
        }
        if (id == kPrepareLink) {
            ++state.linkPrepared;
        } else {
            state.decoding = frame.bytes[kIdentifier];
        }
    }
    answer.AddIdentifier(id);
    return kIntermecGood;
}

IntermecStatus ReadStatus(const IntermecState& state, const Frame& frame, FrameAnswer& answer) {
    if (frame.length != kIdentifier) {
        return kIntermecBadFrame;
    }
    const std::uint16_t id = frame.Identifier(0);
    answer.AddIdentifier(id);
    if (id != kFirmware) {
        answer.AddIdentifier(0);
        return kIntermecGood;
    }
    answer.Add(state.versionStatus[0]);
    answer.Add(state.versionStatus[1]);
    const std::uint32_t length =
        state.versionLength < IntermecState::kVersionRoom ? state.versionLength : IntermecState::kVersionRoom;
    for (std::uint32_t i = 0; i < length; ++i) {
        answer.Add(static_cast<std::uint8_t>(state.version[i]));
    }
    return kIntermecGood;
}

}  // namespace quarlin::sim
