// SPDX-License-Identifier: Apache-2.0
#include "hidbus/report_layout.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "hidbus/bus_protocol.h"

namespace quarlin::sim::bus {
namespace {

using Bytes = std::vector<std::uint8_t>;

// An application collection around items, with 8-bit fields.
Bytes Collection(const Bytes& items) {
    Bytes descriptor = {0x06, 0x00, 0xff, 0x09, 0x01, 0xa1, 0x01, 0x75, 0x08};
    descriptor.insert(descriptor.end(), items.begin(), items.end());
    descriptor.push_back(0xc0);
    return descriptor;
}

bool Parses(const Bytes& descriptor) {
    ReportLayout layout;
    return layout.Parse(descriptor.data(), descriptor.size());
}

TEST(ReportLayout, CountsTheIdByteWithoutIds) {
    ReportLayout layout;
    const Bytes descriptor = Collection({0x96, 0x77, 0x03, 0x81, 0x02, 0x95, 0x3f, 0x91, 0x02, 0x95, 0x18, 0xb1, 0x02});
    ASSERT_TRUE(layout.Parse(descriptor.data(), descriptor.size()));
    EXPECT_FALSE(layout.HasIds());
    EXPECT_EQ(layout.Length(ReportType::kInput, 0), 888u);
    EXPECT_EQ(layout.Length(ReportType::kOutput, 0), 64u);
    EXPECT_EQ(layout.Length(ReportType::kFeature, 0), 25u);
    EXPECT_EQ(layout.Length(ReportType::kInput, 1), 0u);
}

TEST(ReportLayout, KeepsReportsOfDifferentIdsApart) {
    ReportLayout layout;
    const Bytes descriptor =
        Collection({0x85, 0x01, 0x95, 0x08, 0x81, 0x02, 0x85, 0x02, 0x95, 0x14, 0x81, 0x02, 0x91, 0x02});
    ASSERT_TRUE(layout.Parse(descriptor.data(), descriptor.size()));
    EXPECT_TRUE(layout.HasIds());
    EXPECT_EQ(layout.Length(ReportType::kInput, 0), 0u);
    EXPECT_EQ(layout.Length(ReportType::kInput, 1), 9u);
    EXPECT_EQ(layout.Length(ReportType::kInput, 2), 21u);
    EXPECT_EQ(layout.Length(ReportType::kOutput, 1), 0u);
    EXPECT_EQ(layout.Length(ReportType::kOutput, 2), 21u);
    EXPECT_EQ(layout.MaxLength(ReportType::kInput), 21u);
    EXPECT_EQ(layout.MaxLength(ReportType::kFeature), 0u);
}

TEST(ReportLayout, AddsFieldsAndRoundsBitsUp) {
    ReportLayout layout;
    // Three bits, then five fields of two bits: thirteen in all.
    const Bytes descriptor = Collection({0x75, 0x03, 0x95, 0x01, 0x81, 0x02, 0x75, 0x02, 0x95, 0x05, 0x81, 0x02});
    ASSERT_TRUE(layout.Parse(descriptor.data(), descriptor.size()));
    EXPECT_EQ(layout.Length(ReportType::kInput, 0), 3u);
}

TEST(ReportLayout, RestoresPushedSizesAndIds) {
    ReportLayout layout;
    const Bytes descriptor =
        Collection({0x85, 0x01, 0x95, 0x02, 0xa4, 0x85, 0x02, 0x95, 0x05, 0x81, 0x02, 0xb4, 0x81, 0x02});
    ASSERT_TRUE(layout.Parse(descriptor.data(), descriptor.size()));
    EXPECT_EQ(layout.Length(ReportType::kInput, 2), 6u);
    EXPECT_EQ(layout.Length(ReportType::kInput, 1), 3u);
}

struct Malformed {
    const char* name;
    Bytes descriptor;
};

const Malformed kMalformed[] = {
    {"Empty", {}},
    {"CutInAnItem", {0x06, 0x00}},
    {"CutBeforeTheLastByteOfAnItem", {0x09, 0x01, 0xa1, 0x01, 0x75, 0x08, 0x95, 0x01, 0x81, 0x02, 0xc0, 0x09}},
    {"LongItem", Collection({0xfe, 0x00, 0x01, 0x95, 0x01, 0x81, 0x02})},
    {"ReservedType", Collection({0x0c, 0x95, 0x01, 0x81, 0x02})},
    {"Delimiter", Collection({0xa9, 0x01, 0x95, 0x01, 0x81, 0x02})},
    {"FieldOutsideACollection", {0x75, 0x08, 0x95, 0x01, 0x81, 0x02}},
    {"CollectionNotEnded", {0x09, 0x01, 0xa1, 0x01, 0x75, 0x08, 0x95, 0x01, 0x81, 0x02}},
    {"CollectionEndedTwice", {0xa1, 0x01, 0x75, 0x08, 0x95, 0x01, 0x81, 0x02, 0xc0, 0xc0}},
    {"TwoCollectionsAtTheTop", {0xa1, 0x01, 0x75, 0x08, 0x95, 0x01, 0x81, 0x02, 0xc0, 0xa1, 0x01, 0xc0}},
    {"NoInput", Collection({0x95, 0x01, 0xb1, 0x02})},
    {"InputWithoutBits", Collection({0x95, 0x00, 0x81, 0x02})},
    {"IdZero", Collection({0x85, 0x00, 0x95, 0x01, 0x81, 0x02})},
    {"IdAfterTheFirstReport", Collection({0x95, 0x01, 0x81, 0x02, 0x85, 0x01, 0x81, 0x02})},
    {"PopWithoutPush", Collection({0xb4, 0x95, 0x01, 0x81, 0x02})},
    {"NinePushes", Collection({0xa4, 0xa4, 0xa4, 0xa4, 0xa4, 0xa4, 0xa4, 0xa4, 0xa4, 0x95, 0x01, 0x81, 0x02})},
    {"MoreUsagesThanFields", Collection({0x95, 0x01, 0x09, 0x01, 0x09, 0x02, 0x81, 0x02})},
    {"ReportTooLong", Collection({0x96, 0x01, 0x10, 0x81, 0x02})},
    {"ReportTooLongTogether", Collection({0x96, 0x00, 0x10, 0x81, 0x02, 0x95, 0x01, 0x81, 0x02})},
    {"SizeTimesCountOverflows", Collection({0x77, 0x00, 0x00, 0x01, 0x00, 0x97, 0x00, 0x00, 0x01, 0x00, 0x81, 0x02})},
};

class MalformedDescriptor : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedDescriptor, IsRefused) {
    EXPECT_FALSE(Parses(GetParam().descriptor));
}

INSTANTIATE_TEST_SUITE_P(All, MalformedDescriptor, testing::ValuesIn(kMalformed),
                         [](const auto& malformed) { return std::string(malformed.param.name); });

TEST(ReportLayout, TakesTheLongestReportThatTheBusCarries) {
    EXPECT_TRUE(Parses(Collection({0x96, 0x00, 0x10, 0x81, 0x02})));
}

// Whatever is accepted stays within what the driver has room for.
TEST(ReportLayout, KeepsItsBoundsForDescriptorsWithErrors) {
    std::mt19937 random(7);
    const Bytes good =
        Collection({0x85, 0x01, 0x95, 0x08, 0x81, 0x02, 0x85, 0x02, 0x95, 0x14, 0x81, 0x02, 0x91, 0x02, 0xb1, 0x02});
    int accepted = 0;
    for (int i = 0; i < 100'000; ++i) {
        Bytes descriptor = good;
        for (int changes = 1 + static_cast<int>(random() % 3); changes > 0; --changes) {
            descriptor[random() % descriptor.size()] = static_cast<std::uint8_t>(random());
        }
        descriptor.resize(random() % 8 == 0 ? random() % descriptor.size() : descriptor.size());
        ReportLayout layout;
        if (!layout.Parse(descriptor.data(), descriptor.size())) {
            continue;
        }
        ++accepted;
        ASSERT_GE(layout.MaxLength(ReportType::kInput), 2u);
        for (const ReportType type : {ReportType::kInput, ReportType::kOutput, ReportType::kFeature}) {
            ASSERT_LE(layout.MaxLength(type), kMaxReport);
            ASSERT_EQ(layout.Length(type, 0) != 0 && layout.HasIds(), false);
        }
    }
    EXPECT_GT(accepted, 1000);
}

}  // namespace
}  // namespace quarlin::sim::bus
