// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace quarlin::sim::bus {

enum class ReportType : std::uint8_t {
    kInput,
    kOutput,
    kFeature
};

// The reports that a report descriptor declares. Runs in the driver: no library, no memory of its own.
class ReportLayout {
  public:
    // False when the descriptor is malformed or declares something that the bus does not carry.
    bool Parse(const std::uint8_t* descriptor, std::size_t length);

    // Length of a report with its ID byte, which is there (as 0) even when the descriptor names no IDs; 0 when there is
    // no such report.
    std::uint32_t Length(ReportType type, std::uint8_t id) const;
    // Of the longest report of the type.
    std::uint32_t MaxLength(ReportType type) const;
    bool HasIds() const { return hasIds_; }

  private:
    struct Globals {
        std::uint32_t size;
        std::uint32_t count;
        std::uint8_t id;
    };
    static constexpr std::size_t kDepth = 8;

    bool Declare(ReportType type, const Globals& globals, std::uint32_t usages, bool variable);

    std::uint32_t bits_[3][256];
    bool hasIds_;
    bool hasReports_;
};

}  // namespace quarlin::sim::bus
