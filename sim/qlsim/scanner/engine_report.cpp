// SPDX-License-Identifier: Apache-2.0
#include "scanner/engine_report.h"

namespace quarlin::sim::scanner {

nlohmann::ordered_json EngineCallsOf(FunctionNames names, EngineCallLog& log, std::uint64_t most) {
    auto json = nlohmann::ordered_json::array();
    const std::uint64_t count = log.Count();
    const std::uint64_t first = std::max(log.First(), count - std::min(count, most));
    for (std::uint64_t number = first; number < count; ++number) {
        const EngineCall* const place = log.At(number);
        if (place == nullptr) {
            continue;
        }
        const EngineCall call = *place;
        const std::size_t bytes = std::min<std::size_t>(call.requestBytes, EngineCall::kRoom);
        nlohmann::ordered_json described;
        // Any program of the machine can write to the record.
        described["function"] = call.function < names.size() ? names[call.function] : "?";
        described["status"] = call.status;
        described["arguments"] = call.arguments;
        described["request"] = HexText(std::span(call.request, bytes));
        described["request_length"] = call.requestLength;
        described["answer_length"] = call.answerLength;
        described["process"] = call.process;
        described["thread"] = call.thread;
        described["milliseconds"] = call.milliseconds;
        json.push_back(std::move(described));
    }
    return json;
}

nlohmann::ordered_json RefusalsOf(FunctionNames names, std::span<const Refusal> refusals) {
    auto json = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < names.size() && i < refusals.size(); ++i) {
        const Refusal& refusal = refusals[i];
        if (refusal.count == 0) {
            continue;
        }
        nlohmann::ordered_json described;
        described["status"] = refusal.status;
        if (refusal.count == Refusal::kAlways) {
            described["count"] = "always";
        } else {
            described["count"] = refusal.count;
        }
        described["skip"] = refusal.skip;
        if (refusal.beginning != 0) {
            described["beginning"] = HexText(refusal.beginning);
        }
        json[names[i]] = std::move(described);
    }
    return json;
}

}  // namespace quarlin::sim::scanner
