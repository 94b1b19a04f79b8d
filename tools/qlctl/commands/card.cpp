// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "console/stop_signal.h"
#include "sdk/card_session.h"
#include "view/card_json.h"
#include "view/card_text.h"
#include "view/text.h"

#include <algorithm>
#include <chrono>
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

namespace quarlin::qlctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPollInterval{50};
// Asking whether a reader is still there waits for a swipe in progress: not more often than needed.
constexpr milliseconds kLookAtReaders{500};

struct CardOptions {
    bool json = false;
    bool showPan = false;
    std::optional<int> reader;
    std::optional<int> count;
    std::optional<double> timeout;
};

ExitStatus ListReaders(const CardOptions& options, Output& output) {
    CardSession session;
    const std::vector<CardReader> readers = session.FindReaders();
    output.Write(options.json ? CardReadersJson(readers) : CardReaderTable(readers));
    return ExitStatus::kDone;
}

// Readers that swipes are expected from.
class WatchedReaders {
  public:
    WatchedReaders(CardSession& session, const CardOptions& options) : session_(session) {
        for (const CardReader& reader : session_.FindReaders()) {
            indexes_.push_back(reader.index);
        }
        if (options.reader) {
            indexes_ = {*options.reader};
        }
        if (indexes_.empty()) {
            throw Failure(ExitStatus::kNoDevice, "no card reader is plugged in");
        }
        for (const int index : indexes_) {
            session_.Enable(index);
        }
        std::cerr << "qlctl: waiting for swipes, "
                  << (indexes_.size() == 1 ? "1 reader" : std::to_string(indexes_.size()) + " readers") << '\n';
    }

    // Tells of each reader that has gone; a Failure when none is left.
    void Look() {
        if (Clock::now() < nextLook_) {
            return;
        }
        nextLook_ = Clock::now() + kLookAtReaders;
        std::erase_if(indexes_, [this](int index) {
            const bool gone = !session_.IsEnabled(index);
            if (gone) {
                std::cerr << "qlctl: reader " << index << " was unplugged\n";
            }
            return gone;
        });
        if (indexes_.empty()) {
            throw Failure(ExitStatus::kDevice, "no reader is left to wait for");
        }
    }

  private:
    CardSession& session_;
    std::vector<int> indexes_;
    Clock::time_point nextLook_ = Clock::now() + kLookAtReaders;
};

// The time is up: which is a failure when swipes are missing.
ExitStatus EndOfTime(const CardOptions& options, int shown) {
    if (!options.count) {
        return ExitStatus::kDone;
    }
    throw Failure(ExitStatus::kTimedOut, std::to_string(shown) + " of " + std::to_string(*options.count) +
                                             " swipes came within " + Fixed(*options.timeout, 1) + " s");
}

ExitStatus Watch(const CardOptions& options, Output& output) {
    const StopSignal stop;
    CardSession session;
    WatchedReaders readers(session, options);
    const Clock::time_point start = Clock::now();
    const Privacy privacy = options.showPan ? Privacy::kShow : Privacy::kMask;
    int shown = 0;
    for (;;) {
        while (const auto swipe = session.TakeSwipe()) {
            ++shown;
            output.Write(options.json ? SwipeJson(*swipe, shown, privacy) : SwipeText(*swipe, shown, privacy));
            if (shown == options.count) {
                return ExitStatus::kDone;
            }
        }
        if (options.timeout && Clock::now() - start >= std::chrono::duration<double>(*options.timeout)) {
            return EndOfTime(options, shown);
        }
        readers.Look();
        if (stop.Wait(kPollInterval)) {
            return ExitStatus::kDone;
        }
    }
}

using Command = ExitStatus (*)(const CardOptions&, Output&);

CLI::App* AddCommand(CLI::App& family, const char* name, const char* description, Command command, Chosen& chosen,
                     std::shared_ptr<CardOptions>& options) {
    options = std::make_shared<CardOptions>();
    CLI::App* const added = family.add_subcommand(name, description);
    added->callback([&chosen, command, options] {
        chosen.run = [command, options](Output& output) { return command(*options, output); };
    });
    return added;
}

}  // namespace

void AddCardCommands(CLI::App& program, Chosen& chosen) {
    CLI::App* const card = program.add_subcommand("card", "Read magnetic stripe cards");
    card->require_subcommand(1);
    card->footer(
        "Examples:\n"
        "  qlctl card list\n"
        "  qlctl card watch --count 1 --timeout 30");
    std::shared_ptr<CardOptions> options;

    CLI::App* const list = AddCommand(*card, "list", "List the card readers", ListReaders, chosen, options);
    list->add_flag("--json", options->json, "Print one JSON object");
    list->footer(
        "Examples:\n"
        "  qlctl card list\n"
        "  qlctl card list --json");

    CLI::App* const watch =
        AddCommand(*card, "watch", "Show each swipe as it comes, until Ctrl-C", Watch, chosen, options);
    watch->add_flag("--json", options->json, "Print JSON lines, one object per swipe");
    watch->add_option("--reader", options->reader, "Index of one reader, as 'card list' shows it; all unless given")
        ->type_name("N");
    watch->add_option("--count", options->count, "End after so many swipes")
        ->check(CLI::Range(1, 1000000000).description(""))
        ->type_name("N");
    watch
        ->add_option("--timeout", options->timeout, "End after so many seconds; a failure when --count was not reached")
        ->check(CLI::Range(0.0, 1e6).description(""))
        ->type_name("S");
    watch->add_flag("--show-pan", options->showPan,
                    "Show account numbers, names and the issuer's data; with --json the bytes, too");
    watch->footer(
        "Account numbers and names are masked unless --show-pan is given.\n\n"
        "Examples:\n"
        "  qlctl card watch\n"
        "  qlctl card watch --reader 1 --count 1 --timeout 30\n"
        "  qlctl card watch --json --show-pan");
}

}  // namespace quarlin::qlctl
