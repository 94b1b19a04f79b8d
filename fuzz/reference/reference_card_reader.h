// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarlin::reference {

// The rules of the card reader's reports once more, written for clarity alone and sharing nothing with the product.

using ReportBytes = std::vector<std::uint8_t>;

// A swipe's fields as they follow each other in the report.
struct Swipe {
    ReportBytes reportId;
    ReportBytes decodeStatus;
    ReportBytes length;
    ReportBytes cardEncodeType;
    std::array<ReportBytes, 3> data;
    ReportBytes reserved1;
    ReportBytes magnePrintStatus;
    ReportBytes magnePrintLength;
    ReportBytes magnePrint;
    ReportBytes deviceSerialNumber;
    ReportBytes encryptionStatus;
    ReportBytes keySerialNumber;
    ReportBytes maskedLength;
    std::array<ReportBytes, 3> maskedData;
    ReportBytes encryptedSessionId;
    ReportBytes absoluteLength;
    ReportBytes encryptionCounter;
    ReportBytes reserved2;
    ReportBytes reserved3;
    ReportBytes reserved4;

    bool IsValid() const;
    bool IsEncrypted() const;
};

// Of a report of 888 bytes.
Swipe ReadSwipe(const ReportBytes& report);

// A length byte's meaning.
int SignedLength(std::uint8_t byte);

// What a reply to a feature request says.
std::wstring Property(const ReportBytes& reply);
std::optional<int> SecurityLevel(const ReportBytes& reply);
// A property as the list of readers shows it.
std::wstring ShownProperty(const ReportBytes& reply);

}  // namespace quarlin::reference
