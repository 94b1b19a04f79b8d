// SPDX-License-Identifier: Apache-2.0
#include "hid/hid_plan.h"

#include "core/table_reader.h"
#include "core/threaded_device.h"
#include "hid/hex.h"
#include "hid/hid_behaviour.h"
#include "hid/report_descriptor.h"

namespace quarlin::sim {
namespace {

// A keyboard as the HID standard prints it: modifier keys, a spare byte, five lamps, six keys.
const char* const kKeyboard =
    "05 01 09 06 A1 01 05 07 19 E0 29 E7 15 00 25 01 75 01 95 08 81 02 95 01 75 08 81 01 95 05 75 01 05 08 19 01 29 05 "
    "91 02 95 01 75 03 91 01 95 06 75 08 15 00 25 65 05 07 19 00 29 65 81 00 C0";

constexpr std::int64_t kLongestReport = 4096;

std::vector<std::uint8_t> VendorDescriptor(TableReader& table) {
    // Reports of one byte would be the report ID alone, and a device without input reports no system takes.
    const auto input = static_cast<std::size_t>(table.Integer("input_report_length", 9, 2, kLongestReport));
    std::vector<HidReportShape> shapes = {{HidReportKind::kInput, 0, input - 1}};
    const auto add = [&](const char* key, HidReportKind kind) {
        const auto length = static_cast<std::size_t>(table.Integer(key, 9, 0, kLongestReport));
        if (length > 1) {
            shapes.push_back({kind, 0, length - 1});
        }
    };
    add("output_report_length", HidReportKind::kOutput);
    add("feature_report_length", HidReportKind::kFeature);
    return VendorReportDescriptor(shapes);
}

std::vector<std::uint8_t> ReadDescriptor(TableReader& table) {
    const std::string text = table.Text("descriptor", "vendor");
    if (text == "vendor") {
        return VendorDescriptor(table);
    }
    auto bytes = ParseHex(text == "keyboard" ? kKeyboard : text);
    if (!bytes || !MeasureReportDescriptor(*bytes)) {
        table.Complain("descriptor",
                       "\"descriptor\" has to be \"vendor\", \"keyboard\" or a report descriptor in hexadecimal");
        return {};
    }
    return *bytes;
}

class HidPlan final : public DevicePlan {
  public:
    explicit HidPlan(HidSettings settings) : settings_(std::move(settings)) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        auto behaviour = std::make_unique<HidBehaviour>(settings_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override { HidBehaviour::Check(words); }
    std::string Summary() const override {
        return "takes reports, vendor " + HexText(settings_.identity.vendor) + ", product " +
               HexText(settings_.identity.product);
    }
    std::vector<std::string> Usage() const override { return HidBehaviour::Usage(); }

  private:
    HidSettings settings_;
};

}  // namespace

HidSettings ReadHidSettings(TableReader& table) {
    HidSettings settings;
    HidIdentity& identity = settings.identity;
    identity.vendor = static_cast<std::uint16_t>(table.Integer("vendor", {}, 0, 0xFFFF));
    identity.product = static_cast<std::uint16_t>(table.Integer("product", {}, 0, 0xFFFF));
    identity.version = static_cast<std::uint16_t>(table.Integer("version", identity.version, 0, 0xFFFF));
    identity.instance = table.Text("instance", "");
    identity.reportDescriptor = ReadDescriptor(table);
    settings.plugged = table.Flag("plugged", true);
    return settings;
}

std::unique_ptr<DevicePlan> ReadHidPlan(TableReader& table) {
    return std::make_unique<HidPlan>(ReadHidSettings(table));
}

}  // namespace quarlin::sim
