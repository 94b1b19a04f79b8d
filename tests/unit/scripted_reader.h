// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/quarlin_exception.h"
#include "uhfrfid/tag_reader.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace quarlin::test {

using Bytes = std::vector<std::uint8_t>;

// What a call came to.
struct Outcome {
    QLerr code = QLERR_OK;
    std::string message;

    bool operator==(const Outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.code << " '" << outcome.message << '\'';
}

inline const Outcome kDone{QLERR_OK, ""};

// A reader that keeps the reports it gets and answers with one that was laid out for it. What lies behind the answer in
// the caller's buffer is rubbish, as it may be with a real one.
class ScriptedReader final : public uhfrfid::ReaderTransport {
  public:
    static constexpr std::size_t kReportSize = 64;

    explicit ScriptedReader(Bytes given = {}, std::size_t size = kReportSize)
        : answer(std::move(given)), reportSize(size) {}

    bool Send(std::span<std::uint8_t> outputReport) override {
        sent.emplace_back(outputReport.begin(), outputReport.end());
        return accepts;
    }

    std::optional<std::size_t> Receive(std::span<std::uint8_t> buffer) override {
        ++reads;
        capacity = buffer.size();
        if (!answers) {
            return std::nullopt;
        }
        std::ranges::fill(buffer, std::uint8_t{0x5A});
        std::ranges::copy(answer, buffer.begin());
        return answer.size();
    }

    // Runs an operation of the tag reader.
    Outcome Do(const std::function<void(uhfrfid::TagReader&)>& operation) {
        uhfrfid::TagReader reader(*this, reportSize);
        try {
            operation(reader);
        } catch (const QuarlinException& failure) {
            return {failure.code, failure.what()};
        }
        return kDone;
    }

    // The one report that was sent, without the zeros that fill it up; nothing when none was sent.
    Bytes Frame() const {
        if (sent.size() != 1 || sent[0].size() != reportSize || sent[0].size() < 2 || sent[0][1] > reportSize) {
            return {};
        }
        const auto end = sent[0].begin() + sent[0][1];
        return std::all_of(end, sent[0].end(), [](std::uint8_t byte) { return byte == 0; })
                   ? Bytes(sent[0].begin(), end)
                   : Bytes{};
    }

    Bytes answer;
    std::size_t reportSize;
    bool accepts = true;
    bool answers = true;

    std::vector<Bytes> sent;
    int reads = 0;
    std::size_t capacity = 0;
};

// An answer: code, length, status and data, filled up with zeros to a size.
inline Bytes Answer(Bytes bytes, std::size_t size = ScriptedReader::kReportSize) {
    bytes.resize(std::max(size, bytes.size()));
    return bytes;
}

// The operations of the reader, each with arguments that are good.
struct Operation {
    const char* name;
    std::uint8_t replyCode;
    std::uint8_t replyLength;
    std::function<void(uhfrfid::TagReader&)> run;

    Bytes GoodAnswer() const { return Answer({replyCode, replyLength, 0}); }
};

inline void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.name;
}

const std::vector<Operation>& Operations();

}  // namespace quarlin::test
