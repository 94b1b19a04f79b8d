// SPDX-License-Identifier: Apache-2.0
// Where each part of a swipe's record comes from.
#include "card_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <ostream>
#include <type_traits>

namespace quarlin::test {
namespace {

// The record's owner holds what its pointers point to, so that it must not be copied.
static_assert(!std::is_copy_constructible_v<msr::SwipeRecord> && !std::is_move_constructible_v<msr::SwipeRecord>);

struct TrackRow {
    const char* name;
    bool masked;
    std::size_t track;
    std::size_t lengthAt;
    std::size_t dataAt;
};

void PrintTo(const TrackRow& row, std::ostream* stream) {
    *stream << row.name;
}

constexpr std::array kTrackRows{
    TrackRow{"Track1", false, 0, 4, 8},          TrackRow{"Track2", false, 1, 5, 120},
    TrackRow{"Track3", false, 2, 6, 232},        TrackRow{"MaskedTrack1", true, 0, 506, 509},
    TrackRow{"MaskedTrack2", true, 1, 507, 621}, TrackRow{"MaskedTrack3", true, 2, 508, 733},
};

class CardTrack : public testing::TestWithParam<TrackRow> {
  protected:
    static const MagStripeTrackData& In(const msr::SwipeRecord& record) {
        const MagStripeData& data = record.Data();
        return (GetParam().masked ? data.maskedTracks : data.tracks)[GetParam().track];
    }
};

TEST_P(CardTrack, DataAreThe112BytesOfItsField) {
    const CardReport report = NumberedReport();
    const msr::SwipeRecord record = Parse(report);
    EXPECT_EQ(In(record).bufferSize, 112);
    for (std::size_t i = 0; i < 112; ++i) {
        ASSERT_EQ(In(record).data[i], report[GetParam().dataAt + i]) << i;
    }
}

TEST_P(CardTrack, LengthIsItsByteWithASign) {
    CardReport report = EmptyReport();
    for (int byte = 0; byte < 256; ++byte) {
        report[GetParam().lengthAt] = static_cast<std::uint8_t>(byte);
        ASSERT_EQ(In(Parse(report)).length, byte < 128 ? byte : byte - 256);
    }
}

// Neither a length of 113 nor a negative one shortens, stretches or refuses the data.
TEST_P(CardTrack, DataDoNotDependOnTheLength) {
    CardReport report = NumberedReport();
    for (const int byte : {0, 1, 112, 113, 127, 128, 255}) {
        report[GetParam().lengthAt] = static_cast<std::uint8_t>(byte);
        const msr::SwipeRecord record = Parse(report);
        EXPECT_EQ(In(record).bufferSize, 112);
        EXPECT_TRUE(std::equal(report.begin() + static_cast<std::ptrdiff_t>(GetParam().dataAt),
                               report.begin() + static_cast<std::ptrdiff_t>(GetParam().dataAt) + 112, In(record).data));
    }
}

TEST_P(CardTrack, ComesFromNoOtherByte) {
    const TrackRow& row = GetParam();
    for (std::size_t at = 0; at < 888; ++at) {
        CardReport report = EmptyReport();
        report[at] = 0x5A;
        const msr::SwipeRecord record = Parse(report);
        ASSERT_EQ(In(record).length, at == row.lengthAt ? 0x5A : 0) << at;
        for (std::size_t i = 0; i < 112; ++i) {
            ASSERT_EQ(In(record).data[i], at == row.dataAt + i ? 0x5A : 0) << at;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, CardTrack, testing::ValuesIn(kTrackRows),
                         [](const auto& test) { return test.param.name; });

TEST(CardSwipe, HasThreeTracksAndThreeMaskedTracks) {
    const msr::SwipeRecord record = Parse(EmptyReport());
    EXPECT_EQ(record.Data().trackCount, 3);
    EXPECT_EQ(record.Data().maskedTrackCount, 3);
}

TEST(CardSwipe, CarriesTheWholeReportWithItsReportId) {
    const CardReport report = NumberedReport();
    const msr::SwipeRecord record = Parse(report);
    ASSERT_EQ(record.Data().rawLength, 888U);
    EXPECT_EQ(CardReport(record.Data().raw, record.Data().raw + 888), report);
}

TEST(CardSwipe, OutlivesTheReport) {
    auto report = std::make_unique<CardReport>(NumberedReport());
    const msr::SwipeRecord record = Parse(*report);
    report.reset();
    const CardReport expected = NumberedReport();
    EXPECT_EQ(CardReport(record.Data().raw, record.Data().raw + 888), expected);
    EXPECT_EQ(record.Data().tracks[2].data[111], expected[343]);
    EXPECT_EQ(record.Data().maskedTracks[2].data[111], expected[844]);
}

// What an application writes into one of its buffers shows in no other.
TEST(CardSwipe, HasABufferOfItsOwnForEachTrackAndForTheReport) {
    const CardReport report = NumberedReport();
    const msr::SwipeRecord record = Parse(report);
    const MagStripeData& data = record.Data();
    std::array<std::uint8_t*, 6> buffers{};
    for (std::size_t i = 0; i < 3; ++i) {
        buffers[i] = data.tracks[i].data;
        buffers[3 + i] = data.maskedTracks[i].data;
    }
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        std::fill_n(buffers[i], 112, static_cast<std::uint8_t>(0xA0 + i));
    }
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        EXPECT_EQ(std::count(buffers[i], buffers[i] + 112, 0xA0 + i), 112) << i;
    }
    EXPECT_EQ(CardReport(data.raw, data.raw + 888), report);
    std::fill_n(data.raw, 888, std::uint8_t{0xEE});
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        EXPECT_EQ(std::count(buffers[i], buffers[i] + 112, 0xA0 + i), 112) << i;
    }
}

TEST(CardEncryption, IsToldByTwoBitsThatMustBothBeSet) {
    constexpr std::array kEncrypted{0x06, 0x07, 0x0E, 0x0F};  // of the low half; the high half says nothing
    CardReport report = GoodReport();
    for (int status = 0; status < 256; ++status) {
        report[495] = static_cast<std::uint8_t>(status);
        const bool expected = std::ranges::find(kEncrypted, status & 0x0F) != kEncrypted.end();
        ASSERT_EQ(Parse(report).Data().isEncrypted, expected) << status;
    }
}

TEST(CardEncryption, IsToldByNoOtherByte) {
    for (std::size_t at = 0; at < 888; ++at) {
        CardReport report = EmptyReport();
        report[at] = 0xFF;
        ASSERT_EQ(Parse(report).Data().isEncrypted, at == 495) << at;
    }
}

}  // namespace
}  // namespace quarlin::test
