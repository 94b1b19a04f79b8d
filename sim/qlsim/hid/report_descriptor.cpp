// SPDX-License-Identifier: Apache-2.0
#include "hid/report_descriptor.h"

#include <algorithm>
#include <array>
#include <map>

namespace quarlin::sim {
namespace {

// Items of a report descriptor: the prefix without the two bits that tell how much data follows.
enum Item : std::uint8_t {
    kInputItem = 0x80,
    kOutputItem = 0x90,
    kFeatureItem = 0xB0,
    kCollection = 0xA0,
    kEndCollection = 0xC0,
    kUsagePage = 0x04,
    kLogicalMinimum = 0x14,
    kLogicalMaximum = 0x24,
    kReportSize = 0x74,
    kReportId = 0x84,
    kReportCount = 0x94,
    kPush = 0xA4,
    kPop = 0xB4,
    kUsage = 0x08,
};

constexpr std::uint8_t kLongItem = 0xFE;
constexpr std::uint32_t kApplication = 1;

void Add(std::vector<std::uint8_t>& descriptor, Item item, std::uint32_t value) {
    const bool wide = value > 0xFF;
    descriptor.push_back(static_cast<std::uint8_t>(item | (wide ? 2 : 1)));
    descriptor.push_back(static_cast<std::uint8_t>(value));
    if (wide) {
        descriptor.push_back(static_cast<std::uint8_t>(value >> 8));
    }
}

Item ItemOf(HidReportKind kind) {
    switch (kind) {
        case HidReportKind::kInput:
            return kInputItem;
        case HidReportKind::kOutput:
            return kOutputItem;
        case HidReportKind::kFeature:
            break;
    }
    return kFeatureItem;
}

// What "push" keeps.
struct Globals {
    std::uint32_t size = 0;
    std::uint32_t count = 0;
    std::uint32_t id = 0;
};

struct Walk {
    Globals globals;
    std::vector<Globals> kept;
    int depth = 0;
    bool application = false;
    bool ids = false;
    std::array<std::map<std::uint32_t, std::size_t>, 3> bits;  // of each kind, by report ID

    bool Take(std::uint8_t item, std::uint32_t value) {
        switch (item) {
            case kReportSize:
                globals.size = value;
                return value <= 32;
            case kReportCount:
                globals.count = value;
                return value <= 0xFFFF;
            case kReportId:
                globals.id = value;
                ids = true;
                return value >= 1 && value <= 0xFF;
            case kPush:
                kept.push_back(globals);
                return true;
            case kPop:
                if (kept.empty()) {
                    return false;
                }
                globals = kept.back();
                kept.pop_back();
                return true;
            case kCollection:
                application = application || (depth == 0 && value == kApplication);
                ++depth;
                return true;
            case kEndCollection:
                --depth;
                return depth >= 0;
            case kInputItem:
                return Count(0);
            case kOutputItem:
                return Count(1);
            case kFeatureItem:
                return Count(2);
            default:
                return true;  // what reports mean has no effect on their length
        }
    }
    bool Count(std::size_t kind) {
        bits[kind][globals.id] += std::size_t{globals.size} * globals.count;
        return depth > 0;
    }
    std::size_t Longest(std::size_t kind) const {
        std::size_t longest = 0;
        for (const auto& [id, count] : bits[kind]) {
            longest = std::max(longest, count);
        }
        return longest == 0 ? 0 : 1 + (longest + 7) / 8;
    }
};

}  // namespace

std::vector<std::uint8_t> VendorReportDescriptor(const std::vector<HidReportShape>& reports) {
    std::vector<std::uint8_t> descriptor;
    Add(descriptor, kUsagePage, 0xFF00);
    Add(descriptor, kUsage, 1);
    Add(descriptor, kCollection, kApplication);
    // As two bytes: 0xFF in one would be -1.
    Add(descriptor, kLogicalMinimum, 0);
    descriptor.insert(descriptor.end(), {kLogicalMaximum | 2, 0xFF, 0x00});
    Add(descriptor, kReportSize, 8);
    std::uint32_t usage = 0x20;
    for (const HidReportShape& report : reports) {
        if (report.id != 0) {
            Add(descriptor, kReportId, report.id);
        }
        Add(descriptor, kUsage, usage++);
        Add(descriptor, kReportCount, static_cast<std::uint32_t>(report.bytes));
        Add(descriptor, ItemOf(report.kind), 0x02);  // data, variable, absolute
    }
    descriptor.push_back(kEndCollection);
    return descriptor;
}

std::optional<HidReportLengths> MeasureReportDescriptor(std::span<const std::uint8_t> descriptor) {
    Walk walk;
    std::size_t at = 0;
    while (at < descriptor.size()) {
        const std::uint8_t prefix = descriptor[at++];
        if (prefix == kLongItem) {
            return std::nullopt;  // nobody uses them
        }
        const std::size_t size = (prefix & 3) == 3 ? 4 : prefix & 3;
        if (descriptor.size() - at < size) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value |= std::uint32_t{descriptor[at + i]} << (8 * i);
        }
        at += size;
        if (!walk.Take(prefix & 0xFC, value)) {
            return std::nullopt;
        }
    }
    if (walk.depth != 0 || !walk.application) {
        return std::nullopt;
    }
    return HidReportLengths{walk.Longest(0), walk.Longest(1), walk.Longest(2)};
}

}  // namespace quarlin::sim
