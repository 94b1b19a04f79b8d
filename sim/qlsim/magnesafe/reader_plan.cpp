// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/reader_plan.h"

#include <algorithm>

#include "core/table_reader.h"
#include "core/threaded_device.h"
#include "hid/hex.h"
#include "magnesafe/card_text.h"
#include "magnesafe/reader_behaviour.h"
#include "magnesafe/reader_command.h"

namespace quarlin::sim::magnesafe {
namespace {

constexpr std::size_t kLongestReport = 4096;  // longer ones no system takes

std::string ReaderText(TableReader& table, const std::string& key, const std::string& fallback) {
    const auto text = Latin1(table.Text(key, fallback));
    if (!text) {
        table.Complain(key, "\"" + key + "\" has a character that is no single byte (above U+00FF)");
    }
    return text.value_or(fallback);
}

std::size_t ReportLength(TableReader& table, const std::string& key, std::size_t fallback) {
    return static_cast<std::size_t>(table.Integer(key, static_cast<std::int64_t>(fallback), 2, kLongestReport));
}

void ReadSecurity(TableReader& table, ReaderSettings& reader) {
    reader.securityLevel = static_cast<std::uint8_t>(table.Integer("security_level", reader.securityLevel, 0, 255));
    const auto key = ParseHex(table.Text("key_serial", HexText(reader.keySerial)));
    if (key && key->size() == reader.keySerial.size()) {
        std::copy(key->begin(), key->end(), reader.keySerial.begin());
    } else {
        table.Complain("key_serial", "\"key_serial\" has to be 10 bytes in hexadecimal");
    }
    const std::string fill = table.Text("mask", "0");
    if (fill.size() == 1) {
        reader.masking.fill = fill.front();
    } else {
        table.Complain("mask", "\"mask\" has to be one character, \"0\" or \"*\"");
    }
    reader.masking.first = static_cast<std::size_t>(table.Integer("mask_first", 4, 0, 19));
    reader.masking.last = static_cast<std::size_t>(table.Integer("mask_last", 4, 0, 19));
}

class ReaderPlan final : public DevicePlan {
  public:
    explicit ReaderPlan(ReaderPlanSettings settings) : settings_(std::move(settings)) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        auto behaviour = std::make_unique<ReaderBehaviour>(settings_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override { ParseReaderCommand(words); }
    std::string Summary() const override {
        return "reads magnetic stripes, serial number " + settings_.reader.serial + ", security level " +
               std::to_string(settings_.reader.securityLevel);
    }
    std::vector<std::string> Usage() const override { return ReaderCommandUsage(); }

  private:
    ReaderPlanSettings settings_;
};

}  // namespace

ReaderPlanSettings ReadReaderSettings(TableReader& table) {
    ReaderPlanSettings settings;
    ReaderSettings& reader = settings.reader;
    reader.serial = ReaderText(table, "serial", reader.serial);
    reader.softwareId = ReaderText(table, "software_id", reader.softwareId);
    reader.instance = table.Text("instance", "");
    reader.inputReportLength = ReportLength(table, "input_report_length", reader.inputReportLength);
    reader.featureReportLength = ReportLength(table, "feature_report_length", reader.featureReportLength);
    ReadSecurity(table, reader);
    settings.plugged = table.Flag("plugged", true);
    if (table.Has("form")) {
        settings.form = FormNamed(table.Text("form"));
        if (!settings.form) {
            table.Complain("form", "\"form\" has to be \"clear\", \"masked\" or \"encrypted\"");
        }
    } else {
        table.Text("form", "");
    }
    settings.cards = ReadCards(table, "card");
    settings.cardFiles = table.Texts("card_files", {});
    return settings;
}

std::unique_ptr<DevicePlan> ReadReaderPlan(TableReader& table) {
    return std::make_unique<ReaderPlan>(ReadReaderSettings(table));
}

}  // namespace quarlin::sim::magnesafe
