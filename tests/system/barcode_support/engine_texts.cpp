// SPDX-License-Identifier: Apache-2.0
#include "barcode_support/engine_texts.h"

#include <cstddef>
#include <cstdint>

namespace quarlin::test {
namespace {

std::string RequestOf(const sim::EngineCall& call) {
    return {reinterpret_cast<const char*>(call.request), call.requestBytes};
}

std::string Number(std::int64_t number) {
    return " " + std::to_string(number);
}

}  // namespace

std::string HexText(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<std::uint8_t>(byte);
        text += text.empty() ? "" : " ";
        text += kDigits[value >> 4];
        text += kDigits[value & 15];
    }
    return text;
}

std::string TextOf(sim::IntermecFunction function, const sim::EngineCall& call) {
    using Function = sim::IntermecFunction;
    std::string text = sim::kIntermecFunctionNames[static_cast<std::size_t>(function)];
    switch (function) {
        case Function::kControlCommand:
        case Function::kSetupRead:
        case Function::kSetupWrite:
        case Function::kStatusRead:
            return text + " " + HexText(RequestOf(call));
        case Function::kInitialize:
            return text + " " + RequestOf(call);
        case Function::kDeviceIOControl:
            return text + Number(call.arguments[0]) + " " +
                   (call.arguments[0] == sim::kIntermecSetPath ? RequestOf(call) : HexText(RequestOf(call)));
        case Function::kMessageIdentify:
            return text + Number(call.arguments[1]);
        default:
            return text;
    }
}

std::string TextOf(sim::HoneywellFunction function, const sim::EngineCall& call) {
    using Function = sim::HoneywellFunction;
    std::string text = std::string(sim::kHoneywellFunctionNames[static_cast<std::size_t>(function)]).substr(5);
    switch (function) {
        case Function::kInitialize:
        case Function::kSetPathName:
        case Function::kSendMenuCommand:
            return text + " " + RequestOf(call);
        case Function::kLimitToHoneywellDevices:
        case Function::kStartReadingSession:
        case Function::kStopReadingSession:
            return text + Number(call.arguments[0]) + Number(call.arguments[1]);
        case Function::kGetDeviceFromList:
        case Function::kRegisterCallback:
        case Function::kDisconnect:
            return text + Number(call.arguments[0]);
        default:
            return text;
    }
}

}  // namespace quarlin::test
