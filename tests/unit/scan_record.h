// SPDX-License-Identifier: Apache-2.0
// Scans as an Intermec engine's library hands them over.
#pragma once

#include "bcr/extended_data.h"
#include "core/quarlin_exception.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace quarlin::test {

using ScanBytes = std::vector<std::uint8_t>;

// A record's bytes, every one of them given: what does not fit together stays as it is.
struct ScanRecord {
    std::uint8_t type = 1;
    std::uint16_t number = 0;
    std::array<std::uint16_t, 5> lengths{};
    std::string fields;

    ScanBytes Bytes() const {
        ScanBytes bytes{type};
        const auto append = [&bytes](std::uint16_t value) {
            bytes.push_back(static_cast<std::uint8_t>(value >> 8));
            bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
        };
        append(number);
        for (const std::uint16_t length : lengths) {
            append(length);
        }
        bytes.insert(bytes.end(), fields.begin(), fields.end());
        return bytes;
    }
};

// A record that is as it should be.
inline ScanRecord RecordOf(const std::array<std::string, 5>& fields) {
    ScanRecord record;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        record.lengths[i] = static_cast<std::uint16_t>(fields[i].size());
        record.fields += fields[i];
    }
    return record;
}

// Bytes in a block of exactly their number: one read behind them is noticed.
class ExactBlock {
  public:
    explicit ExactBlock(const ScanBytes& bytes)
        : size_(bytes.size()), bytes_(std::make_unique<std::uint8_t[]>(bytes.size())) {
        std::copy(bytes.begin(), bytes.end(), bytes_.get());
    }
    std::span<const std::uint8_t> Span() const { return {bytes_.get(), size_}; }

  private:
    std::size_t size_;
    std::unique_ptr<std::uint8_t[]> bytes_;
};

// The failure that a call raises; QLERR_OK when it raises none.
template <typename Call>
std::pair<QLerr, std::string> ScanFailureOf(Call&& call) {
    try {
        call();
    } catch (const QuarlinException& failure) {
        return {failure.code, failure.what()};
    }
    return {QLERR_OK, ""};
}

}  // namespace quarlin::test
