// SPDX-License-Identifier: Apache-2.0
#include "scanner/scan_bytes.h"

#include <algorithm>
#include <initializer_list>
#include <stdexcept>

namespace quarlin::sim {
namespace {

constexpr std::uint32_t kIntermecScanType = 100;
constexpr std::uint32_t kHoneywellScanType = 1;
constexpr std::size_t kHoneywellIdLength = 5;

void Append(std::string& bytes, std::size_t number) {
    if (number > 0xFFFF) {
        throw std::length_error("a field of an extended-data record has 65535 bytes at most");
    }
    bytes.push_back(static_cast<char>(number >> 8));
    bytes.push_back(static_cast<char>(number & 0xFF));
}

ScanSlot Scan(std::string_view bytes, std::uint32_t type) {
    if (bytes.size() > ScanSlot::kRoom) {
        throw std::length_error("a scan has " + std::to_string(ScanSlot::kRoom) + " bytes at most");
    }
    ScanSlot scan{};
    scan.length = static_cast<std::uint32_t>(bytes.size());
    scan.claimed = scan.length;
    scan.eventType = type;
    std::copy(bytes.begin(), bytes.end(), &scan.bytes[0]);
    return scan;
}

}  // namespace

std::string IntermecRecord(const IntermecFields& fields) {
    std::string bytes(1, static_cast<char>(fields.type));
    Append(bytes, fields.number);
    const std::initializer_list<std::string_view> all{fields.first, fields.second, fields.data, fields.fourth,
                                                      fields.id};
    for (const std::string_view field : all) {
        Append(bytes, field.size());
    }
    for (const std::string_view field : all) {
        bytes += field;
    }
    return bytes;
}

ScanSlot IntermecScan(const IntermecFields& fields) {
    return Scan(IntermecRecord(fields), kIntermecScanType);
}

ScanSlot RawIntermecScan(std::string_view bytes) {
    return Scan(bytes, kIntermecScanType);
}

ScanSlot HoneywellScan(std::string_view text, std::string_view id) {
    std::string bytes(text);
    bytes.push_back('\0');
    bytes += id.substr(0, kHoneywellIdLength);
    bytes.resize(text.size() + 1 + kHoneywellIdLength);
    ScanSlot scan = Scan(bytes, kHoneywellScanType);
    scan.claimed = static_cast<std::uint32_t>(text.size());
    return scan;
}

}  // namespace quarlin::sim
