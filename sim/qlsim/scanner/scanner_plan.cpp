// SPDX-License-Identifier: Apache-2.0
#include "scanner/scanner_plan.h"

#include "core/table_reader.h"
#include "scanner/engine_behaviour.h"
#include "scanner/honeywell_engine.h"
#include "scanner/intermec_engine.h"

namespace quarlin::sim::scanner {
namespace {

// Fits: the records of both families have room for as much.
constexpr std::size_t kLongestFirmware = 1024;
constexpr std::size_t kLongestPortName = 200;
constexpr std::int64_t kProductAtFirst = 0x0801;
constexpr std::int64_t kOtherProduct = 0x0809;

SymbologySet ReadSymbologies(TableReader& table) {
    SymbologySet set;
    for (const std::string& name : table.Texts("symbologies", UsualSymbologies())) {
        if (name == "all") {
            return set.set();
        }
        try {
            set.set(SymbologyArgument(name));
        } catch (const CommandError& error) {
            table.Complain("symbologies", error.what());
        }
    }
    return set;
}

void ReadEngine(TableReader& table, EngineSettings& settings, const char* firmware) {
    settings.plugged = table.Flag("plugged", true);
    settings.hardwareTrigger = table.Flag("hardware_trigger", true);
    settings.firmware = table.Text("firmware", firmware);
    if (settings.firmware.size() > kLongestFirmware) {
        table.Complain("firmware", "\"firmware\" has to be a text of at most 1024 bytes");
    }
    settings.symbologies = ReadSymbologies(table);
}

Link ReadLink(TableReader& table) {
    const std::string link = table.Text("link", "built-in");
    if (link == "usb") {
        return Link::kUsb;
    }
    if (link == "serial") {
        return Link::kSerial;
    }
    if (link != "built-in") {
        table.Complain("link", "\"link\" has to be \"built-in\", \"usb\" or \"serial\"");
    }
    return Link::kBuiltIn;
}

template <typename Engine>
class EnginePlan final : public DevicePlan {
  public:
    explicit EnginePlan(typename Engine::Settings settings) : settings_(std::move(settings)) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        auto behaviour = std::make_unique<EngineBehaviour<Engine>>(settings_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override { ParseEngineCommand(Engine::kFamily, words); }
    std::string Summary() const override { return Engine::Summary(settings_); }
    std::vector<std::string> Usage() const override { return EngineCommandUsage(Engine::kFamily); }

  private:
    typename Engine::Settings settings_;
};

}  // namespace

IntermecSettings ReadIntermecSettings(TableReader& table) {
    IntermecSettings settings;
    ReadEngine(table, settings, "EA30 3.21.007");
    settings.link = ReadLink(table);
    if (settings.link == Link::kUsb) {
        const std::int64_t product = table.Integer("product", kProductAtFirst, 0, 0xFFFF);
        if (product != kProductAtFirst && product != kOtherProduct) {
            table.Complain("product", "\"product\" has to be 0x0801 or 0x0809");
        }
        settings.product = static_cast<std::uint16_t>(product);
        settings.instance = table.Text("instance", "");
    } else if (settings.link == Link::kSerial) {
        const std::int64_t port = table.Integer("port", 9, 1, 256);
        settings.portName = table.Text("port_name", "Intermec VID_067E scanner (COM" + std::to_string(port) + ")");
        if (settings.portName.size() > kLongestPortName) {
            table.Complain("port_name", "\"port_name\" has to be a text of at most 200 bytes");
        }
    }
    settings.dataMode = static_cast<std::uint8_t>(table.Integer("data_mode", settings.dataMode, 0, 255));
    return settings;
}

HoneywellSettings ReadHoneywellSettings(TableReader& table) {
    HoneywellSettings settings;
    ReadEngine(table, settings, "N6603 CE000064AAA");
    settings.devices = table.Texts("devices", {"N6603 on USB 1"});
    bool fit = settings.devices.size() <= HoneywellState::kDevices;
    for (const std::string& name : settings.devices) {
        fit = fit && name.size() < HoneywellDevice::kRoom;
    }
    if (!fit) {
        table.Complain("devices", "\"devices\" has to be a list of at most 8 names of at most 1023 bytes");
        settings.devices.clear();
    }
    return settings;
}

std::unique_ptr<DevicePlan> ReadIntermecPlan(TableReader& table) {
    return std::make_unique<EnginePlan<IntermecEngine>>(ReadIntermecSettings(table));
}

std::unique_ptr<DevicePlan> ReadHoneywellPlan(TableReader& table) {
    return std::make_unique<EnginePlan<HoneywellEngine>>(ReadHoneywellSettings(table));
}

}  // namespace quarlin::sim::scanner
