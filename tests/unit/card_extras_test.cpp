// SPDX-License-Identifier: Apache-2.0
#include "card_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <ostream>
#include <type_traits>

namespace quarlin::test {
namespace {

using Field = const std::uint8_t* (*)(const MagTekExtras&);

// The reader's report, field by field in its order. Places count from the report ID.
struct Row {
    const char* name;
    std::size_t at;
    std::size_t size;
    Field field;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

constexpr std::array kRows{
    Row{"Track1DecodeStatus", 1, 1, [](const MagTekExtras& extras) { return &extras.decodeStatus[0]; }},
    Row{"Track2DecodeStatus", 2, 1, [](const MagTekExtras& extras) { return &extras.decodeStatus[1]; }},
    Row{"Track3DecodeStatus", 3, 1, [](const MagTekExtras& extras) { return &extras.decodeStatus[2]; }},
    Row{"Track1Length", 4, 1, [](const MagTekExtras& extras) { return &extras.length[0]; }},
    Row{"Track2Length", 5, 1, [](const MagTekExtras& extras) { return &extras.length[1]; }},
    Row{"Track3Length", 6, 1, [](const MagTekExtras& extras) { return &extras.length[2]; }},
    Row{"CardEncodeType", 7, 1, [](const MagTekExtras& extras) { return &extras.cardEncodeType; }},
    Row{"Track1Data", 8, 112, [](const MagTekExtras& extras) { return &extras.data[0][0]; }},
    Row{"Track2Data", 120, 112, [](const MagTekExtras& extras) { return &extras.data[1][0]; }},
    Row{"Track3Data", 232, 112, [](const MagTekExtras& extras) { return &extras.data[2][0]; }},
    Row{"Reserved1", 344, 1, [](const MagTekExtras& extras) { return &extras.reserved1; }},
    Row{"MagnePrintStatus", 345, 4, [](const MagTekExtras& extras) { return &extras.magnePrintStatus[0]; }},
    Row{"MagnePrintLength", 349, 1, [](const MagTekExtras& extras) { return &extras.magnePrintLength; }},
    Row{"MagnePrint", 350, 128, [](const MagTekExtras& extras) { return &extras.magnePrint[0]; }},
    Row{"DeviceSerialNumber", 478, 16, [](const MagTekExtras& extras) { return &extras.deviceSerialNumber[0]; }},
    Row{"EncryptionStatus", 494, 2, [](const MagTekExtras& extras) { return &extras.encryptionStatus[0]; }},
    Row{"KeySerialNumber", 496, 10, [](const MagTekExtras& extras) { return &extras.keySerialNumber[0]; }},
    Row{"Track1MaskedLength", 506, 1, [](const MagTekExtras& extras) { return &extras.maskedLength[0]; }},
    Row{"Track2MaskedLength", 507, 1, [](const MagTekExtras& extras) { return &extras.maskedLength[1]; }},
    Row{"Track3MaskedLength", 508, 1, [](const MagTekExtras& extras) { return &extras.maskedLength[2]; }},
    Row{"Track1MaskedData", 509, 112, [](const MagTekExtras& extras) { return &extras.maskedData[0][0]; }},
    Row{"Track2MaskedData", 621, 112, [](const MagTekExtras& extras) { return &extras.maskedData[1][0]; }},
    Row{"Track3MaskedData", 733, 112, [](const MagTekExtras& extras) { return &extras.maskedData[2][0]; }},
    Row{"EncryptedSessionId", 845, 8, [](const MagTekExtras& extras) { return &extras.encryptedSessionId[0]; }},
    Row{"Track1AbsoluteLength", 853, 1, [](const MagTekExtras& extras) { return &extras.absoluteLength[0]; }},
    Row{"Track2AbsoluteLength", 854, 1, [](const MagTekExtras& extras) { return &extras.absoluteLength[1]; }},
    Row{"Track3AbsoluteLength", 855, 1, [](const MagTekExtras& extras) { return &extras.absoluteLength[2]; }},
    Row{"MagnePrintAbsoluteLength", 856, 1, [](const MagTekExtras& extras) { return &extras.absoluteLength[3]; }},
    Row{"EncryptionCounter", 857, 3, [](const MagTekExtras& extras) { return &extras.encryptionCounter[0]; }},
    Row{"Reserved2", 860, 8, [](const MagTekExtras& extras) { return &extras.reserved2[0]; }},
    Row{"Reserved3", 868, 16, [](const MagTekExtras& extras) { return &extras.reserved3[0]; }},
    Row{"Reserved4", 884, 4, [](const MagTekExtras& extras) { return &extras.reserved4[0]; }},
};

static_assert(sizeof(MagTekExtras) == 887);
static_assert(alignof(MagTekExtras) == 1);
static_assert(std::is_trivially_copyable_v<MagTekExtras>);

MagStripeData RecordOf(CardReport& report) {
    MagStripeData record{};
    record.rawLength = report.size();
    record.raw = report.data();
    return record;
}

// On the heap: a byte written beside it is noticed.
std::unique_ptr<MagTekExtras> Untouched() {
    auto extras = std::make_unique<MagTekExtras>();
    std::memset(extras.get(), 0xC5, sizeof *extras);
    return extras;
}

bool IsUntouched(const MagTekExtras& extras) {
    return std::memcmp(&extras, Untouched().get(), sizeof extras) == 0;
}

TEST(CardExtrasTable, CoversEveryByteOfTheReportOnceButTheReportId) {
    std::size_t at = 1;
    for (const Row& row : kRows) {
        EXPECT_EQ(row.at, at) << row.name;
        at += row.size;
    }
    EXPECT_EQ(at, 888U);
}

class CardExtras : public testing::TestWithParam<Row> {};

TEST_P(CardExtras, FieldHoldsItsBytesOfTheReport) {
    CardReport report = NumberedReport();
    const auto extras = Untouched();
    ASSERT_TRUE(msr::ReadMagTekExtras(RecordOf(report), *extras));
    const std::uint8_t* const field = GetParam().field(*extras);
    for (std::size_t i = 0; i < GetParam().size; ++i) {
        ASSERT_EQ(field[i], report[GetParam().at + i]) << i;
    }
}

TEST_P(CardExtras, FieldLiesOneByteBeforeItsPlaceInTheReport) {
    const MagTekExtras extras{};
    const auto place = GetParam().field(extras) - reinterpret_cast<const std::uint8_t*>(&extras);
    EXPECT_EQ(place, static_cast<std::ptrdiff_t>(GetParam().at) - 1);
}

INSTANTIATE_TEST_SUITE_P(Rows, CardExtras, testing::ValuesIn(kRows), [](const auto& test) { return test.param.name; });

TEST(CardExtrasOfARecord, ComeFromItsRawReportAlone) {
    CardReport report = NumberedReport();
    MagStripeData record = RecordOf(report);
    const auto expected = Untouched();
    ASSERT_TRUE(msr::ReadMagTekExtras(record, *expected));
    std::array<std::uint8_t, 112> other{};
    std::array<MagStripeTrackData, 3> tracks{};
    tracks.fill({.bufferSize = 112, .length = 112, .data = other.data()});
    record.trackCount = record.maskedTrackCount = 3;
    record.tracks = record.maskedTracks = tracks.data();
    record.isEncrypted = record.isValid = true;
    const auto extras = Untouched();
    ASSERT_TRUE(msr::ReadMagTekExtras(record, *extras));
    EXPECT_EQ(std::memcmp(extras.get(), expected.get(), sizeof *extras), 0);
}

TEST(CardExtrasOfARecord, LeaveTheReportAsItWas) {
    CardReport report = NumberedReport();
    const auto extras = Untouched();
    ASSERT_TRUE(msr::ReadMagTekExtras(RecordOf(report), *extras));
    EXPECT_EQ(report, NumberedReport());
}

TEST(CardExtrasOfARecord, AreThoseOfASwipe) {
    const CardReport report = GoodReport();
    const msr::SwipeRecord record = Parse(report);
    const auto extras = Untouched();
    ASSERT_TRUE(msr::ReadMagTekExtras(record.Data(), *extras));
    EXPECT_EQ(std::memcmp(extras.get(), report.data() + 1, sizeof *extras), 0);
}

TEST(CardExtrasOfARecord, AreRefusedForAnyOtherLength) {
    for (const std::size_t length : {0U, 1U, 64U, 887U, 889U, 1776U}) {
        CardReport report(length, 0x11);
        const auto extras = Untouched();
        EXPECT_FALSE(msr::ReadMagTekExtras(RecordOf(report), *extras)) << length;
        EXPECT_TRUE(IsUntouched(*extras)) << length;
    }
}

// Lengths of which a part is 888, too. Nothing is read: there is no byte behind the pointer.
TEST(CardExtrasOfARecord, AreRefusedForALengthThatIsTheReportsInTheLowHalfAlone) {
    constexpr std::uint64_t kLow = 888;
    constexpr std::uint64_t kOne = 1;
    for (const std::uint64_t length : {kLow + (kOne << 32), kLow + (kOne << 63), kLow << 32, (kLow << 32) + kLow,
                                       kLow + (kOne << 16), ~kLow + 1, std::numeric_limits<std::uint64_t>::max()}) {
        CardReport none(0);
        none.reserve(1);
        MagStripeData record{};
        record.rawLength = length;
        record.raw = none.data();
        const auto extras = Untouched();
        EXPECT_FALSE(msr::ReadMagTekExtras(record, *extras)) << length;
        EXPECT_TRUE(IsUntouched(*extras)) << length;
    }
}

TEST(CardExtrasOfARecord, AreRefusedWithoutAReport) {
    for (const std::uint64_t length : {888U, 0U, 887U}) {
        MagStripeData record{};
        record.rawLength = length;
        const auto extras = Untouched();
        EXPECT_FALSE(msr::ReadMagTekExtras(record, *extras)) << length;
        EXPECT_TRUE(IsUntouched(*extras)) << length;
    }
}

}  // namespace
}  // namespace quarlin::test
