// SPDX-License-Identifier: Apache-2.0
#include "reference/reference_scan_record.h"

namespace quarlin::reference {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Takes one part after the other off the bytes received.
class Cursor {
  public:
    explicit Cursor(const Bytes& bytes) : rest_(bytes.begin(), bytes.end()) {}

    bool Has(std::size_t count) const { return rest_.size() >= count; }
    std::string Take(std::size_t count) {
        const std::string part = rest_.substr(0, count);
        rest_ = rest_.substr(count);
        return part;
    }
    int TakeByte() { return static_cast<unsigned char>(Take(1)[0]); }
    int TakeNumber() {
        const int high = TakeByte();
        return high * 256 + TakeByte();
    }

  private:
    std::string rest_;
};

ScanRecord Refused(const char* refusal) {
    ScanRecord record;
    record.refusal = refusal;
    return record;
}

}  // namespace

ScanRecord ReadScanRecord(const Bytes& received) {
    Cursor cursor(received);
    if (!cursor.Has(1)) {
        return Refused("Invalid barcode data");
    }
    if (cursor.TakeByte() != 1) {
        return Refused("Only ASCII is acceptable for barcode data");
    }
    // A number and five lengths.
    if (!cursor.Has(12)) {
        return Refused("Offset is smaller than length");
    }
    ScanRecord record;
    record.number = cursor.TakeNumber();
    std::array<int, 5> lengths{};
    for (int& length : lengths) {
        length = cursor.TakeNumber();
    }
    if (lengths[4] > 8) {
        return Refused("String extends beyond buffer");
    }
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const auto length = static_cast<std::size_t>(lengths[i]);
        if (!cursor.Has(length)) {
            return Refused("String extends beyond buffer");
        }
        record.fields[i] = cursor.Take(length);
    }
    return record;
}

std::string RefusalOfNumber(std::int64_t recordLength, std::int64_t offset) {
    if (!(offset + 1 < recordLength)) {
        return "Offset is smaller than length";
    }
    return offset < 0 ? "Offset cannot be negative" : "";
}

std::string RefusalOfField(std::int64_t recordLength, std::int64_t offset, std::int64_t length) {
    if (length < 0) {
        return "String length cannot be negative";
    }
    if (offset < 0) {
        return "String offset cannot be negative";
    }
    if (offset + length > recordLength) {
        return "String extends beyond buffer";
    }
    return recordLength < 1 ? "Offset is smaller than length" : "";
}

std::string TextAround(const ScanRecord& record, const std::string& scanned, const std::string& prefix,
                       bool prefixOutside, const std::string& suffix, bool suffixOutside) {
    const std::string before = prefixOutside ? prefix + record.fields[0] : record.fields[0] + prefix;
    const std::string behind = suffixOutside ? record.fields[3] + suffix : suffix + record.fields[3];
    return before + record.fields[1] + scanned + behind;
}

}  // namespace quarlin::reference
