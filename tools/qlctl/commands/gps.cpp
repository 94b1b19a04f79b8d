// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "console/stop_signal.h"
#include "sdk/gps_session.h"
#include "view/gps_json.h"
#include "view/gps_screen.h"
#include "view/gps_text.h"
#include "view/reading_pace.h"
#include "view/text.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>

namespace quarlin::qlctl {
namespace {

using Clock = ChangeTracker::Clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kPollInterval{50};
// A receiver sends each kind of sentence about once a second.
constexpr milliseconds kPatienceForFirstReading{1500};

enum class Redraw {
    kAuto,
    kAlways,
    kNever,
};

struct GpsOptions {
    int port = 3;
    bool json = false;
    std::optional<int> count;
    std::optional<double> timeout;
    double interval = 0.5;
    Redraw redraw = Redraw::kAuto;
};

Clock::duration Seconds(double count) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(count));
}

// How the readings are shown.
class Presenter {
  public:
    virtual ~Presenter() = default;
    // Called once a second until the receiver's first line.
    virtual void Waiting(seconds) {}
    virtual void Show(const GpsReading& reading, seconds unchangedFor) = 0;
};

class TextPresenter : public Presenter {
  public:
    using Format = std::function<std::string(const GpsReading&)>;
    TextPresenter(Output& output, Format format) : output_(output), format_(std::move(format)) {}

    void Show(const GpsReading& reading, seconds) override { output_.Write(format_(reading)); }

  private:
    Output& output_;
    Format format_;
};

class ScreenPresenter : public Presenter {
  public:
    ScreenPresenter(Output& output, std::string portName)
        : output_(output),
          screen_(output),
          portName_(std::move(portName)),
          colour_(std::getenv("NO_COLOR") == nullptr) {}

    void Waiting(seconds waitedFor) override { screen_.Draw(WaitingScreen(portName_, waitedFor)); }
    void Show(const GpsReading& reading, seconds unchangedFor) override {
        screen_.Draw(ReadingScreen(reading, portName_, unchangedFor, {output_.Rows(), colour_}));
    }

  private:
    Output& output_;
    Screen screen_;
    std::string portName_;
    bool colour_;
};

void WaitForFirstLine(const GpsSession& session, const StopSignal& stop, const GpsOptions& options,
                      Presenter& presenter) {
    const Clock::time_point start = Clock::now();
    seconds told{-1};
    while (!session.IsSending()) {
        const Clock::duration waited = Clock::now() - start;
        if (options.timeout && waited >= Seconds(*options.timeout)) {
            throw Failure(ExitStatus::kTimedOut, "nothing came from the receiver on " + session.PortName() +
                                                     " within " + Fixed(*options.timeout, 1) + " s");
        }
        if (const auto whole = std::chrono::duration_cast<seconds>(waited); whole != told) {
            presenter.Waiting(whole);
            told = whole;
        }
        if (stop.Wait(kPollInterval)) {
            throw Failure(ExitStatus::kInterrupted, "stopped before the receiver on " + session.PortName() + " sent");
        }
    }
}

// Looks at the receiver until it has said everything and pauses between two bursts; not longer than the patience lasts
// or the user wants to.
void AwaitFirstReading(const GpsSession& session, const StopSignal& stop, ChangeTracker& tracker) {
    const Clock::time_point start = Clock::now();
    for (;;) {
        const Clock::time_point now = Clock::now();
        tracker.See(session.Read(), now);
        const bool whole = tracker.UnchangedFor(now) >= kPause && IsComplete(tracker.Latest());
        if (whole || now - start >= kPatienceForFirstReading || stop.Wait(kPollInterval)) {
            return;
        }
    }
}

// False when the time is up or the user ends it.
bool AwaitNextReading(const GpsSession& session, const StopSignal& stop, ChangeTracker& tracker, ReadingPace& pace,
                      std::optional<Clock::time_point> end) {
    const Clock::time_point wake = end ? std::min(*end, pace.LookFrom()) : pace.LookFrom();
    Clock::duration wait = wake - Clock::now();
    while (!stop.Wait(std::chrono::duration_cast<milliseconds>(wait))) {
        const Clock::time_point now = Clock::now();
        if (end && now >= *end) {
            return false;
        }
        tracker.See(session.Read(), now);
        if (pace.IsTime(now, tracker.UnchangedFor(now))) {
            pace.Taken(now);
            return true;
        }
        wait = kPollInterval;
    }
    return false;
}

// Shows readings until there were enough of them, the time is up, or the user ends it.
ExitStatus Follow(const GpsSession& session, const StopSignal& stop, const GpsOptions& options,
                  std::optional<Clock::time_point> end, Presenter& presenter) {
    WaitForFirstLine(session, stop, options, presenter);
    ChangeTracker tracker;
    AwaitFirstReading(session, stop, tracker);
    ReadingPace pace(Seconds(options.interval), Clock::now());
    int shown = 0;
    do {
        const Clock::duration unchangedFor = tracker.UnchangedFor(Clock::now());
        presenter.Show(tracker.Latest(), std::chrono::duration_cast<seconds>(unchangedFor));
        ++shown;
    } while (shown != options.count && AwaitNextReading(session, stop, tracker, pace, end));
    return ExitStatus::kDone;
}

ExitStatus ShowReadings(const GpsOptions& options, Output& output, TextPresenter::Format format) {
    const StopSignal stop;
    const GpsSession session(options.port);
    TextPresenter presenter(output, options.json ? ReadingJson : std::move(format));
    return Follow(session, stop, options, std::nullopt, presenter);
}

ExitStatus ShowStatus(const GpsOptions& options, Output& output) {
    return ShowReadings(options, output, [port = "COM" + std::to_string(options.port)](const GpsReading& reading) {
        return StatusReport(reading, port);
    });
}

ExitStatus ShowSatellites(const GpsOptions& options, Output& output) {
    return ShowReadings(options, output, SatelliteTable);
}

ExitStatus Watch(const GpsOptions& options, Output& output) {
    const StopSignal stop;
    const GpsSession session(options.port);
    std::optional<Clock::time_point> end;
    if (options.timeout) {
        end = Clock::now() + Seconds(*options.timeout);
    }
    const bool redraw = options.redraw == Redraw::kAlways || (options.redraw == Redraw::kAuto && output.CanRedraw());
    if (redraw && !options.json) {
        ScreenPresenter presenter(output, session.PortName());
        return Follow(session, stop, options, end, presenter);
    }
    TextPresenter presenter(output, options.json ? ReadingJson : ReadingLine);
    return Follow(session, stop, options, end, presenter);
}

using Command = ExitStatus (*)(const GpsOptions&, Output&);

// Adds one command with what all of them share.
CLI::App* AddCommand(CLI::App& family, const char* name, const char* description, const GpsOptions& defaults,
                     Command command, Chosen& chosen, std::shared_ptr<GpsOptions>& options) {
    options = std::make_shared<GpsOptions>(defaults);
    CLI::App* const added = family.add_subcommand(name, description);
    added->add_option("--port", options->port, "Serial port of the receiver, 3 for COM3")
        ->envname("QLCTL_GPS_PORT")
        ->capture_default_str();
    added->add_flag("--json", options->json, "Print JSON lines, one object per reading");
    added->add_option("--interval", options->interval, "Seconds between two readings, 0.1 to 3600")
        ->check(CLI::Range(0.1, 3600.0).description(""))
        ->capture_default_str();
    added->callback([&chosen, command, options] {
        chosen.run = [command, options](Output& output) { return command(*options, output); };
    });
    return added;
}

void AddCount(CLI::App& command, GpsOptions& options, const char* description) {
    command.add_option("--count", options.count, description)
        ->check(CLI::Range(1, 1000000000).description(""))
        ->type_name("N");
}

void AddTimeout(CLI::App& command, GpsOptions& options, const char* description) {
    command.add_option("--timeout", options.timeout, description)
        ->check(CLI::Range(0.0, 1e6).description(""))
        ->type_name("S");
}

}  // namespace

void AddGpsCommands(CLI::App& program, Chosen& chosen) {
    CLI::App* const gps = program.add_subcommand("gps", "Read the GPS receiver");
    gps->require_subcommand(1);
    gps->footer(
        "Examples:\n"
        "  qlctl gps status --port 3\n"
        "  qlctl gps satellites\n"
        "  qlctl gps watch --timeout 20");

    GpsOptions once;
    once.count = 1;
    once.timeout = 10;
    std::shared_ptr<GpsOptions> options;

    CLI::App* const status =
        AddCommand(*gps, "status", "Show fix, position, time, speed and course", once, ShowStatus, chosen, options);
    AddCount(*status, *options, "Readings to show, 1 unless given");
    AddTimeout(*status, *options, "Seconds to wait for the receiver's first line, 10 unless given");
    status->footer(
        "Examples:\n"
        "  qlctl gps status\n"
        "  qlctl gps status --port 5 --timeout 3\n"
        "  qlctl gps status --json --count 10 --interval 1");

    CLI::App* const satellites =
        AddCommand(*gps, "satellites", "Show a table of the satellites in view", once, ShowSatellites, chosen, options);
    AddCount(*satellites, *options, "Tables to show, 1 unless given");
    AddTimeout(*satellites, *options, "Seconds to wait for the receiver's first line, 10 unless given");
    satellites->footer(
        "Examples:\n"
        "  qlctl gps satellites\n"
        "  qlctl gps satellites --port 5 --json");

    CLI::App* const watch = AddCommand(*gps, "watch", "Show the receiver live, with a bar per satellite, until Ctrl-C",
                                       GpsOptions{}, Watch, chosen, options);
    AddCount(*watch, *options, "End after so many readings");
    AddTimeout(*watch, *options, "End after so many seconds");
    const std::map<std::string, Redraw> redrawNames{
        {"auto", Redraw::kAuto}, {"always", Redraw::kAlways}, {"never", Redraw::kNever}};
    watch->add_option("--redraw", options->redraw, "Redraw one screen: auto (on a console), always, never (lines)")
        ->transform(CLI::CheckedTransformer(redrawNames).description(""))
        ->type_name("auto|always|never");
    watch->footer(
        "Examples:\n"
        "  qlctl gps watch\n"
        "  qlctl gps watch --port 5 --timeout 20\n"
        "  qlctl gps watch --redraw never --count 100\n"
        "  qlctl gps watch --json > track.jsonl");
}

}  // namespace quarlin::qlctl
