// SPDX-License-Identifier: Apache-2.0
#include "card/test_reader_win.h"

#include <stdexcept>
#include <utility>

#include "hidbus/hid_socket_win.h"

namespace quarlin::test {

CardReaderTurn::CardReaderTurn() : mutex_(CreateMutexW(nullptr, FALSE, L"Global\\QuarlinTestCardReader")) {
    constexpr DWORD kLongestTurn = 150000;  // milliseconds; the longest test among those that wait for one another
    const DWORD result = WaitForSingleObject(mutex_.Get(), kLongestTurn);
    // Another test program may have ended in the middle: its readers went with it.
    if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) {
        throw std::runtime_error("other tests with card readers did not end");
    }
}

CardReaderTurn::~CardReaderTurn() {
    ReleaseMutex(mutex_.Get());
}

TestReader::TestReader(ReaderSettings settings, Start start)
    : device_(std::move(settings)), socket_(sim::MakeHidSocket()) {
    if (start == Start::kPlugged) {
        Plug();
    }
}

void TestReader::Plug() {
    socket_->Plug(device_.Identity(), *this);
}

void TestReader::Unplug() {
    socket_->Unplug();
}

std::vector<FeatureRequest> TestReader::TakeFeatureRequests() {
    const std::lock_guard held(requestsLock_);
    return std::exchange(requests_, {});
}

Report TestReader::Swipe(const SwipeOptions& options) {
    Report report = device_.Swipe(BankCard(), options);
    Send(report);
    return report;
}

void TestReader::Send(std::span<const std::uint8_t> bytes) {
    if (!socket_->SendInput(device_.InputReport(bytes))) {
        throw std::runtime_error("the reader is not plugged in");
    }
}

sim::HidAnswer TestReader::SetFeature(std::span<const std::uint8_t> report) {
    {
        const std::lock_guard held(requestsLock_);
        requests_.push_back({FeatureRequest::Kind::kSet, Report(report.begin(), report.end())});
    }
    return device_.SetFeature(report);
}

sim::HidAnswer TestReader::GetFeature(std::span<std::uint8_t> report) {
    {
        const std::lock_guard held(requestsLock_);
        requests_.push_back({FeatureRequest::Kind::kGet, Report(report.size())});
    }
    return device_.GetFeature(report);
}

sim::HidAnswer TestReader::SetOutput(std::span<const std::uint8_t> report) {
    return device_.SetOutput(report);
}

ReaderSettings WithSerial(std::string serial) {
    ReaderSettings settings;
    settings.serial = std::move(serial);
    return settings;
}

Card BankCard() {
    Card card;
    card.name = "MUSTERMANN/ERIKA";
    card.account = "4000001234562222";
    card.expiry = "2812";
    card.serviceCode = "101";
    card.discretionary = "0123456";
    card.tracks[2] = ";40000012345622221234567890?";
    return card;
}

Report GoodReport() {
    constexpr std::size_t kDecodeStatusAt = 1;
    Report report(sim::magnesafe::kSwipeLength);
    for (std::size_t i = kDecodeStatusAt + 3; i < report.size(); ++i) {
        report[i] = static_cast<std::uint8_t>(1 + i * 31 % 251);
    }
    return report;
}

}  // namespace quarlin::test
