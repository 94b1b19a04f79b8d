// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "hid/request_faults.h"
#include "hidbus/hid_device.h"
#include "magnesafe/swipe_report.h"

namespace quarlin::sim::magnesafe {

// Lengths count the report ID, as Windows does.
struct ReaderSettings {
    std::string serial = "B30A5C7";          // bytes
    std::string softwareId = "21088812D01";  // bytes
    std::uint8_t securityLevel = 3;
    std::string instance;  // see HidIdentity
    std::size_t inputReportLength = kSwipeLength;
    std::size_t featureReportLength = 25;
    std::array<std::uint8_t, 10> keySerial = {0x90, 0x10, 0x01, 0x0B, 0x30, 0xA5, 0xC7, 0x00, 0x00, 0x00};
    Masking masking;
};

// What the reader says to a feature command.
enum class ResultCode : std::uint8_t {
    kSuccess = 0x00,
    kBadParameter = 0x02,
    kUnknownCommand = 0x07,
};

struct ReaderCounts {
    std::uint64_t setFeatures = 0;
    std::uint64_t getFeatures = 0;
    std::uint64_t outputs = 0;
    std::uint32_t swipes = 0;
};

// A MagneSafe V5 reader: plug it into a socket, and send what Swipe returns as input reports.
//
//     MagneSafeReader reader(ReaderSettings{});
//     const auto socket = MakeHidSocket();
//     socket->Plug(reader.Identity(), reader);
//     socket->SendInput(reader.Swipe(card, {}));
//
// It answers "get property" (command 0x00) for the software identifier (property 0x00) and the serial number (0x03),
// and "get security level" (0x15): a feature report of command, length and data, then one of result code, length and
// data to be fetched. Any thread may call any function.
class MagneSafeReader final : public HidFunction {
  public:
    explicit MagneSafeReader(ReaderSettings settings);

    // Vendor 0801, product 0011, one report of each kind without IDs.
    HidIdentity Identity() const;

    HidAnswer SetFeature(std::span<const std::uint8_t> report) override;
    HidAnswer GetFeature(std::span<std::uint8_t> report) override;
    HidAnswer SetOutput(std::span<const std::uint8_t> report) override;

    // The report of the next swipe, cut or filled with zeros to the length of an input report. It is numbered: see
    // NumberOf.
    std::vector<std::uint8_t> Swipe(const Card& card, const SwipeOptions& options);
    // Bytes as an input report, likewise cut or filled; no swipe is counted.
    std::vector<std::uint8_t> InputReport(std::span<const std::uint8_t> bytes) const;

    // Faults.
    void AddFault(RequestFault fault);
    // Every command gets this result code, whatever comes of it; the data stay. Nothing: the right one.
    void ForceResult(std::optional<std::uint8_t> code);
    // Of each answer only so many bytes come, the report ID among them; the rest of the report is zero.
    void ShortenAnswers(std::optional<std::size_t> bytes);
    // None of the above any more.
    void ClearFaults();

    // From now on; a program sees it when it asks again.
    void SetSecurityLevel(std::uint8_t level);

    // As they are now.
    ReaderSettings Settings() const;
    ReaderCounts Counts() const;
    std::size_t WaitingFaults() const;

  private:
    std::vector<std::uint8_t> Answer(std::span<const std::uint8_t> command) const;

    mutable std::mutex lock_;
    ReaderSettings settings_;
    ReaderCounts counts_;
    RequestFaults faults_;
    std::optional<std::uint8_t> forcedResult_;
    std::optional<std::size_t> answerBytes_;
    std::vector<std::uint8_t> command_;  // the last one, without the report ID
    std::vector<std::uint8_t> answer_;   // to it, likewise
};

}  // namespace quarlin::sim::magnesafe
