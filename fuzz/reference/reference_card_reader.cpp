// SPDX-License-Identifier: Apache-2.0
#include "reference/reference_card_reader.h"

#include <stdexcept>

namespace quarlin::reference {
namespace {

// Takes one field after the other off a report.
class Cursor {
  public:
    explicit Cursor(const ReportBytes& report) : report_(report) {}

    ReportBytes Take(int count) {
        ReportBytes field;
        for (int i = 0; i < count; ++i) {
            field.push_back(report_.at(next_++));
        }
        return field;
    }
    std::array<ReportBytes, 3> TakeTracks() {
        ReportBytes first = Take(112);
        ReportBytes second = Take(112);
        return {first, second, Take(112)};
    }
    void ExpectEnd() const {
        if (next_ != report_.size()) {
            throw std::logic_error("the fields do not make up the report");
        }
    }

  private:
    const ReportBytes& report_;
    std::size_t next_ = 0;
};

bool HoldsNothing(const ReportBytes& field) {
    int sum = 0;
    for (const std::uint8_t byte : field) {
        sum += byte;
    }
    return sum == 0;
}

std::string Beginning(const ReportBytes& field) {
    return {static_cast<char>(field[0]), static_cast<char>(field[1])};
}

}  // namespace

Swipe ReadSwipe(const ReportBytes& report) {
    Cursor cursor(report);
    Swipe swipe;
    swipe.reportId = cursor.Take(1);
    swipe.decodeStatus = cursor.Take(3);
    swipe.length = cursor.Take(3);
    swipe.cardEncodeType = cursor.Take(1);
    swipe.data = cursor.TakeTracks();
    swipe.reserved1 = cursor.Take(1);
    swipe.magnePrintStatus = cursor.Take(4);
    swipe.magnePrintLength = cursor.Take(1);
    swipe.magnePrint = cursor.Take(128);
    swipe.deviceSerialNumber = cursor.Take(16);
    swipe.encryptionStatus = cursor.Take(2);
    swipe.keySerialNumber = cursor.Take(10);
    swipe.maskedLength = cursor.Take(3);
    swipe.maskedData = cursor.TakeTracks();
    swipe.encryptedSessionId = cursor.Take(8);
    swipe.absoluteLength = cursor.Take(4);
    swipe.encryptionCounter = cursor.Take(3);
    swipe.reserved2 = cursor.Take(8);
    swipe.reserved3 = cursor.Take(16);
    swipe.reserved4 = cursor.Take(4);
    cursor.ExpectEnd();
    return swipe;
}

bool Swipe::IsValid() const {
    if (!HoldsNothing(decodeStatus)) {
        return false;
    }
    if (HoldsNothing(length) || HoldsNothing(maskedLength)) {
        return false;
    }
    return Beginning(data[0]) != "%E" && Beginning(data[1]) != ";E";
}

bool Swipe::IsEncrypted() const {
    const bool second = encryptionStatus[1] / 2 % 2 == 1;
    const bool third = encryptionStatus[1] / 4 % 2 == 1;
    return second && third;
}

int SignedLength(std::uint8_t byte) {
    return byte < 128 ? byte : byte - 256;
}

std::wstring Property(const ReportBytes& reply) {
    std::wstring text;
    for (std::size_t i = 3; i < reply.size(); ++i) {
        text.push_back(static_cast<wchar_t>(reply[i]));
    }
    return text;
}

std::optional<int> SecurityLevel(const ReportBytes& reply) {
    switch (reply.size()) {
        case 0:
        case 1:
            return std::nullopt;
        case 2:
        case 3:
            return reply[1] == 0 ? std::optional(0) : std::nullopt;
        default:
            return reply[3];
    }
}

std::wstring ShownProperty(const ReportBytes& reply) {
    std::wstring shown;
    for (std::size_t i = 3; i < reply.size() && reply[i] != 0 && shown.size() < 149; ++i) {
        shown.push_back(static_cast<wchar_t>(reply[i]));
    }
    return shown;
}

}  // namespace quarlin::reference
