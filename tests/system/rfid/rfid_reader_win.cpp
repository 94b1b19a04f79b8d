// SPDX-License-Identifier: Apache-2.0
#include "rfid/rfid_reader_win.h"

#include <stdexcept>
#include <utility>

#include "hidbus/hid_socket_win.h"

namespace quarlin::test {

RfidReaderTurn::RfidReaderTurn() : mutex_(CreateMutexW(nullptr, FALSE, L"Global\\QuarlinTestRfidReader")) {
    constexpr DWORD kLongestTurn = 150000;  // milliseconds; the longest test among those that wait for one another
    const DWORD result = WaitForSingleObject(mutex_.Get(), kLongestTurn);
    // Another test program may have ended in the middle: its readers went with it.
    if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) {
        throw std::runtime_error("other tests with RFID readers did not end");
    }
}

RfidReaderTurn::~RfidReaderTurn() {
    ReleaseMutex(mutex_.Get());
}

Bytes Hex(const std::string& digits) {
    auto bytes = sim::ParseHex(digits);
    if (!bytes) {
        throw std::invalid_argument("no bytes: " + digits);
    }
    return std::move(*bytes);
}

TagSettings Label() {
    TagSettings tag;
    tag.epc = Hex(kLabelEpc);
    tag.tid = Hex("E280116020007F3C88A80001");
    tag.user = Hex("000102030405060708090A0B0C0D0E0F");
    tag.accessPassword = 0xBBAA0000;
    tag.killPassword = 0x1A2B3C4D;
    tag.signal = -48;
    return tag;
}

TagSettings Crate() {
    TagSettings tag;
    tag.epc = Hex(kCrateEpc);
    tag.tid = Hex("E28011602000544C77D00003");
    tag.user = Hex("C0FFEE00");
    tag.signal = -66;
    return tag;
}

UhfSettings TwoTags() {
    return WithTags({Label(), Crate()});
}

UhfSettings WithTags(std::vector<TagSettings> tags) {
    UhfSettings settings;
    settings.tags = std::move(tags);
    return settings;
}

UhfSettings WithReports(std::size_t outputLength, std::size_t inputLength) {
    UhfSettings settings = TwoTags();
    settings.outputLength = outputLength;
    settings.inputLength = inputLength;
    return settings;
}

TestReader::TestReader(const UhfSettings& settings) : socket_(sim::MakeHidSocket()), reader_(settings, *socket_) {
    reader_.Plug();
}

std::vector<std::string> TestReader::TakeReports() {
    std::vector<std::string> reports;
    for (const sim::UhfTransfer& transfer : reader_.Log()) {
        if (transfer.fromHost) {
            reports.push_back(sim::HexText(transfer.report));
        }
    }
    reader_.ClearLog();
    return reports;
}

Bytes TestReader::Memory(std::size_t tag, TagBank bank) {
    return reader_.With([&](const sim::UhfEngine& engine) { return engine.Field().at(tag).tag.Memory(bank); });
}

std::string Report(const std::string& frame, std::size_t size) {
    std::string report = frame;
    report.resize(2 * size, '0');
    return report;
}

}  // namespace quarlin::test
