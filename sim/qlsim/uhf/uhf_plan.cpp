// SPDX-License-Identifier: Apache-2.0
#include "uhf/uhf_plan.h"

#include <algorithm>
#include <limits>

#include "core/table_reader.h"
#include "core/threaded_device.h"
#include "uhf/uhf_behaviour.h"
#include "uhf/uhf_command.h"

namespace quarlin::sim {
namespace {

template <typename Number>
void Read(TableReader& table, const std::string& key, Number& number,
          std::int64_t least = std::numeric_limits<Number>::min(),
          std::int64_t most = std::numeric_limits<Number>::max()) {
    number = static_cast<Number>(table.Integer(key, static_cast<std::int64_t>(number), least, most));
}

Bytes ReadBytes(TableReader& table, const std::string& key, std::optional<std::string> fallback) {
    const auto bytes = ParseHex(table.Text(key, std::move(fallback)));
    if (!bytes) {
        table.Complain(key, "\"" + key + "\" has to be a text of hexadecimal bytes");
    }
    return bytes.value_or(Bytes());
}

std::optional<std::uint32_t> ReadHexNumber(TableReader& table, const std::string& key, std::size_t digits) {
    const std::string text = table.Text(key, "0");
    const auto number = NumberOfHex(text);
    if (!number || text.size() > digits) {
        table.Complain(key,
                       "\"" + key + "\" has to be a text of at most " + std::to_string(digits) + " hexadecimal digits");
        return std::nullopt;
    }
    return number;
}

void ReadLocks(TableReader& locks, TagSettings& tag) {
    for (const auto& [name, area] : kLockAreas) {
        const std::string key(name);
        if (!locks.Has(key)) {
            locks.Text(key, "");
            continue;
        }
        const std::string text = locks.Text(key);
        const auto state =
            std::find_if(kLockStates.begin(), kLockStates.end(), [&](const auto& row) { return row.first == text; });
        if (state == kLockStates.end()) {
            locks.Complain(
                key, "\"" + key + "\" has to be \"unlocked\", \"locked\", \"always_unlocked\" or \"always_locked\"");
        } else {
            tag.Lock(area) = state->second;
        }
    }
    locks.RefuseTheRest();
}

TagSettings ReadTag(TableReader& table) {
    TagSettings tag;
    tag.epc = ReadBytes(table, "epc", {});
    tag.tid = ReadBytes(table, "tid", "");
    tag.user = ReadBytes(table, "user", "");
    if (const auto pc = ReadHexNumber(table, "pc", 4); pc && table.Has("pc")) {
        tag.pc = static_cast<std::uint16_t>(*pc);
    }
    tag.accessPassword = ReadHexNumber(table, "access_password", 8).value_or(0);
    tag.killPassword = ReadHexNumber(table, "kill_password", 8).value_or(0);
    Read(table, "signal", tag.signal);
    Read(table, "power", tag.power);
    Read(table, "write_power", tag.writePower);
    if (auto locks = table.Table("locks", "a table of locks")) {
        ReadLocks(*locks, tag);
    }
    table.RefuseTheRest();
    if (const auto problem = ProblemOf(tag)) {
        table.Complain("epc", *problem);
        return {};
    }
    return tag;
}

void ReadQuery(TableReader& table, UhfQuery& query) {
    Read(table, "link_frequency", query.linkFrequency);
    Read(table, "miller", query.miller);
    Read(table, "session", query.session);
    Read(table, "q_begin", query.qBegin);
    Read(table, "sensitivity", query.sensitivity);
    table.RefuseTheRest();
}

class UhfPlan final : public DevicePlan {
  public:
    explicit UhfPlan(UhfScenario scenario) : scenario_(std::move(scenario)) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        auto behaviour = std::make_unique<UhfBehaviour>(scenario_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override { ParseUhfCommand(words); }
    std::string Summary() const override {
        const std::size_t tags = scenario_.reader.tags.size();
        return "a USB reader with " + std::to_string(tags) + (tags == 1 ? " tag" : " tags") + " in its field";
    }
    std::vector<std::string> Usage() const override { return UhfCommandUsage(); }

  private:
    UhfScenario scenario_;
};

}  // namespace

UhfScenario ReadUhfScenario(TableReader& table) {
    UhfScenario scenario;
    scenario.plugged = table.Flag("plugged", true);
    UhfSettings& reader = scenario.reader;
    Read(table, "vendor", reader.vendor);
    Read(table, "product", reader.product);
    Read(table, "version", reader.version);
    reader.instance = table.Text("instance", "");
    Read(table, "output_report_length", reader.outputLength, 2, 4096);
    Read(table, "input_report_length", reader.inputLength, 2, 4096);
    Read(table, "power", reader.radio.power);
    Read(table, "most_power", reader.radio.mostPower);
    if (auto query = table.Table("query", "a table of query parameters")) {
        ReadQuery(*query, reader.radio.query);
    }
    for (TableReader& read : table.Tables("tag", "a tag")) {
        TagSettings tag = ReadTag(read);
        const auto same = [&](const TagSettings& other) { return other.epc == tag.epc; };
        if (std::any_of(reader.tags.begin(), reader.tags.end(), same)) {
            read.Complain("epc", "two tags have the same EPC");
        }
        reader.tags.push_back(std::move(tag));
    }
    return scenario;
}

std::unique_ptr<DevicePlan> ReadUhfPlan(TableReader& table) {
    return std::make_unique<UhfPlan>(ReadUhfScenario(table));
}

}  // namespace quarlin::sim
