// SPDX-License-Identifier: Apache-2.0
// The way of a scan from the engine's event to the application's callback, beside that of a bare message from the same
// thread of the engine to a bare hidden window of the same program. Then many scans as fast as the engine sends them,
// each of which has to come once. Prints JSON.
//
//   barcode_scan_bench intermec|honeywell [SCANS]   SCANS of the long run (100000)
#include "bare_window_win.h"
#include "machine_bench_win.h"
#include "probe/probe_state.h"
#include "scanner/scan_bytes.h"
#include "scanner/scan_sender_win.h"
#include "support/shared_turn_win.h"

#include <quarlin/barcode.h>

#include <charconv>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

using namespace quarlin;         // NOLINT(google-build-using-namespace)
using namespace quarlin::bench;  // NOLINT(google-build-using-namespace)

namespace {

constexpr int kBlocks = 48;
constexpr int kScansPerBlock = 150;
// Microseconds between two scans: whoever listens waits for messages again by then.
constexpr double kPause = 100;

// Each scan's text ends with its number.
constexpr std::string_view kBeginning = "4006381333931 ";
constexpr std::uint32_t kDigits = 9;

// A function of an engine's library, which is loaded.
template <typename Function>
Function FunctionOf(const wchar_t* library, const char* name) {
    const auto found =
        reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(library), name)));
    if (found == nullptr) {
        throw std::runtime_error(std::string(name) + " is not there");
    }
    return found;
}

// The engines, and whom they announce their scans to: the library under test, or a bare window.
struct Intermec {
    using State = sim::IntermecState;
    static constexpr std::size_t kProbeDevice = 0;
    static constexpr bool kSharedWithEmulator = false;
    static constexpr std::uint32_t kTextAt = 13;  // in the extended-data record
    static sim::ScanSlot Scan(const std::string& text) {
        sim::IntermecFields fields;
        fields.data = text;
        return sim::IntermecScan(fields);
    }

    // The library's own window is found in the record.
    explicit Intermec(const State& state) : listener_(state.window) {}
    void AnnounceTo(HWND window) const { identify_(window, 1); }
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle
    void AnnounceToLibrary() const { identify_(reinterpret_cast<HWND>(listener_), 1); }

  private:
    std::uint64_t listener_;
    std::uint32_t (*identify_)(HWND,
                               std::uint32_t) = FunctionOf<std::uint32_t (*)(HWND, std::uint32_t)>(L"ISDC_RS.dll",
                                                                                                   "MessageIdentify");
};

struct Honeywell {
    using State = sim::HoneywellState;
    using Callback = std::int32_t (*)(std::uint32_t, std::uint32_t, std::uint32_t, void*, std::uint32_t);
    static constexpr std::size_t kProbeDevice = 14;
    static constexpr bool kSharedWithEmulator = true;
    static constexpr std::uint32_t kTextAt = 0;
    static sim::ScanSlot Scan(const std::string& text) { return sim::HoneywellScan(text); }

    explicit Honeywell(const State& state) : callback_(state.callback) {}
    void AnnounceTo(HWND window) const {
        bare_ = window;
        message_ = RegisterWindowMessageW(L"Quarlin bench scan");
        register_(1, [](std::uint32_t, std::uint32_t, std::uint32_t, void* data, std::uint32_t length) {
            PostMessageW(bare_, message_, length, reinterpret_cast<LPARAM>(data));
            return std::int32_t{0};
        });
    }
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a function's address
    void AnnounceToLibrary() const { register_(1, reinterpret_cast<Callback>(callback_)); }

  private:
    inline static HWND bare_ = nullptr;
    inline static UINT message_ = 0;
    std::uint64_t callback_;
    std::uint32_t (*register_)(std::uint32_t, Callback) =
        FunctionOf<std::uint32_t (*)(std::uint32_t, Callback)>(L"HEDC_RS.dll", "HEDC_RegisterCallback");
};

// What the callback finds; it has no other way to its test.
struct Received {
    Arrivals arrivals;
    std::int64_t at = 0;
    std::uint64_t lastNumber = 0;
    std::uint64_t outOfOrder = 0;
    sim::Burst* burst = nullptr;
} received;

std::uint64_t NumberOf(const QLBCR_BARCODE_DATA& scan) {
    if (scan.dataLength != static_cast<std::int32_t>(kBeginning.size() + kDigits)) {
        return 0;
    }
    const auto* const text = reinterpret_cast<const char*>(scan.data);
    std::uint64_t number = 0;
    std::from_chars(text + kBeginning.size(), text + scan.dataLength, number);
    return number;
}

void OnScan(const QLBCR_BARCODE_DATA* scan) {
    received.at = Now();
    const std::uint64_t number = NumberOf(*scan);
    received.outOfOrder += number != received.lastNumber + 1;
    received.lastNumber = number;
    received.burst->CountHandled();
    received.arrivals.Add();
}

// A machine of this program alone, with one scanner in it.
template <typename Engine>
class Machine {
  public:
    Machine() {
        SetEnvironmentVariableW(L"QLSIM_INSTANCE", (L"bench-" + std::to_wstring(GetCurrentProcessId())).c_str());
        if (Engine::kSharedWithEmulator) {
            emulatorTurn_.emplace(test::kScannerEmulatorTurn, test::SharedTurn::Use::kShared);
        }
        const sim::SharedState<sim::ProbeState>::Access probe(probe_);
        if (!probe || !engine_.Open()) {
            throw std::runtime_error("the machine's records are not to be had");
        }
        for (const std::size_t scanner : {Intermec::kProbeDevice, std::size_t{13}, Honeywell::kProbeDevice}) {
            const std::uint32_t there = scanner == Engine::kProbeDevice ? 1 : 0;
            probe->devices[scanner] = {there, there, there};
        }
        received.burst = &engine_.Unlocked()->burst;
        scan_ = Engine::Scan(std::string(kBeginning) + std::string(kDigits, '0'));
    }

    typename Engine::State& Record() { return *engine_.Unlocked(); }

    // The engine's thread sends so many scans, numbered on from 1.
    void Send(std::uint64_t count) { Send(scan_, count); }
    // It announces one without having any.
    void Announce() {
        sim::ScanSlot nothing = scan_;
        nothing.flags = sim::kScanNoData;
        Send(nothing, 1);
    }
    // When the engine announced its last scan.
    std::int64_t AnnouncedAt() {
        sim::Announcements& announcements = Record().announcements;
        return announcements.At(announcements.Count() - 1);
    }
    // Scans are numbered from 1 again.
    void StartNumbers() {
        next_ = 1;
        received.lastNumber = 0;
        received.outOfOrder = 0;
    }

  private:
    static constexpr std::uint32_t kNumberAt = Engine::kTextAt + static_cast<std::uint32_t>(kBeginning.size());

    void Send(const sim::ScanSlot& scan, std::uint64_t count) {
        constexpr ULONGLONG kPatience = 10'000;
        const ULONGLONG end = GetTickCount64() + kPatience;
        // The burst before this one ends a moment later than its last scan arrives.
        while (!sim::OrderBurst(engine_, scan, count, 0, next_, kNumberAt, kDigits)) {
            if (GetTickCount64() > end) {
                throw std::runtime_error("the engine does not send");
            }
            SwitchToThread();
        }
        next_ += count;
    }
    std::optional<test::SharedTurn> emulatorTurn_;
    sim::SharedState<sim::ProbeState> probe_;
    sim::SharedState<typename Engine::State> engine_;
    sim::ScanSlot scan_;
    std::uint64_t next_ = 1;
};

// Awake: what is measured is not how the system wakes up.
void Pause() {
    const std::int64_t start = Now();
    while (MicrosecondsOf(Now() - start) < kPause) {
        YieldProcessor();
    }
}

struct Delay {
    std::vector<double> bare;
    std::vector<double> library;
    std::vector<double> ratio;
};

template <typename Engine>
Delay MeasureDelay(Machine<Engine>& machine) {
    Delay delay;
    BareWindow bare;
    const Engine engine(machine.Record());
    for (int block = 0; block < kBlocks; ++block) {
        std::vector<double> bareBlock;
        std::vector<double> libraryBlock;
        // One after the other, so that both see the same clock frequency and the same other load.
        for (int i = 0; i < kScansPerBlock; ++i) {
            engine.AnnounceTo(bare.Window());
            Pause();
            const std::uint64_t bareBefore = bare.arrivals.Count();
            machine.Announce();
            bare.arrivals.WaitFor(bareBefore + 1);
            bareBlock.push_back(MicrosecondsOf(bare.at - machine.AnnouncedAt()));

            engine.AnnounceToLibrary();
            Pause();
            const std::uint64_t before = received.arrivals.Count();
            machine.Send(1);
            received.arrivals.WaitFor(before + 1);
            libraryBlock.push_back(MicrosecondsOf(received.at - machine.AnnouncedAt()));
        }
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
    double microsecondsPerScan = 0;
    Holdings before;
    Holdings after;
};

template <typename Engine>
LongRun RunLong(Machine<Engine>& machine, std::uint64_t count) {
    constexpr std::uint64_t kWarmUp = 500;
    LongRun run;
    const auto send = [&](std::uint64_t scans) {
        const std::uint64_t before = received.arrivals.Count();
        machine.Send(scans);
        received.arrivals.WaitFor(before + scans);
    };
    machine.StartNumbers();
    send(kWarmUp);
    run.before = HoldingsNow();
    const std::uint64_t arrivedBefore = received.arrivals.Count();
    const std::int64_t start = Now();
    send(count);
    run.microsecondsPerScan = MicrosecondsOf(Now() - start) / static_cast<double>(count);
    run.after = HoldingsNow();
    // No scan comes any more: what has come by then was all.
    Check(QLBCR_Disable(), "QLBCR_Disable");
    Check(QLBCR_Uninitialize(), "QLBCR_Uninitialize");
    run.sent = count;
    run.arrived = received.arrivals.Count() - arrivedBefore;
    run.outOfOrder = received.outOfOrder;
    return run;
}

template <typename Engine>
void Measure(std::uint64_t many) {
    Machine<Engine> machine;
    Check(QLBCR_Initialize(), "QLBCR_Initialize");
    Check(QLBCR_Enable(), "QLBCR_Enable");
    Check(QLBCR_SetCallback(OnScan), "QLBCR_SetCallback");

    const Delay delay = MeasureDelay(machine);
    const LongRun run = RunLong(machine, many);

    std::cout << "{\"bare_post_us\": " << Median(delay.bare) << ", \"callback_us\": " << Median(delay.library)
              << ", \"multiple_of_bare_post\": " << Median(delay.ratio) << ", \"scans\": " << run.sent
              << ", \"arrived\": " << run.arrived << ", \"out_of_order\": " << run.outOfOrder
              << ", \"us_per_scan\": " << run.microsecondsPerScan << ", \"handles_before\": " << run.before.handles
              << ", \"handles_after\": " << run.after.handles
              << ", \"working_set_kb_before\": " << run.before.workingSetKb
              << ", \"working_set_kb_after\": " << run.after.workingSetKb << "}\n";
}

}  // namespace

int main(int argc, char** argv) try {
    constexpr std::uint64_t kManyScans = 100'000;
    const std::string_view engine = argc > 1 ? argv[1] : "";
    const std::uint64_t many = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : kManyScans;
    if (engine == "intermec") {
        Measure<Intermec>(many);
    } else if (engine == "honeywell") {
        Measure<Honeywell>(many);
    } else {
        std::cerr << "usage: barcode_scan_bench intermec|honeywell [SCANS]\n";
        return 2;
    }
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "barcode_scan_bench: " << failure.what() << '\n';
    return 1;
}
