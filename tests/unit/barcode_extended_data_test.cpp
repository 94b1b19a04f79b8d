// SPDX-License-Identifier: Apache-2.0
// How an Intermec engine's record is split, and what is wrong with one.
#include "scan_record.h"

#include <gtest/gtest.h>

#include <climits>
#include <ostream>

namespace quarlin::test {
namespace {

using bcr::ExtendedData;
using bcr::ExtendedDataLength;
using bcr::ReadField;
using bcr::ReadNumber;
using bcr::SplitExtendedData;
using Failure = std::pair<QLerr, std::string>;
using Fields = std::array<std::string, 5>;

const Failure kNone{QLERR_OK, ""};
const Failure kNotAscii{QLERR_INTERNAL_ERROR, "Only ASCII is acceptable for barcode data"};
const Failure kOffsetTooLarge{QLERR_INTERNAL_ERROR, "Offset is smaller than length"};
const Failure kOffsetNegative{QLERR_INTERNAL_ERROR, "Offset cannot be negative"};
const Failure kStringLengthNegative{QLERR_INTERNAL_ERROR, "String length cannot be negative"};
const Failure kStringOffsetNegative{QLERR_INTERNAL_ERROR, "String offset cannot be negative"};
const Failure kStringTooLong{QLERR_INTERNAL_ERROR, "String extends beyond buffer"};
const Failure kNull{QLERR_INTERNAL_ERROR, "dataOut and ptr cannot be null"};
const Failure kInvalid{QLERR_INTERNAL_ERROR, "Invalid barcode data"};

Fields FieldsOf(const ExtendedData& data) {
    Fields fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i] = data.fields[i];
    }
    return fields;
}

Failure FailureOfSplit(const ScanBytes& bytes) {
    const ExactBlock block(bytes);
    return ScanFailureOf([&] { SplitExtendedData(block.Span()); });
}

class BarcodeSplit : public testing::TestWithParam<Fields> {};

TEST_P(BarcodeSplit, GivesTheFieldsInTheirOrder) {
    const ExactBlock block(RecordOf(GetParam()).Bytes());
    EXPECT_EQ(FieldsOf(SplitExtendedData(block.Span())), GetParam());
}

// Without a copy: the views point into what was received, one field behind the other.
TEST_P(BarcodeSplit, PointsIntoTheBytes) {
    const ExactBlock block(RecordOf(GetParam()).Bytes());
    const auto received = block.Span();
    const ExtendedData data = SplitExtendedData(received);
    const char* expected = reinterpret_cast<const char*>(received.data()) + 13;
    for (const std::string_view field : data.fields) {
        EXPECT_EQ(field.data(), expected);
        expected += field.size();
    }
}

// The engine's buffer is larger than a record.
TEST_P(BarcodeSplit, LeavesWhatFollowsAlone) {
    ScanBytes bytes = RecordOf(GetParam()).Bytes();
    bytes.insert(bytes.end(), 100, 'x');
    EXPECT_EQ(FieldsOf(SplitExtendedData(bytes)), GetParam());
}

// Whatever is cut off, some check finds it before a byte is read that has not arrived.
TEST_P(BarcodeSplit, RefusesEachRecordThatIsCutShort) {
    const ScanBytes whole = RecordOf(GetParam()).Bytes();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const ScanBytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const Failure& expected = size == 0 ? kInvalid : size < 13 ? kOffsetTooLarge : kStringTooLong;
        ASSERT_EQ(FailureOfSplit(part), expected) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Records, BarcodeSplit,
                         testing::Values(Fields{"", "", "", "", ""}, Fields{"first", "", "", "", ""},
                                         Fields{"", "second", "", "", ""}, Fields{"", "", "4901234567894", "", ""},
                                         Fields{"", "", "", "fourth", ""}, Fields{"", "", "", "", "]E0"},
                                         Fields{"1", "22", "333", "4444", "55555"},
                                         Fields{std::string(3, '\0'), "\xFF", "\x80", std::string(1, '\0'), "]Q1"},
                                         Fields{"", "", std::string(4000, 'x'), "", "]Q123456"}));

TEST(BarcodeExtendedData, KeepsItsNumberMostSignificantByteFirst) {
    ScanRecord record = RecordOf({"", "", "1", "", ""});
    for (const int number : {0x0000, 0x0001, 0x00FF, 0x0100, 0x1234, 0x8000, 0xFFFF}) {
        record.number = static_cast<std::uint16_t>(number);
        EXPECT_EQ(SplitExtendedData(record.Bytes()).number, number);
    }
}

TEST(BarcodeExtendedData, IsAsciiOrRefused) {
    ScanRecord record = RecordOf({"", "", "1", "", ""});
    for (int type = 0; type < 256; ++type) {
        record.type = static_cast<std::uint8_t>(type);
        EXPECT_EQ(FailureOfSplit(record.Bytes()), type == 1 ? kNone : kNotAscii) << type;
    }
}

TEST(BarcodeExtendedData, TypeIsLookedAtFirst) {
    EXPECT_EQ(FailureOfSplit({2}), kNotAscii);
    EXPECT_EQ(FailureOfSplit(ScanBytes(13, 0xFF)), kNotAscii);
    EXPECT_EQ(FailureOfSplit({1}), kOffsetTooLarge);
}

TEST(BarcodeExtendedData, EmptyAnswerIsInvalid) {
    EXPECT_EQ(FailureOfSplit({}), kInvalid);
    EXPECT_EQ(ScanFailureOf([] { SplitExtendedData({}); }), kInvalid);
}

// Lengths of 128 and more, and of 32,768 and more, have no sign.
TEST(BarcodeExtendedData, LengthsHaveNoSign) {
    for (const std::size_t length : {127U, 128U, 255U, 256U, 32767U, 32768U, 65535U}) {
        for (std::size_t field = 0; field < 4; ++field) {
            Fields fields;
            fields[field] = std::string(length, 'x');
            EXPECT_EQ(FieldsOf(SplitExtendedData(RecordOf(fields).Bytes())), fields) << length << " " << field;
        }
    }
}

TEST(BarcodeExtendedData, TakesTheLargestRecord) {
    Fields fields;
    for (std::size_t i = 0; i < 4; ++i) {
        fields[i] = std::string(65535, static_cast<char>('a' + i));
    }
    fields[4] = "12345678";
    EXPECT_EQ(FieldsOf(SplitExtendedData(RecordOf(fields).Bytes())), fields);
}

// The fifth length is no part of the record's: 8 bytes fit behind the other fields, and not one more.
TEST(BarcodeExtendedData, FifthFieldHas8BytesAtMost) {
    for (const Fields& others : {Fields{}, Fields{"1", "22", "333", "4444", ""}}) {
        for (std::size_t length = 0; length <= 300; ++length) {
            Fields fields = others;
            fields[4] = std::string(length, 'i');
            EXPECT_EQ(FailureOfSplit(RecordOf(fields).Bytes()), length <= 8 ? kNone : kStringTooLong) << length;
        }
    }
}

// Lengths that were made up: the bytes received decide.
TEST(BarcodeExtendedData, ReadsNoFieldBeyondTheBytesReceived) {
    for (std::size_t field = 0; field < 5; ++field) {
        ScanRecord record = RecordOf({"1", "22", "333", "4444", "55555"});
        ++record.lengths[field];
        EXPECT_EQ(FailureOfSplit(record.Bytes()), kStringTooLong) << field;
        record.lengths[field] = 0xFFFF;
        EXPECT_EQ(FailureOfSplit(record.Bytes()), kStringTooLong) << field;
    }
    ScanRecord record = RecordOf({});
    record.lengths = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
    EXPECT_EQ(FailureOfSplit(record.Bytes()), kStringTooLong);
}

TEST(BarcodeRecordLength, IsTheFirstFourLengthsAnd21) {
    ScanRecord record;
    EXPECT_EQ(ExtendedDataLength(record.Bytes().data()), 21);
    for (std::size_t field = 0; field < 4; ++field) {
        record = {};
        record.lengths[field] = 0x0102;
        EXPECT_EQ(ExtendedDataLength(record.Bytes().data()), 0x0102 + 21) << field;
    }
    record.lengths = {0x1000, 0x0200, 0x0030, 0x0004, 0xFFFF};
    EXPECT_EQ(ExtendedDataLength(record.Bytes().data()), 0x1234 + 21);
    record.lengths = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0};
    EXPECT_EQ(ExtendedDataLength(record.Bytes().data()), 4 * 0xFFFF + 21);
}

// Nothing but bytes 3 to 10 counts, and nothing else is read.
TEST(BarcodeRecordLength, IsMadeOfEightBytesAlone) {
    ScanBytes bytes(11, 0xFF);
    std::fill(bytes.begin() + 3, bytes.end(), std::uint8_t{0});
    const ExactBlock block(bytes);
    EXPECT_EQ(ExtendedDataLength(block.Span().data()), 21);
}

TEST(BarcodeRecordLength, OfNoRecordIsInvalid) {
    EXPECT_EQ(ScanFailureOf([] { ExtendedDataLength(nullptr); }), kInvalid);
}

struct NumberRow {
    const char* name;
    bool hasRecord;
    std::int32_t recordLength;
    std::int32_t offset;
    Failure failure;
};

void PrintTo(const NumberRow& row, std::ostream* stream) {
    *stream << row.name;
}

const std::vector<NumberRow> kNumberRows{
    {"AtTheBeginning", true, 4, 0, kNone},
    {"AtTheEnd", true, 4, 2, kNone},
    {"OneByteOver", true, 4, 3, kOffsetTooLarge},
    {"BehindTheEnd", true, 4, 4, kOffsetTooLarge},
    {"HighestOffset", true, 4, INT_MAX, kOffsetTooLarge},
    {"Negative", true, 4, -1, kOffsetNegative},
    {"LowestOffset", true, 4, INT_MIN, kOffsetNegative},
    {"RecordOfOneByte", true, 1, 0, kOffsetTooLarge},
    {"RecordOfTwoBytes", true, 2, 0, kNone},
    {"EmptyRecord", true, 0, 0, kOffsetTooLarge},
    {"NegativeRecordLength", true, -1, 0, kOffsetTooLarge},
    {"LowestRecordLength", true, INT_MIN, 0, kOffsetTooLarge},
    {"NegativeInAnEmptyRecord", true, 0, -1, kOffsetTooLarge},
    {"FurtherBeforeAnEmptyRecord", true, 0, -2, kOffsetNegative},
    {"NoRecord", false, 4, 0, kNull},
    {"NoRecordAndNoOffset", false, 4, -1, kOffsetNegative},
    {"NoRecordAndNoLength", false, 0, 0, kOffsetTooLarge},
};

class BarcodeNumber : public testing::TestWithParam<NumberRow> {};

TEST_P(BarcodeNumber, IsReadWithinTheRecord) {
    const NumberRow& row = GetParam();
    const ExactBlock block({0xFE, 0xDC, 0xBA, 0x98});
    const std::uint8_t* const record = row.hasRecord ? block.Span().data() : nullptr;
    EXPECT_EQ(ScanFailureOf([&] { ReadNumber(record, row.recordLength, row.offset); }), row.failure);
    if (row.failure == kNone) {
        EXPECT_EQ(ReadNumber(record, row.recordLength, row.offset), row.offset == 0 ? 0xFEDC : 0xBA98);
    }
}

INSTANTIATE_TEST_SUITE_P(Offsets, BarcodeNumber, testing::ValuesIn(kNumberRows),
                         [](const auto& test) { return test.param.name; });

struct FieldRow {
    const char* name;
    bool hasRecord;
    bool hasOutput;
    std::int32_t recordLength;
    std::int32_t offset;
    std::int32_t length;
    Failure failure;
};

void PrintTo(const FieldRow& row, std::ostream* stream) {
    *stream << row.name;
}

const std::vector<FieldRow> kFieldRows{
    {"Whole", true, true, 4, 0, 4, kNone},
    {"Within", true, true, 4, 1, 2, kNone},
    {"LastByte", true, true, 4, 3, 1, kNone},
    {"NothingAtTheBeginning", true, true, 4, 0, 0, kNone},
    {"NothingAtTheEnd", true, true, 4, 4, 0, kNone},
    {"NothingBehindTheEnd", true, true, 4, 5, 0, kStringTooLong},
    {"OneByteOver", true, true, 4, 3, 2, kStringTooLong},
    {"HighestLength", true, true, 4, 1, INT_MAX, kStringTooLong},
    {"HighestOffsetAndLength", true, true, INT_MAX, INT_MAX, INT_MAX, kStringTooLong},
    {"LengthNegative", true, true, 4, 0, -1, kStringLengthNegative},
    {"OffsetNegative", true, true, 4, -1, 1, kStringOffsetNegative},
    {"BothNegative", true, true, 4, -1, -1, kStringLengthNegative},
    {"BothLowest", true, true, 4, INT_MIN, INT_MIN, kStringLengthNegative},
    {"EmptyRecord", true, true, 0, 0, 0, kOffsetTooLarge},
    {"EmptyRecordAndAByte", true, true, 0, 0, 1, kStringTooLong},
    {"NegativeRecordLength", true, true, -1, 0, 0, kStringTooLong},
    {"NoRecord", false, true, 4, 0, 1, kNull},
    {"NoOutput", true, false, 4, 0, 1, kNull},
    {"NeitherRecordNorOutput", false, false, 4, 0, 1, kNull},
    {"NoRecordAndTooLong", false, true, 4, 0, 5, kStringTooLong},
    {"NoRecordAndEmpty", false, true, 0, 0, 0, kNull},
};

class BarcodeField : public testing::TestWithParam<FieldRow> {};

TEST_P(BarcodeField, IsReadWithinTheRecord) {
    const FieldRow& row = GetParam();
    const ExactBlock block({'a', 'b', 'c', 'd'});
    std::string_view field = "untouched";
    EXPECT_EQ(ScanFailureOf([&] {
                  ReadField(row.hasRecord ? block.Span().data() : nullptr, row.recordLength, row.offset, row.length,
                            row.hasOutput ? &field : nullptr);
              }),
              row.failure);
    const std::string expected = row.failure == kNone ? std::string("abcd").substr(static_cast<std::size_t>(row.offset),
                                                                                   static_cast<std::size_t>(row.length))
                                                      : "untouched";
    EXPECT_EQ(field, expected);
}

INSTANTIATE_TEST_SUITE_P(Offsets, BarcodeField, testing::ValuesIn(kFieldRows),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace quarlin::test
