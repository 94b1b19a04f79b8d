// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quarlin::bcr {

// A scan as an Intermec engine hands it over: a type, a number, the lengths of five fields, and the fields. What is
// wrong with a record is raised as QLERR_INTERNAL_ERROR.
struct ExtendedData {
    static constexpr std::size_t kFieldCount = 5;

    std::uint16_t number = 0;  // kept with the record; nothing reads it
    // Views of the record's bytes. The third is the scanned text, the fifth the symbology identifier.
    std::array<std::string_view, kFieldCount> fields;
};

// The length that the record's own checks go by. It is made of the first four lengths alone and leaves the fifth field
// 8 bytes at most: the engine's rule.
std::int32_t ExtendedDataLength(const std::uint8_t* record);

// A 16-bit number, most significant byte first, of a record of that length.
std::uint16_t ReadNumber(const std::uint8_t* record, std::int32_t recordLength, std::int32_t offset);

// A field of a record of that length.
void ReadField(const std::uint8_t* record, std::int32_t recordLength, std::int32_t offset, std::int32_t length,
               std::string_view* out);

// Splits what the engine has handed over. Whatever the lengths in the record say, nothing behind `received` is read.
ExtendedData SplitExtendedData(std::span<const std::uint8_t> received);

}  // namespace quarlin::bcr
