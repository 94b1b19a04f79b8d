// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quarlin::reference {

// The rules of an Intermec engine's record once more, as a list of refusals in the order in which they are found.
struct ScanRecord {
    // Empty when the record is as it should be.
    std::string refusal;
    int number = 0;
    std::array<std::string, 5> fields;
};

ScanRecord ReadScanRecord(const std::vector<std::uint8_t>& received);

// What is wrong with reading a number, or a field, of a record; empty when nothing is.
std::string RefusalOfNumber(std::int64_t recordLength, std::int64_t offset);
std::string RefusalOfField(std::int64_t recordLength, std::int64_t offset, std::int64_t length);

// Fields with a prefix and a suffix around; `scanned` stands for the third.
std::string TextAround(const ScanRecord& record, const std::string& scanned, const std::string& prefix,
                       bool prefixOutside, const std::string& suffix, bool suffixOutside);

}  // namespace quarlin::reference
