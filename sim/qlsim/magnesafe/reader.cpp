// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/reader.h"

#include <algorithm>

#include "hid/report_descriptor.h"

namespace quarlin::sim::magnesafe {
namespace {

constexpr std::uint16_t kVendor = 0x0801;
constexpr std::uint16_t kProduct = 0x0011;
constexpr std::size_t kOutputBytes = 63;  // real readers declare an output report and make nothing of it

enum Command : std::uint8_t {
    kGetProperty = 0x00,
    kGetSecurityLevel = 0x15,
};

enum Property : std::uint8_t {
    kSoftwareId = 0x00,
    kSerialNumber = 0x03,
};

using Bytes = std::vector<std::uint8_t>;

Bytes Result(ResultCode code, std::span<const std::uint8_t> data = {}) {
    Bytes answer = {static_cast<std::uint8_t>(code),
                    static_cast<std::uint8_t>(std::min<std::size_t>(data.size(), 255))};
    answer.insert(answer.end(), data.begin(), data.end());
    return answer;
}

Bytes Text(const std::string& text) {
    const Bytes data(text.begin(), text.end());
    return Result(ResultCode::kSuccess, data);
}

}  // namespace

MagneSafeReader::MagneSafeReader(ReaderSettings settings) : settings_(std::move(settings)) {
}

HidIdentity MagneSafeReader::Identity() const {
    const std::lock_guard hold(lock_);
    HidIdentity identity;
    identity.vendor = kVendor;
    identity.product = kProduct;
    identity.instance = settings_.instance;
    identity.reportDescriptor =
        VendorReportDescriptor({{HidReportKind::kInput, 0, settings_.inputReportLength - 1},
                                {HidReportKind::kOutput, 0, kOutputBytes},
                                {HidReportKind::kFeature, 0, settings_.featureReportLength - 1}});
    return identity;
}

HidAnswer MagneSafeReader::SetFeature(std::span<const std::uint8_t> report) {
    const std::lock_guard hold(lock_);
    ++counts_.setFeatures;
    const auto command = report.subspan(std::min<std::size_t>(1, report.size()));
    command_.assign(command.begin(), command.end());
    const HidAnswer answer = faults_.Meet(HidRequest::kSetFeature, command_);
    if (answer == HidAnswer::kDone) {
        answer_ = Answer(command_);
        answer_.front() = forcedResult_.value_or(answer_.front());
    }
    return answer;
}

HidAnswer MagneSafeReader::GetFeature(std::span<std::uint8_t> report) {
    const std::lock_guard hold(lock_);
    ++counts_.getFeatures;
    const HidAnswer answer = faults_.Meet(HidRequest::kGetFeature, command_);
    if (answer == HidAnswer::kDone) {
        const std::size_t room = std::min(report.size(), answerBytes_.value_or(report.size()));
        for (std::size_t i = 0; i < answer_.size() && i + 1 < room; ++i) {
            report[i + 1] = answer_[i];
        }
    }
    return answer;
}

HidAnswer MagneSafeReader::SetOutput(std::span<const std::uint8_t> report) {
    const std::lock_guard hold(lock_);
    ++counts_.outputs;
    return faults_.Meet(HidRequest::kSetOutput, report.subspan(std::min<std::size_t>(1, report.size())));
}

// The reader reads a command's length and data from where they should be; what is not there counts as zero.
Bytes MagneSafeReader::Answer(std::span<const std::uint8_t> command) const {
    const auto at = [&](std::size_t index) { return index < command.size() ? command[index] : std::uint8_t{0}; };
    const std::size_t length = at(1);
    if (at(0) == kGetSecurityLevel) {
        const Bytes level = {settings_.securityLevel};
        return length == 0 ? Result(ResultCode::kSuccess, level) : Result(ResultCode::kBadParameter);
    }
    if (at(0) != kGetProperty) {
        return Result(ResultCode::kUnknownCommand);
    }
    if (length == 1 && at(2) == kSoftwareId) {
        return Text(settings_.softwareId);
    }
    if (length == 1 && at(2) == kSerialNumber) {
        return Text(settings_.serial);
    }
    return Result(ResultCode::kBadParameter);
}

Bytes MagneSafeReader::Swipe(const Card& card, const SwipeOptions& options) {
    SwipeSource source;
    {
        const std::lock_guard hold(lock_);
        source = {settings_.serial, settings_.keySerial, settings_.masking, ++counts_.swipes};
    }
    return InputReport(Build(card, source, options));
}

Bytes MagneSafeReader::InputReport(std::span<const std::uint8_t> bytes) const {
    Bytes report(bytes.begin(), bytes.end());
    const std::lock_guard hold(lock_);
    report.resize(settings_.inputReportLength);
    return report;
}

void MagneSafeReader::AddFault(RequestFault fault) {
    const std::lock_guard hold(lock_);
    faults_.Add(std::move(fault));
}

void MagneSafeReader::ForceResult(std::optional<std::uint8_t> code) {
    const std::lock_guard hold(lock_);
    forcedResult_ = code;
}

void MagneSafeReader::ShortenAnswers(std::optional<std::size_t> bytes) {
    const std::lock_guard hold(lock_);
    answerBytes_ = bytes;
}

void MagneSafeReader::ClearFaults() {
    const std::lock_guard hold(lock_);
    faults_.Clear();
    forcedResult_.reset();
    answerBytes_.reset();
}

void MagneSafeReader::SetSecurityLevel(std::uint8_t level) {
    const std::lock_guard hold(lock_);
    settings_.securityLevel = level;
}

ReaderSettings MagneSafeReader::Settings() const {
    const std::lock_guard hold(lock_);
    return settings_;
}

ReaderCounts MagneSafeReader::Counts() const {
    const std::lock_guard hold(lock_);
    return counts_;
}

std::size_t MagneSafeReader::WaitingFaults() const {
    const std::lock_guard hold(lock_);
    return faults_.Waiting();
}

}  // namespace quarlin::sim::magnesafe
