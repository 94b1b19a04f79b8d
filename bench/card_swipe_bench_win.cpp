// SPDX-License-Identifier: Apache-2.0
// The way of a swipe from a virtual reader to the application's callback, beside that of the same report to a bare
// overlapped read with a completion port. Then many swipes in a row, each of which has to come once. Prints JSON.
//
//   card_swipe_bench [SWIPES]   SWIPES of the long run (100000)
#include "hid_bench_win.h"
#include "hidbus/hid_socket_win.h"
#include "magnesafe/reader.h"

#include <quarlin/card_reader.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <thread>

using namespace quarlin;         // NOLINT(google-build-using-namespace)
using namespace quarlin::bench;  // NOLINT(google-build-using-namespace)

namespace {

constexpr int kBlocks = 16;
constexpr int kSwipesPerBlock = 150;
// Milliseconds between two swipes: the next read is pending by then, as it is when people swipe cards.
constexpr DWORD kPause = 2;
// Reports on their way at most, in the long run: fewer than the system keeps for a reader that is slow.
constexpr std::uint64_t kOnTheWay = 16;

struct Reader {
    Reader() { socket->Plug(device.Identity(), device); }

    void Send(const std::vector<std::uint8_t>& report) const {
        if (!socket->SendInput(report)) {
            throw std::runtime_error("the virtual reader is gone");
        }
    }

    sim::magnesafe::MagneSafeReader device{sim::magnesafe::ReaderSettings{}};
    std::unique_ptr<sim::HidSocket> socket = sim::MakeHidSocket();
};

sim::magnesafe::Card BankCard() {
    sim::magnesafe::Card card;
    card.name = "MUSTERMANN/ERIKA";
    card.account = "4000001234567899";
    card.expiry = "2812";
    card.serviceCode = "201";
    card.discretionary = "123456";
    return card;
}

// What the callback finds; it has no other way to its test.
struct Received {
    Arrivals arrivals;
    std::int64_t at = 0;
    std::uint32_t lastNumber = 0;
    std::uint64_t outOfOrder = 0;
} received;

void OnSwipe(const MagStripeData* record) {
    received.at = Now();
    const std::uint32_t number = sim::magnesafe::NumberOf({record->raw, static_cast<std::size_t>(record->rawLength)});
    received.outOfOrder += number != received.lastNumber + 1;
    received.lastNumber = number;
    received.arrivals.Add();
}

// The yardstick: what an application would write without the library.
class BareRead {
  public:
    BareRead() : device_(L"vid_0801&pid_0011", FILE_FLAG_OVERLAPPED) {
        port_ = CreateIoCompletionPort(device_.Get(), nullptr, 0, 0);
        thread_ = std::thread([this] { Run(); });
        started_.WaitFor(1);
    }
    BareRead(const BareRead&) = delete;
    BareRead& operator=(const BareRead&) = delete;
    ~BareRead() {
        PostQueuedCompletionStatus(port_, 0, 0, nullptr);
        thread_.join();
        CancelIoEx(device_.Get(), &overlapped_);
        DWORD bytes = 0;
        ULONG_PTR key = 0;
        OVERLAPPED* completed = nullptr;
        GetQueuedCompletionStatus(port_, &bytes, &key, &completed, INFINITE);
        CloseHandle(port_);
    }

    Arrivals arrivals;
    std::int64_t at = 0;

  private:
    void Run() {
        for (;;) {
            overlapped_ = {};
            ReadFile(device_.Get(), buffer_.data(), static_cast<DWORD>(buffer_.size()), nullptr, &overlapped_);
            if (started_.Count() == 0) {
                started_.Add();
            }
            DWORD bytes = 0;
            ULONG_PTR key = 0;
            OVERLAPPED* completed = nullptr;
            if (!GetQueuedCompletionStatus(port_, &bytes, &key, &completed, INFINITE) || completed == nullptr) {
                return;
            }
            at = Now();
            arrivals.Add();
        }
    }

    BareDevice device_;
    HANDLE port_;
    OVERLAPPED overlapped_{};
    std::array<std::uint8_t, sim::magnesafe::kSwipeLength> buffer_{};
    Arrivals started_;
    std::thread thread_;
};

// Sends swipes one after the other, each a while after the one before has arrived.
template <typename Arrived>
void SendBlock(Reader& reader, Arrivals& arrivals, const Arrived& arrivedAt, std::vector<double>& microseconds) {
    const std::uint64_t before = arrivals.Count();
    for (std::uint64_t i = 1; i <= kSwipesPerBlock; ++i) {
        const auto report = reader.device.Swipe(BankCard(), {});
        Sleep(kPause);
        const std::int64_t sent = Now();
        reader.Send(report);
        arrivals.WaitFor(before + i);
        microseconds.push_back(MicrosecondsOf(arrivedAt() - sent));
    }
}

struct Delay {
    std::vector<double> bare;
    std::vector<double> library;
    std::vector<double> ratio;
};

Delay MeasureDelay(Reader& reader) {
    Delay delay;
    for (int block = 0; block < kBlocks; ++block) {
        std::vector<double> bareBlock;
        std::vector<double> libraryBlock;
        {
            BareRead bare;
            SendBlock(
                reader, bare.arrivals, [&] { return bare.at; }, bareBlock);
        }
        Check(QLMSR_Enable(), "QLMSR_Enable");
        SendBlock(
            reader, received.arrivals, [] { return received.at; }, libraryBlock);
        Check(QLMSR_Disable(), "QLMSR_Disable");
        delay.ratio.push_back(Median(libraryBlock) / Median(bareBlock));
        delay.bare.insert(delay.bare.end(), bareBlock.begin(), bareBlock.end());
        delay.library.insert(delay.library.end(), libraryBlock.begin(), libraryBlock.end());
    }
    return delay;
}

struct LongRun {
    std::uint64_t sent = 0;
    std::uint64_t arrived = 0;
    std::uint64_t outOfOrder = 0;
    double microsecondsPerSwipe = 0;
    Holdings before;
    Holdings after;
};

void SendMany(Reader& reader, std::uint64_t count) {
    const std::uint64_t before = received.arrivals.Count();
    for (std::uint64_t i = 1; i <= count; ++i) {
        reader.Send(reader.device.Swipe(BankCard(), {}));
        if (i > kOnTheWay) {
            received.arrivals.WaitFor(before + i - kOnTheWay);
        }
    }
    received.arrivals.WaitFor(before + count);
}

LongRun RunLong(Reader& reader, std::uint64_t count) {
    constexpr std::uint64_t kWarmUp = 500;
    LongRun run;
    Check(QLMSR_Enable(), "QLMSR_Enable");
    received.lastNumber = reader.device.Counts().swipes;
    received.outOfOrder = 0;
    SendMany(reader, kWarmUp);
    run.before = HoldingsNow();
    const std::uint64_t arrivedBefore = received.arrivals.Count();
    const std::int64_t start = Now();
    SendMany(reader, count);
    run.microsecondsPerSwipe = MicrosecondsOf(Now() - start) / static_cast<double>(count);
    run.after = HoldingsNow();
    Check(QLMSR_Disable(), "QLMSR_Disable");
    run.sent = count;
    run.arrived = received.arrivals.Count() - arrivedBefore;
    run.outOfOrder = received.outOfOrder;
    return run;
}

}  // namespace

int main(int argc, char** argv) try {
    constexpr std::uint64_t kManySwipes = 100'000;
    const std::uint64_t many = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : kManySwipes;
    const Turn turn(L"Global\\QuarlinTestCardReader");
    Reader reader;
    Check(QLMSR_Initialize(), "QLMSR_Initialize");
    MagStripeReaderInfo info{};
    int count = 1;
    Check(QLMSR_GetMagStripeDevices(&info, &count), "QLMSR_GetMagStripeDevices");
    unsigned int id = 0;
    Check(QLMSR_AddCallback(OnSwipe, &id), "QLMSR_AddCallback");

    const Delay delay = MeasureDelay(reader);
    const LongRun run = RunLong(reader, many);
    Check(QLMSR_Uninitialize(), "QLMSR_Uninitialize");

    std::cout << "{\"bare_read_us\": " << Median(delay.bare) << ", \"callback_us\": " << Median(delay.library)
              << ", \"multiple_of_bare_read\": " << Median(delay.ratio) << ", \"swipes\": " << run.sent
              << ", \"arrived\": " << run.arrived << ", \"out_of_order\": " << run.outOfOrder
              << ", \"us_per_swipe\": " << run.microsecondsPerSwipe << ", \"handles_before\": " << run.before.handles
              << ", \"handles_after\": " << run.after.handles
              << ", \"working_set_kb_before\": " << run.before.workingSetKb
              << ", \"working_set_kb_after\": " << run.after.workingSetKb << "}\n";
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "card_swipe_bench: " << failure.what() << '\n';
    return 1;
}
