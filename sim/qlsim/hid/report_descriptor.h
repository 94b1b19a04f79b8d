// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace quarlin::sim {

enum class HidReportKind {
    kInput,
    kOutput,
    kFeature,
};

// A report of a device: bytes of 8 bits each.
struct HidReportShape {
    HidReportKind kind = HidReportKind::kInput;
    std::uint8_t id = 0;    // 0: the device has no report IDs
    std::size_t bytes = 1;  // without the ID byte, 1 to 65535
};

// A descriptor of one application collection on a page of the vendor's own (0xFF00).
std::vector<std::uint8_t> VendorReportDescriptor(const std::vector<HidReportShape>& reports);

// How long reports are, with their ID byte in front, as Windows counts; 0 when there are none of a kind.
struct HidReportLengths {
    std::size_t input = 0;
    std::size_t output = 0;
    std::size_t feature = 0;
};

// Nothing when the bytes are no descriptor with an application collection.
std::optional<HidReportLengths> MeasureReportDescriptor(std::span<const std::uint8_t> descriptor);

}  // namespace quarlin::sim
