// SPDX-License-Identifier: Apache-2.0
#include "hidbus/report_layout.h"

#include "hidbus/bus_protocol.h"

namespace quarlin::sim::bus {
namespace {

// The first byte of an item without its size bits.
enum Item : std::uint8_t {
    kInput = 0x80,
    kOutput = 0x90,
    kFeature = 0xb0,
    kCollection = 0xa0,
    kEndCollection = 0xc0,
    kReportSize = 0x74,
    kReportId = 0x84,
    kReportCount = 0x94,
    kPush = 0xa4,
    kPop = 0xb4,
    kUsage = 0x08,
    kUsageMinimum = 0x18,
    kUsageMaximum = 0x28,
    kDelimiter = 0xa8,
};

constexpr std::uint8_t kLongItem = 0xfe;
constexpr std::uint8_t kReservedType = 0x0c;
constexpr std::uint32_t kVariable = 0x02;
// How many usages Windows remembers for one main item.
constexpr std::uint32_t kMaxUsages = 254;

}  // namespace

bool ReportLayout::Declare(ReportType type, const Globals& globals, std::uint32_t usages, bool variable) {
    // A report ID must come before the first report or not at all.
    if ((globals.id != 0) != hasIds_ && hasReports_) {
        return false;
    }
    hasIds_ = globals.id != 0;
    hasReports_ = true;
    constexpr std::uint32_t kMaxBits = (kMaxReport - 1) * 8;
    if (globals.size > kMaxBits || globals.count > kMaxBits || globals.size * globals.count > kMaxBits) {
        return false;
    }
    if (variable && globals.count != 0 && usages > globals.count) {
        return false;
    }
    std::uint32_t& bits = bits_[static_cast<std::size_t>(type)][globals.id];
    bits += globals.size * globals.count;
    return bits <= kMaxBits;
}

bool ReportLayout::Parse(const std::uint8_t* descriptor, std::size_t length) {
    for (auto& type : bits_) {
        for (std::uint32_t& bits : type) {
            bits = 0;
        }
    }
    hasIds_ = false;
    hasReports_ = false;

    Globals globals = {};
    Globals stack[kDepth];
    std::size_t pushed = 0;
    std::size_t depth = 0;
    std::size_t collections = 0;
    std::uint32_t usages = 0;
    std::size_t position = 0;
    while (position < length) {
        const std::uint8_t prefix = descriptor[position++];
        if (prefix == kLongItem || (prefix & kReservedType) == kReservedType) {
            return false;
        }
        const std::size_t size = (prefix & 3) == 3 ? 4 : prefix & 3;
        if (size > length - position) {
            return false;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value |= static_cast<std::uint32_t>(descriptor[position + i]) << (8 * i);
        }
        position += size;

        switch (prefix & ~3) {
            case kInput:
            case kOutput:
            case kFeature: {
                const ReportType type = (prefix & ~3) == kInput    ? ReportType::kInput
                                        : (prefix & ~3) == kOutput ? ReportType::kOutput
                                                                   : ReportType::kFeature;
                if (depth == 0 || !Declare(type, globals, usages, (value & kVariable) != 0)) {
                    return false;
                }
                usages = 0;
                break;
            }
            case kCollection:
                // Windows makes a device of each collection at the top; the bus makes one.
                if ((depth == 0 && ++collections > 1) || ++depth > kDepth) {
                    return false;
                }
                usages = 0;
                break;
            case kEndCollection:
                if (depth-- == 0) {
                    return false;
                }
                usages = 0;
                break;
            case kReportSize:
                globals.size = value;
                break;
            case kReportCount:
                globals.count = value;
                break;
            case kReportId:
                if (value == 0 || value > 0xff) {
                    return false;
                }
                globals.id = static_cast<std::uint8_t>(value);
                break;
            case kPush:
                if (pushed == kDepth) {
                    return false;
                }
                stack[pushed++] = globals;
                break;
            case kPop:
                if (pushed == 0) {
                    return false;
                }
                globals = stack[--pushed];
                break;
            case kUsage:
                if (++usages > kMaxUsages) {
                    return false;
                }
                break;
            case kUsageMinimum:
            case kUsageMaximum:
                usages = 1;
                break;
            case kDelimiter:
                return false;
            default:
                break;
        }
    }
    // A device on the USB always has a pipe for input.
    return depth == 0 && MaxLength(ReportType::kInput) != 0;
}

std::uint32_t ReportLayout::Length(ReportType type, std::uint8_t id) const {
    const std::uint32_t bits = bits_[static_cast<std::size_t>(type)][id];
    return bits == 0 ? 0 : 1 + (bits + 7) / 8;
}

std::uint32_t ReportLayout::MaxLength(ReportType type) const {
    std::uint32_t longest = 0;
    for (std::uint32_t id = 0; id < 256; ++id) {
        const std::uint32_t length = Length(type, static_cast<std::uint8_t>(id));
        longest = length > longest ? length : longest;
    }
    return longest;
}

}  // namespace quarlin::sim::bus
