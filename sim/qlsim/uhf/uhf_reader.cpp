// SPDX-License-Identifier: Apache-2.0
#include "uhf/uhf_reader.h"

#include <algorithm>
#include <stdexcept>

#include "hid/report_descriptor.h"

namespace quarlin::sim {
namespace {

using Kind = UhfFault::Kind;

constexpr std::size_t kShortestReport = 2;
constexpr std::size_t kLongestReport = 4096;
constexpr std::size_t kLongestLog = 1000;

void CheckSize(std::size_t size) {
    if (size < kShortestReport || size > kLongestReport) {
        throw std::invalid_argument("a report has 2 to 4096 bytes");
    }
}

}  // namespace

UhfReader::UhfReader(const UhfSettings& settings, HidSocket& socket)
    : settings_(settings), socket_(socket), engine_(settings.radio) {
    CheckSize(settings.outputLength);
    CheckSize(settings.inputLength);
    for (const TagSettings& tag : settings.tags) {
        engine_.Add(tag);
    }
    worker_ = std::thread([this] { Work(); });
}

UhfReader::~UhfReader() {
    {
        const std::lock_guard hold(lock_);
        stopping_ = true;
        changed_.notify_all();
    }
    worker_.join();
    Unplug();
}

void UhfReader::Plug() {
    const std::lock_guard turn(plugging_);
    if (socket_.IsPlugged()) {
        throw HidBusError("the reader is plugged in already");
    }
    {
        const std::lock_guard hold(lock_);
        Forget();
        ++plugs_;
        engine_.Restart();
    }
    socket_.Unplug();  // what is left of a device that vanished in a transfer
    socket_.Plug(Identity(), *this);
}

void UhfReader::Unplug() {
    const std::lock_guard turn(plugging_);
    socket_.Unplug();
    const std::lock_guard hold(lock_);
    Forget();
}

void UhfReader::AddFault(const UhfFault& fault) {
    if (fault.kind == Kind::kByte) {
        CheckReport(fault.offset, fault.value);
    }
    if (fault.kind == Kind::kShort && (fault.value < 1 || fault.value >= settings_.inputLength)) {
        throw std::invalid_argument("an answer is cut to at least 1 byte and less than the report's length");
    }
    if (fault.times == 0u) {
        throw std::invalid_argument("a fault happens at least once");
    }
    const std::lock_guard hold(lock_);
    faults_.Add(fault);
}

void UhfReader::ClearFaults() {
    const std::lock_guard hold(lock_);
    faults_.Clear();
}

std::vector<UhfFault> UhfReader::Faults() const {
    const std::lock_guard hold(lock_);
    return faults_.All();
}

std::size_t UhfReader::AnswerNow() {
    std::deque<Late> late;
    {
        const std::lock_guard hold(lock_);
        late.swap(late_);
        changed_.notify_all();
    }
    for (const Late& answer : late) {
        Deliver(answer.report);
    }
    return late.size();
}

bool UhfReader::SendReport(Bytes report) {
    if (report.empty() || report.size() > settings_.inputLength) {
        throw std::invalid_argument("an input report has 1 to " + std::to_string(settings_.inputLength) + " bytes");
    }
    CheckReport(0, report[0]);
    report.resize(settings_.inputLength);
    return Deliver(report);
}

std::vector<UhfTransfer> UhfReader::Log() const {
    const std::lock_guard hold(lock_);
    return {log_.begin(), log_.end()};
}

std::vector<Bytes> UhfReader::ReceivedFrames() const {
    std::vector<Bytes> frames;
    const std::lock_guard hold(lock_);
    for (const UhfTransfer& transfer : log_) {
        if (transfer.fromHost) {
            frames.push_back(UhfFrameOf(transfer.report));
        }
    }
    return frames;
}

void UhfReader::ClearLog() {
    const std::lock_guard hold(lock_);
    log_.clear();
}

UhfCounters UhfReader::Counters() const {
    const std::lock_guard hold(lock_);
    UhfCounters counters = counters_;
    counters.waiting = late_.size();
    return counters;
}

bool UhfReader::WaitForReceived(std::uint64_t count, std::chrono::milliseconds patience) const {
    Guard hold(lock_);
    return changed_.wait_for(hold, patience, [&] { return counters_.received >= count; });
}

bool UhfReader::WaitForWaiting(std::size_t count, std::chrono::milliseconds patience) const {
    Guard hold(lock_);
    return changed_.wait_for(hold, patience, [&] { return late_.size() >= count; });
}

HidIdentity UhfReader::Identity() const {
    std::vector<HidReportShape> reports;
    for (const UhfCommandShape& command : kUhfCommands) {
        reports.push_back({HidReportKind::kOutput, Raw(command.code), settings_.outputLength - 1});
        reports.push_back({HidReportKind::kInput, ReplyCode(command.code), settings_.inputLength - 1});
    }
    return {settings_.vendor, settings_.product, settings_.version, VendorReportDescriptor(reports),
            settings_.instance};
}

HidAnswer UhfReader::SetFeature(std::span<const std::uint8_t>) {
    return HidAnswer::kRefuse;
}

HidAnswer UhfReader::GetFeature(std::span<std::uint8_t>) {
    return HidAnswer::kRefuse;
}

HidAnswer UhfReader::SetOutput(std::span<const std::uint8_t> report) {
    Bytes answer;
    {
        const std::lock_guard hold(lock_);
        ++counters_.received;
        Note(true, report);
        changed_.notify_all();
        if (report.empty() || FindUhfCommand(report[0]) == nullptr) {
            return HidAnswer::kRefuse;
        }
        const std::vector<UhfFault> faults = faults_.Take(report[0]);
        if (FindFault(faults, Kind::kRefuse) != nullptr) {
            return HidAnswer::kRefuse;
        }
        if (FindFault(faults, Kind::kVanish) != nullptr) {
            Forget();
            return HidAnswer::kUnplug;
        }
        answer = AnswerTo(report, faults);
        if (FindFault(faults, Kind::kGoSilent) != nullptr) {
            leaving_ = true;
            return HidAnswer::kDone;
        }
        if (FindFault(faults, Kind::kSilence) != nullptr) {
            return HidAnswer::kDone;
        }
        if (FindFault(faults, Kind::kHold) != nullptr) {
            late_.push_back({Clock::time_point::max(), std::move(answer)});
            return HidAnswer::kDone;
        }
        if (const UhfFault* const delay = FindFault(faults, Kind::kDelay)) {
            late_.push_back({Clock::now() + delay->delay, std::move(answer)});
            return HidAnswer::kDone;
        }
    }
    Deliver(answer);
    return HidAnswer::kDone;
}

Bytes UhfReader::AnswerTo(std::span<const std::uint8_t> report, const std::vector<UhfFault>& faults) {
    Bytes answer;
    if (const UhfFault* const status = FindFault(faults, Kind::kStatus)) {
        const UhfCommandShape& command = *FindUhfCommand(report[0]);
        answer = {ReplyCode(command.code), command.replyLength, status->value};
    } else {
        answer = *engine_.Execute(report);
    }
    answer.resize(settings_.inputLength);
    Spoil(answer, faults);
    return answer;
}

// Noted before it is sent: whoever reads it finds it in the log.
bool UhfReader::Deliver(const Bytes& report) {
    {
        const std::lock_guard hold(lock_);
        Note(false, report);
        ++counters_.sent;
    }
    bool taken = false;
    try {
        taken = socket_.SendInput(report);
    } catch (const HidBusError&) {
        // The bus's threads have nobody to tell; the counter tells.
    }
    if (!taken) {
        const std::lock_guard hold(lock_);
        ++counters_.lost;
    }
    return taken;
}

void UhfReader::Note(bool fromHost, std::span<const std::uint8_t> report) {
    log_.push_back({fromHost, {report.begin(), report.end()}});
    if (log_.size() > kLongestLog) {
        log_.pop_front();
    }
}

void UhfReader::CheckReport(std::size_t offset, std::uint8_t value) const {
    if (offset >= settings_.inputLength) {
        throw std::invalid_argument("an input report has " + std::to_string(settings_.inputLength) + " bytes only");
    }
    if (offset == 0 && !IsUhfReplyCode(value)) {
        throw std::invalid_argument("no input report has the code " + HexText(std::array{value}));
    }
}

void UhfReader::Forget() {
    late_.clear();
    leaving_ = false;
    changed_.notify_all();
}

void UhfReader::Work() {
    Guard hold(lock_);
    while (!stopping_) {
        if (leaving_) {
            const std::uint64_t plugged = plugs_;
            hold.unlock();
            GoAway(plugged);
            hold.lock();
            continue;
        }
        const auto next =
            std::min_element(late_.begin(), late_.end(), [](const Late& a, const Late& b) { return a.due < b.due; });
        if (next == late_.end() || next->due == Clock::time_point::max()) {
            changed_.wait(hold);
        } else if (next->due > Clock::now()) {
            changed_.wait_until(hold, Clock::time_point(next->due));
        } else {
            const Bytes report = std::move(next->report);
            late_.erase(next);
            hold.unlock();
            Deliver(report);
            hold.lock();
        }
    }
}

// Unless somebody was quicker and it is another plug already.
void UhfReader::GoAway(std::uint64_t plugged) {
    const std::lock_guard turn(plugging_);
    {
        const std::lock_guard hold(lock_);
        if (plugs_ != plugged || !leaving_) {
            return;
        }
        leaving_ = false;
    }
    socket_.Unplug();
    const std::lock_guard hold(lock_);
    Forget();
}

}  // namespace quarlin::sim
