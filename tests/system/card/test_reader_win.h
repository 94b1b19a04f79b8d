// SPDX-License-Identifier: Apache-2.0
// Simulated card readers, plugged into the machine's HID bus by the test itself.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "hidbus/hid_device.h"
#include "magnesafe/reader.h"
#include "support/owners_win.h"

namespace quarlin::test {

using sim::magnesafe::Card;
using sim::magnesafe::ReaderSettings;
using sim::magnesafe::SwipeOptions;
using Report = std::vector<std::uint8_t>;

// Held by every test that plugs readers in or looks for them: all programs of the machine see them. Waits for its turn;
// throws std::runtime_error when it does not come.
class CardReaderTurn {
  public:
    CardReaderTurn();
    CardReaderTurn(const CardReaderTurn&) = delete;
    CardReaderTurn& operator=(const CardReaderTurn&) = delete;
    ~CardReaderTurn();

  private:
    UniqueHandle mutex_;
};

// What a program asked of a device's feature report.
struct FeatureRequest {
    enum class Kind {
        kSet,
        kGet,
    };
    Kind kind = Kind::kSet;
    // Of a request to set: what came. Of a request to get: as many zeros as the program has room for.
    Report report;

    bool operator==(const FeatureRequest&) const = default;
};

// A MagneSafe reader and the socket that it is plugged into.
class TestReader : private sim::HidFunction {
  public:
    enum class Start {
        kPlugged,
        kUnplugged,
    };

    explicit TestReader(ReaderSettings settings = {}, Start start = Start::kPlugged);

    void Plug();
    void Unplug();

    // Settings, faults and counts.
    sim::magnesafe::MagneSafeReader& Device() { return device_; }
    // Those since the last time.
    std::vector<FeatureRequest> TakeFeatureRequests();

    // A card goes through; gives the report that was sent. Throws std::runtime_error when the reader is not plugged in.
    Report Swipe(const SwipeOptions& options = {});
    // Sends bytes as an input report, cut or filled with zeros to its length.
    void Send(std::span<const std::uint8_t> bytes);

  private:
    sim::HidAnswer SetFeature(std::span<const std::uint8_t> report) override;
    sim::HidAnswer GetFeature(std::span<std::uint8_t> report) override;
    sim::HidAnswer SetOutput(std::span<const std::uint8_t> report) override;

    sim::magnesafe::MagneSafeReader device_;
    std::mutex requestsLock_;
    std::vector<FeatureRequest> requests_;
    // Last, so that nothing calls into the reader any more when the rest goes.
    std::unique_ptr<sim::HidSocket> socket_;
};

// Settings of a reader that differs from others by its serial number alone.
ReaderSettings WithSerial(std::string serial);

// A bank card with three tracks.
Card BankCard();

// A swipe that is good in every respect, with no two fields alike; tests change bytes of it.
Report GoodReport();

}  // namespace quarlin::test
