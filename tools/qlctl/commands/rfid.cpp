// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "commands/rfid_options.h"
#include "console/stop_signal.h"
#include "sdk/rfid_reader.h"
#include "view/hex.h"

#include <algorithm>

namespace quarlin::qlctl {
namespace {

using Clock = Patience::Clock;

Clock::duration Seconds(double count) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(count));
}

// What every command needs: Ctrl-C, the time, the reader.
class Session {
  public:
    explicit Session(const RfidOptions& options)
        : patience_(options.timeout ? std::optional(Seconds(*options.timeout)) : std::nullopt,
                    [this] { return stop_.HasCome(); }),
          reader_(patience_) {}

    RfidReader& Reader() { return reader_; }
    const Patience& Time() const { return patience_; }
    const StopSignal& Stop() const { return stop_; }

  private:
    StopSignal stop_;
    Patience patience_;
    RfidReader reader_;
};

// False when there is no time for another round, or the user ends it.
bool AwaitNextRound(const Session& session, Clock::time_point begin, const RfidOptions& options) {
    const Clock::time_point next = begin + Seconds(options.interval);
    const Clock::time_point wake = std::min(next, session.Time().End().value_or(next));
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(wake - Clock::now());
    return !session.Stop().Wait(wait) && (!session.Time().End() || Clock::now() < *session.Time().End());
}

ExitStatus Inventory(const RfidOptions& options, Output& output) {
    Session session(options);
    const Heading heading = options.repeat == 1 ? Heading::kNone : Heading::kRound;
    for (int round = 1;; ++round) {
        const Clock::time_point begin = Clock::now();
        const std::vector<RfidTag> tags = session.Reader().Inventory();
        output.Write(options.json ? RoundJson(tags, round) : RoundText(tags, round, heading));
        if (round == options.repeat || !AwaitNextRound(session, begin, options)) {
            return ExitStatus::kDone;
        }
    }
}

std::string ListOf(const std::vector<RfidTag>& tags) {
    std::string list;
    for (const RfidTag& tag : tags) {
        list += (list.empty() ? "" : ", ") + Hex(tag.Epc());
    }
    return list;
}

// The one tag of the field: a round may report it several times.
RfidTag OnlyTag(RfidReader& reader) {
    std::vector<RfidTag> tags = reader.Inventory();
    const auto byEpc = [](const RfidTag& tag) { return Hex(tag.Epc()); };
    std::ranges::sort(tags, {}, byEpc);
    const auto repeated = std::ranges::unique(tags, {}, byEpc);
    tags.erase(repeated.begin(), repeated.end());
    if (tags.empty()) {
        throw Failure(ExitStatus::kRfidReader, "no tag is in the field");
    }
    if (tags.size() > 1) {
        throw Failure(ExitStatus::kInvalidArgument,
                      std::to_string(tags.size()) + " tags are in the field, name one with --epc: " + ListOf(tags));
    }
    return tags.front();
}

// The tag that the command is about, selected.
RfidTag ChooseTag(RfidReader& reader, const RfidOptions& options) {
    RfidTag tag;
    if (options.epc.empty()) {
        tag = OnlyTag(reader);
    } else {
        tag.identifier.resize(RfidTag::kProtocolControlBytes);
        const auto epc = ParseHex(options.epc).value();
        tag.identifier.insert(tag.identifier.end(), epc.begin(), epc.end());
    }
    reader.Select(tag.Epc());
    return tag;
}

TagPassword PasswordOf(const RfidOptions& options) {
    return ParsePassword(options.password).value();
}

ExitStatus ReadWords(const RfidOptions& options, Output& output) {
    Session session(options);
    const RfidTag tag = ChooseTag(session.Reader(), options);
    const auto words = session.Reader().Read(options.place, options.count, PasswordOf(options));
    output.Write(options.json ? WordsJson(tag, options.place, words) : WordsText(options.place, words));
    return ExitStatus::kDone;
}

// Does something to a tag and says so.
ExitStatus Act(const RfidOptions& options, Output& output, const char* done,
               const std::function<void(RfidReader&)>& action) {
    Session session(options);
    const RfidTag tag = ChooseTag(session.Reader(), options);
    action(session.Reader());
    output.Write(options.json ? DoneJson(tag, done) : DoneText(tag, done));
    return ExitStatus::kDone;
}

ExitStatus WriteWords(const RfidOptions& options, Output& output) {
    return Act(options, output, "written", [&options](RfidReader& reader) {
        reader.Write(options.place, ParseHex(options.data).value(), PasswordOf(options));
    });
}

ExitStatus LockTag(const RfidOptions& options, Output& output) {
    return Act(options, output, "locked", [&options](RfidReader& reader) {
        reader.Lock(options.lockParameter1, options.lockParameter2, PasswordOf(options));
    });
}

ExitStatus KillTag(const RfidOptions& options, Output& output) {
    return Act(options, output, "killed", [&options](RfidReader& reader) { reader.Kill(PasswordOf(options)); });
}

ExitStatus SetAndShowPower(const RfidOptions& options, Output& output) {
    Session session(options);
    if (options.power) {
        session.Reader().SetPower(*options.power);
    }
    const unsigned power = session.Reader().Power();
    output.Write(options.json ? PowerJson(power) : PowerText(power));
    return ExitStatus::kDone;
}

ExitStatus ChangeAndShowQuery(const RfidOptions& options, Output& output) {
    Session session(options);
    session.Reader().Change(options.query);
    const QueryParameters parameters = session.Reader().Query();
    output.Write(options.json ? QueryJson(parameters) : QueryText(parameters));
    return ExitStatus::kDone;
}

}  // namespace

void AddRfidCommands(CLI::App& program, Chosen& chosen) {
    AddRfidCommandLine(program, chosen,
                       {Inventory, ReadWords, WriteWords, LockTag, KillTag, SetAndShowPower, ChangeAndShowQuery});
}

}  // namespace quarlin::qlctl
