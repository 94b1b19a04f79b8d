// SPDX-License-Identifier: Apache-2.0
// Scans as the stand-in engine libraries hand them over, for whoever shows them a code.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "scanner/engine_record.h"

namespace quarlin::sim {

// The five fields of an Intermec engine's extended-data record. The third is what was scanned, the fifth the
// symbology identifier.
struct IntermecFields {
    std::string_view first;
    std::string_view second;
    std::string_view data;
    std::string_view fourth;
    std::string_view id = "]C000";
    std::uint8_t type = 1;  // 1: text
    std::uint16_t number = 0;
};

// The record: type, number, five lengths, fields. Throws std::length_error for a field of more than 65535 bytes.
std::string IntermecRecord(const IntermecFields& fields);

// Scans for the inboxes. Throw std::length_error when it is more than ScanSlot::kRoom bytes.
ScanSlot IntermecScan(const IntermecFields& fields);
// Whatever bytes.
ScanSlot RawIntermecScan(std::string_view bytes);
// The text, its terminator, and the identifier cut or filled with zeroes to five bytes. The length told is that of the
// text.
ScanSlot HoneywellScan(std::string_view text, std::string_view id = "]C000");

}  // namespace quarlin::sim
