// SPDX-License-Identifier: Apache-2.0
// Simulated RFID readers, plugged into the machine's HID bus by the test itself.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hidbus/hid_device.h"
#include "support/owners_win.h"
#include "uhf/uhf_reader.h"

namespace quarlin::test {

using sim::Bytes;
using sim::TagBank;
using sim::TagSettings;
using sim::UhfCode;
using sim::UhfFault;
using sim::UhfSettings;

// Held by every test that plugs readers in or looks for them: all programs of the machine see them. Waits for its turn;
// throws std::runtime_error when it does not come.
class RfidReaderTurn {
  public:
    RfidReaderTurn();
    RfidReaderTurn(const RfidReaderTurn&) = delete;
    RfidReaderTurn& operator=(const RfidReaderTurn&) = delete;
    ~RfidReaderTurn();

  private:
    UniqueHandle mutex_;
};

// Texts of hexadecimal digits, in capitals. Throws std::invalid_argument for anything else.
Bytes Hex(const std::string& digits);

// Of 96 bits. Its access password is BBAA0000, its kill password 1A2B3C4D; 8 words of user memory count up from 00.
TagSettings Label();
inline const std::string kLabelEpc = "3034257BF7194E4000001A85";
inline const std::string kLabelId = "3000" + kLabelEpc;
// Weaker than the label, without passwords, with 2 words of user memory.
TagSettings Crate();
inline const std::string kCrateEpc = "E2003412DC03011945000777";

// A reader with the two tags in its field.
UhfSettings TwoTags();
UhfSettings WithTags(std::vector<TagSettings> tags);
UhfSettings WithReports(std::size_t outputLength, std::size_t inputLength);

// A reader and the socket that it is plugged into.
class TestReader {
  public:
    explicit TestReader(const UhfSettings& settings = TwoTags());

    sim::UhfReader* operator->() { return &reader_; }
    // What the reader received since the last call: whole output reports, as texts of hexadecimal digits.
    std::vector<std::string> TakeReports();
    // Memory of a tag, by its place in the field.
    Bytes Memory(std::size_t tag, TagBank bank);

  private:
    std::unique_ptr<sim::HidSocket> socket_;
    sim::UhfReader reader_;
};

// A frame and the zeros that fill the report.
std::string Report(const std::string& frame, std::size_t size = 64);
using Reports = std::vector<std::string>;

}  // namespace quarlin::test
