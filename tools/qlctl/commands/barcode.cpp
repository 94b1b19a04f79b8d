// SPDX-License-Identifier: Apache-2.0
#include "commands/barcode_options.h"
#include "console/stop_signal.h"
#include "view/barcode_report.h"
#include "view/text.h"

#include <algorithm>
#include <chrono>
#include <iostream>

namespace quarlin::qlctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPollInterval{20};
constexpr milliseconds kLookAtScanner{500};
constexpr double kUsualTimeout = 10;

// The scanner, which is given back whatever ends the command; Ctrl-C ends it in good order.
class Session {
  public:
    Session(const BarcodeOptions& options, const StopSignal& stop) : stop_(stop), scanner_(options.scanners) {
        if (stop_.HasCome()) {
            throw Failure(ExitStatus::kInterrupted, "stopped before the scanner was ready");
        }
    }

    BarcodeSession& Scanner() { return scanner_; }

    // The next scan; nothing when the time is up or the user wants to stop.
    std::optional<BarcodeScan> AwaitScan(std::optional<Clock::time_point> end) {
        for (;;) {
            if (stop_.HasCome() || (end && Clock::now() >= *end)) {
                return std::nullopt;
            }
            if (auto scan = scanner_.TakeScan()) {
                return scan;
            }
            Look();
            stop_.Wait(kPollInterval);
        }
    }

  private:
    void Look() {
        if (Clock::now() < nextLook_) {
            return;
        }
        nextLook_ = Clock::now() + kLookAtScanner;
        if (!scanner_.IsEnabled()) {
            throw Failure(ExitStatus::kDevice, "the scanner was taken away by the barcode emulator");
        }
    }

    const StopSignal& stop_;
    BarcodeSession scanner_;
    Clock::time_point nextLook_ = Clock::now() + kLookAtScanner;
};

std::optional<Clock::time_point> After(std::optional<double> seconds) {
    if (!seconds) {
        return std::nullopt;
    }
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(*seconds));
}

ExitStatus ListScanners(const BarcodeOptions& options, Output& output) {
    const std::vector<BarcodeScanner> scanners = FindScanners(options.scanners);
    output.Write(options.json ? ScannersJson(scanners) : ScannerTable(scanners));
    return ExitStatus::kDone;
}

// The time is up: which is a failure when scans are missing.
ExitStatus EndOfTime(const BarcodeOptions& options, int shown) {
    if (!options.count) {
        return ExitStatus::kDone;
    }
    throw Failure(ExitStatus::kTimedOut, std::to_string(shown) + " of " + std::to_string(*options.count) +
                                             " scans came within " + Fixed(*options.timeout, 1) + " s");
}

ExitStatus Watch(const BarcodeOptions& options, Output& output) {
    const StopSignal stop;
    Session session(options, stop);
    session.Scanner().Apply(options.settings);
    std::cerr << "qlctl: waiting for scans, " << Printable(session.Scanner().Name()) << '\n';
    const auto end = After(options.timeout);
    int shown = 0;
    while (const auto scan = session.AwaitScan(end)) {
        ++shown;
        output.Write(options.json ? ScanJson(*scan, shown) : ScanText(*scan, shown));
        if (shown == options.count) {
            return ExitStatus::kDone;
        }
    }
    return stop.HasCome() ? ExitStatus::kDone : EndOfTime(options, shown);
}

// One code, read without anybody pulling the trigger.
BarcodeScan ReadOne(const BarcodeOptions& options, const ScanSettings& settings, const char* invitation,
                    const StopSignal& stop) {
    const double timeout = options.timeout.value_or(kUsualTimeout);
    Session session(options, stop);
    session.Scanner().Apply(settings);
    session.Scanner().StartScanning();
    std::cerr << "qlctl: " << invitation << '\n';
    if (auto scan = session.AwaitScan(After(timeout))) {
        return *scan;
    }
    session.Scanner().StopScanning();
    if (stop.HasCome()) {
        throw Failure(ExitStatus::kInterrupted, "stopped before a code was read");
    }
    throw Failure(ExitStatus::kTimedOut, "no code was read within " + Fixed(timeout, 1) + " s");
}

ExitStatus ScanOne(const BarcodeOptions& options, Output& output) {
    const StopSignal stop;
    const BarcodeScan scan = ReadOne(options, options.settings, "hold a code before the scanner", stop);
    output.Write(options.json ? ScanJson(scan, 1) : ScanText(scan, 1));
    return ExitStatus::kDone;
}

// Two sessions: a scan counts as pending until its callback has ended, so that the next one cannot be started for sure
// before the library has stopped.
ExitStatus TryEdit(const BarcodeOptions& options, Output& output) {
    const StopSignal stop;
    const BarcodeScan before =
        ReadOne(options, {}, "hold a code before the scanner, it is read without the rule", stop);
    const BarcodeScan after =
        ReadOne(options, options.settings, "hold the same code before the scanner, it is read with the rule", stop);
    const EditRule& rule = options.settings.edit;
    output.Write(options.json ? EditJson(rule, before, after) : EditText(rule, before, after));
    return ExitStatus::kDone;
}

ExitStatus ListSymbologies(const BarcodeOptions& options, Output& output) {
    output.Write(options.json ? SymbologiesJson() : SymbologyTable());
    return ExitStatus::kDone;
}

// All that can be switched are; the exit status is that of the first that cannot.
ExitStatus Switch(const BarcodeOptions& options, Output& output, bool enable) {
    const StopSignal stop;
    Session session(options, stop);
    std::vector<SymbologyChange> changes;
    ExitStatus status = ExitStatus::kDone;
    for (const Symbology* const symbology : options.symbologies) {
        try {
            session.Scanner().EnableSymbology(*symbology, enable);
            changes.push_back({symbology, std::nullopt});
        } catch (const Failure& failure) {
            std::cerr << "qlctl: " << symbology->name << ": " << failure.what() << '\n';
            status = status == ExitStatus::kDone ? failure.Status() : status;
            changes.push_back({symbology, failure.Cause()});
        }
    }
    output.Write(options.json ? ChangesJson(changes, enable) : ChangesText(changes, enable));
    return status;
}

ExitStatus Enable(const BarcodeOptions& options, Output& output) {
    return Switch(options, output, true);
}

ExitStatus Disable(const BarcodeOptions& options, Output& output) {
    return Switch(options, output, false);
}

ExitStatus SetAndShowTrigger(const BarcodeOptions& options, Output& output) {
    const StopSignal stop;
    Session session(options, stop);
    if (options.triggerMode) {
        session.Scanner().SetTriggerMode(*options.triggerMode);
    }
    if (options.hardwareTrigger) {
        session.Scanner().SetHardwareTrigger(*options.hardwareTrigger);
    }
    const TriggerState state{session.Scanner().IsHardwareTriggerOn(), options.triggerMode};
    output.Write(options.json ? TriggerJson(state) : TriggerText(state));
    return ExitStatus::kDone;
}

ExitStatus ShowFirmware(const BarcodeOptions& options, Output& output) {
    const StopSignal stop;
    Session session(options, stop);
    const ScannerFirmware firmware{session.Scanner().Name(), session.Scanner().FirmwareVersion()};
    output.Write(options.json ? FirmwareJson(firmware) : FirmwareText(firmware));
    return ExitStatus::kDone;
}

}  // namespace

void AddBarcodeCommands(CLI::App& program, Chosen& chosen) {
    AddBarcodeCommandLine(
        program, chosen,
        {ListScanners, Watch, ScanOne, TryEdit, ListSymbologies, Enable, Disable, SetAndShowTrigger, ShowFirmware});
}

}  // namespace quarlin::qlctl
