// SPDX-License-Identifier: Apache-2.0
// One exchange with a virtual RFID reader through the library, beside the bare HidD_SetOutputReport and ReadFile on the
// same reader. Then many exchanges in a row, each of which has to bring its own answer. Prints JSON.
//
//   rfid_exchange_bench [EXCHANGES]   EXCHANGES of the long run (100000)
#include "hid_bench_win.h"
#include "hidbus/hid_socket_win.h"
#include "uhf/uhf_reader.h"

extern "C" {
#include <hidsdi.h>
}

#include <quarlin/uhf_rfid.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>

using namespace quarlin;         // NOLINT(google-build-using-namespace)
using namespace quarlin::bench;  // NOLINT(google-build-using-namespace)

namespace {

constexpr int kBlocks = 20;
constexpr int kExchangesPerBlock = 500;
constexpr std::size_t kReportSize = 64;

// "Get transmit power", the shortest exchange there is, as an application would write it without the library.
void ExchangeBare(HANDLE device) {
    std::array<std::uint8_t, kReportSize> command{0xC2, 2};
    std::array<std::uint8_t, 1024> reply{};
    DWORD received = 0;
    if (!HidD_SetOutputReport(device, command.data(), command.size()) ||
        !ReadFile(device, reply.data(), reply.size(), &received, nullptr) || reply[0] != 0xC3) {
        throw std::runtime_error("a bare exchange has failed");
    }
}

template <typename Exchange>
double MicrosecondsEach(int count, const Exchange& exchange) {
    const std::int64_t start = Now();
    for (int i = 0; i < count; ++i) {
        exchange();
    }
    return MicrosecondsOf(Now() - start) / count;
}

class OpenReader {
  public:
    OpenReader() { Check(QLUHFRFID_OpenReader(&handle_), "QLUHFRFID_OpenReader"); }
    OpenReader(const OpenReader&) = delete;
    OpenReader& operator=(const OpenReader&) = delete;
    ~OpenReader() { QLUHFRFID_CloseReader(handle_); }

    unsigned int Power() const {
        unsigned int power = 0;
        Check(QLUHFRFID_GetPower(handle_, &power), "QLUHFRFID_GetPower");
        return power;
    }
    void SetPower(unsigned int power) const { Check(QLUHFRFID_SetPower(handle_, power), "QLUHFRFID_SetPower"); }

  private:
    void* handle_ = nullptr;
};

struct Cost {
    std::vector<double> bare;
    std::vector<double> library;
    std::vector<double> ratio;
};

Cost MeasureCost() {
    Cost cost;
    for (int block = 0; block < kBlocks; ++block) {
        {
            const BareDevice device(L"vid_24e9&pid_3993", 0);
            cost.bare.push_back(MicrosecondsEach(kExchangesPerBlock, [&] { ExchangeBare(device.Get()); }));
        }
        const OpenReader reader;
        cost.library.push_back(MicrosecondsEach(kExchangesPerBlock, [&] { reader.Power(); }));
        // Neighbours in time see the same clock frequency and the same other load.
        cost.ratio.push_back(cost.library.back() / cost.bare.back());
    }
    return cost;
}

struct LongRun {
    std::uint64_t wrongAnswers = 0;
    Holdings before;
    Holdings after;
};

// Each pair sets a power of its own and reads it back: an answer lost or doubled would show in all that follow.
LongRun RunLong(std::uint64_t exchanges) {
    constexpr std::uint64_t kWarmUp = 500;
    constexpr unsigned int kPowers = 30;
    LongRun run;
    const OpenReader reader;
    const auto pairs = [&](std::uint64_t count) {
        for (std::uint64_t i = 0; i < count; ++i) {
            const auto power = static_cast<unsigned int>(i % kPowers);
            reader.SetPower(power);
            run.wrongAnswers += reader.Power() != power;
        }
    };
    pairs(kWarmUp);
    run.before = HoldingsNow();
    pairs(exchanges / 2);
    run.after = HoldingsNow();
    return run;
}

}  // namespace

int main(int argc, char** argv) try {
    constexpr std::uint64_t kManyExchanges = 100'000;
    const std::uint64_t many = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : kManyExchanges;
    const Turn turn(L"Global\\QuarlinTestRfidReader");
    const auto socket = sim::MakeHidSocket();
    sim::UhfReader device(sim::UhfSettings{}, *socket);
    device.Plug();

    const Cost cost = MeasureCost();
    const std::uint64_t receivedBefore = device.Counters().received;
    const LongRun run = RunLong(many);
    const std::uint64_t receivedByDevice = device.Counters().received - receivedBefore;

    std::cout << "{\"bare_exchange_us\": " << Median(cost.bare) << ", \"exchange_us\": " << Median(cost.library)
              << ", \"multiple_of_bare_exchange\": " << Median(cost.ratio) << ", \"exchanges\": " << many
              << ", \"commands_at_the_reader\": " << receivedByDevice << ", \"wrong_answers\": " << run.wrongAnswers
              << ", \"handles_before\": " << run.before.handles << ", \"handles_after\": " << run.after.handles
              << ", \"working_set_kb_before\": " << run.before.workingSetKb
              << ", \"working_set_kb_after\": " << run.after.workingSetKb << "}\n";
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "rfid_exchange_bench: " << failure.what() << '\n';
    return 1;
}
