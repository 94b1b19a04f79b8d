// SPDX-License-Identifier: Apache-2.0
#include "barcode_support/scan_log_win.h"

#include <array>
#include <stdexcept>
#include <utility>

#include "support/wait_win.h"

namespace quarlin::test {
namespace {

std::atomic<ScanLog*> theLog = nullptr;

std::string CopyBytes(const std::uint8_t* bytes, std::int32_t length) {
    return bytes == nullptr || length <= 0
               ? std::string{}
               : std::string(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

// Also when the action throws.
class Counted {
  public:
    explicit Counted(std::atomic<int>& count) : count_(count) { ++count_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --count_; }

  private:
    std::atomic<int>& count_;
};

}  // namespace

std::ostream& operator<<(std::ostream& out, const ReceivedScan& scan) {
    out << '"' << scan.text << '"';
    return scan.hasSymbologyId ? out << " (" << scan.symbologyId << ')' : out;
}

ScanLog::ScanLog() {
    theLog = this;
}

ScanLog::~ScanLog() {
    theLog = nullptr;
}

QLBCR_Callback ScanLog::Callback(int number) {
    static constexpr std::array<QLBCR_Callback, 2> kFunctions{&Receive<0>, &Receive<1>};
    return kFunctions.at(static_cast<std::size_t>(number));
}

void ScanLog::DoInside(Action action) {
    const std::lock_guard held(lock_);
    inside_ = std::move(action);
}

void ScanLog::Clear() {
    const std::lock_guard held(lock_);
    scans_ = {};  // with its memory, for tests that count it
}

std::size_t ScanLog::Count() const {
    const std::lock_guard held(lock_);
    return scans_.size();
}

std::vector<ReceivedScan> ScanLog::Scans() const {
    const std::lock_guard held(lock_);
    return scans_;
}

std::vector<std::string> ScanLog::Texts() const {
    const std::lock_guard held(lock_);
    std::vector<std::string> texts;
    for (const ReceivedScan& scan : scans_) {
        texts.push_back(scan.text);
    }
    return texts;
}

ReceivedScan ScanLog::AwaitCount(std::size_t count) const {
    Await("scans at the callback", [&] { return Count() >= count; });
    const std::lock_guard held(lock_);
    return scans_.at(count - 1);
}

void ScanLog::AwaitQuiet() const {
    Await("the callback's end", [&] { return running_ == 0; });
}

template <int number>
void ScanLog::Receive(const QLBCR_BARCODE_DATA* scan) {
    if (ScanLog* const log = theLog) {
        log->Take(number, *scan);
    }
}

void ScanLog::Take(int callback, const QLBCR_BARCODE_DATA& scan) {
    const Counted counted(running_);
    const int running = running_;
    int most = mostAtOnce_;
    while (running > most && !mostAtOnce_.compare_exchange_weak(most, running)) {
    }
    ReceivedScan copy;
    copy.callback = callback;
    copy.thread = GetCurrentThreadId();
    copy.deviceIndex = scan.deviceIndex;
    copy.text = CopyBytes(scan.data, scan.dataLength);
    copy.symbologyId = CopyBytes(scan.symbologyId, scan.symbologyIdLength);
    copy.hasSymbologyId = scan.symbologyId != nullptr;
    Action inside;
    {
        const std::lock_guard held(lock_);
        scans_.push_back(std::move(copy));
        inside = inside_;
    }
    if (inside) {
        inside(scan);
    }
}

HeldCallback::HeldCallback(ScanLog& log)
    : log_(log),
      held_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      goesOn_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    log_.DoInside([held = held_.Get(), goesOn = goesOn_.Get()](const QLBCR_BARCODE_DATA&) {
        SetEvent(held);
        WaitForSingleObject(goesOn, kDeadline);
    });
}

HeldCallback::~HeldCallback() {
    LetGo();
    // The events have to live as long as somebody waits for them.
    WaitUntil([&] { return log_.Running() == 0; });
}

void HeldCallback::AwaitHeld() const {
    if (WaitForSingleObject(held_.Get(), kDeadline) != WAIT_OBJECT_0) {
        throw std::runtime_error("no callback came");
    }
}

void HeldCallback::LetGo() {
    log_.DoInside({});
    SetEvent(goesOn_.Get());
}

}  // namespace quarlin::test
