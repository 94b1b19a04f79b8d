// SPDX-License-Identifier: Apache-2.0
#include "bcr/extended_data.h"

#include "core/quarlin_exception.h"

namespace quarlin::bcr {

namespace {

constexpr std::uint8_t kAsciiType = 1;
constexpr std::int32_t kNumberAt = 1;
constexpr std::int32_t kLengthsAt = 3;
constexpr std::int32_t kFieldsAt = 13;
// The lengths that the record's own length is made of, and what is added to them: the 13 bytes before the fields and
// room for the last one.
constexpr std::int32_t kCountedLengths = 4;
constexpr std::int32_t kUncountedBytes = 21;

constexpr std::int32_t kNumberSize = 2;

void Check(bool holds, const char* message) {
    Require(holds, QLERR_INTERNAL_ERROR, message);
}

std::int32_t NumberAt(const std::uint8_t* record, std::int32_t offset) {
    return record[offset] << 8 | record[offset + 1];
}

// The bytes that have arrived, with both bounds: that of the record, and their own.
class Reader {
  public:
    explicit Reader(std::span<const std::uint8_t> received) : received_(received) {
        CheckReceived(kLengthsAt + kCountedLengths * kNumberSize, "Offset is smaller than length");
        recordLength_ = ExtendedDataLength(received.data());
    }

    std::uint16_t Number(std::int32_t offset) const {
        CheckReceived(offset + kNumberSize, "Offset is smaller than length");
        return ReadNumber(received_.data(), recordLength_, offset);
    }

    std::string_view Field(std::int32_t offset, std::int32_t length) const {
        CheckReceived(offset + length, "String extends beyond buffer");
        std::string_view field;
        ReadField(received_.data(), recordLength_, offset, length, &field);
        return field;
    }

  private:
    void CheckReceived(std::int32_t end, const char* message) const {
        Check(static_cast<std::size_t>(end) <= received_.size(), message);
    }

    std::span<const std::uint8_t> received_;
    std::int32_t recordLength_ = 0;
};

}  // namespace

std::int32_t ExtendedDataLength(const std::uint8_t* record) {
    Check(record != nullptr, "Invalid barcode data");
    std::int32_t length = kUncountedBytes;
    for (std::int32_t i = 0; i < kCountedLengths; ++i) {
        length += NumberAt(record, kLengthsAt + i * kNumberSize);
    }
    return length;
}

std::uint16_t ReadNumber(const std::uint8_t* record, std::int32_t recordLength, std::int32_t offset) {
    // Together the first two leave no record length below 1.
    Check(std::int64_t{offset} + 1 < recordLength, "Offset is smaller than length");
    Check(offset >= 0, "Offset cannot be negative");
    Check(record != nullptr, "dataOut and ptr cannot be null");
    return static_cast<std::uint16_t>(NumberAt(record, offset));
}

void ReadField(const std::uint8_t* record, std::int32_t recordLength, std::int32_t offset, std::int32_t length,
               std::string_view* out) {
    Check(length >= 0, "String length cannot be negative");
    Check(offset >= 0, "String offset cannot be negative");
    Check(std::int64_t{offset} + length <= recordLength, "String extends beyond buffer");
    Check(record != nullptr && out != nullptr, "dataOut and ptr cannot be null");
    Check(recordLength >= 1, "Offset is smaller than length");
    *out = {reinterpret_cast<const char*>(record) + offset, static_cast<std::size_t>(length)};
}

ExtendedData SplitExtendedData(std::span<const std::uint8_t> received) {
    Check(!received.empty(), "Invalid barcode data");
    Check(received[0] == kAsciiType, "Only ASCII is acceptable for barcode data");
    const Reader reader(received);

    ExtendedData data;
    data.number = reader.Number(kNumberAt);
    std::array<std::uint16_t, ExtendedData::kFieldCount> lengths{};
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        lengths[i] = reader.Number(kLengthsAt + static_cast<std::int32_t>(i) * kNumberSize);
    }
    std::int32_t offset = kFieldsAt;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        data.fields[i] = reader.Field(offset, lengths[i]);
        offset += lengths[i];
    }
    return data;
}

}  // namespace quarlin::bcr
