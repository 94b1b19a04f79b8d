// SPDX-License-Identifier: Apache-2.0
#include "view/barcode_report.h"

#include "view/aim_identifier.h"
#include "view/byte_text.h"
#include "view/error_json.h"
#include "view/hex.h"
#include "view/json_line.h"
#include "view/text.h"

#include <algorithm>
#include <array>
#include <span>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::ordered_json;

constexpr size_t kBytesPerLine = 32;
constexpr size_t kLabelWidth = 8;
constexpr std::array kModeNames{"none", "replace", "insert", "delete"};

std::string TextOf(const BarcodeScan& scan) {
    return {scan.data.begin(), scan.data.end()};
}

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

// "Code 39 (]A1), check character verified".
std::string SymbologyOf(const BarcodeScan& scan) {
    const AimIdentifier identifier = ReadAimIdentifier(scan.symbologyId);
    if (identifier.text.empty()) {
        return "no symbology identifier";
    }
    const std::string name = identifier.name.empty() ? "unknown symbology" : identifier.name;
    return name + " (" + identifier.text + ")" + (identifier.detail.empty() ? "" : ", " + identifier.detail);
}

std::string Labelled(std::string_view label, std::string_view text) {
    return "  " + PadRight(label, kLabelWidth).append(text) + '\n';
}

std::string BytesOf(const BarcodeScan& scan) {
    std::string text;
    for (std::span<const std::uint8_t> rest = scan.data; !rest.empty();) {
        const auto line = rest.first(std::min(rest.size(), kBytesPerLine));
        text += Labelled(text.empty() ? "Bytes" : "", Hex(line));
        rest = rest.subspan(line.size());
    }
    return text;
}

Json ScanObject(const BarcodeScan& scan) {
    const AimIdentifier identifier = ReadAimIdentifier(scan.symbologyId);
    return {
        {"device", scan.device},
        {"text", TextOf(scan)},
        {"data_hex", Hex(scan.data)},
        {"symbology_id", TextOrNull(identifier.text)},
        {"symbology_id_hex", TextOrNull(Hex(scan.symbologyId))},
        {"symbology", TextOrNull(identifier.name)},
        {"symbology_detail", TextOrNull(identifier.detail)},
    };
}

Json RuleObject(const EditRule& rule) {
    return {
        {"mode", kModeNames.at(rule.mode)},
        {"target", rule.target},
        {"content", rule.content},
        {"start", rule.start},
        {"end", rule.end},
    };
}

}  // namespace

std::string ScannerTable(const std::vector<BarcodeScanner>& scanners) {
    if (scanners.empty()) {
        return "no barcode scanner is there\n";
    }
    size_t width = 4;
    for (const BarcodeScanner& scanner : scanners) {
        width = std::max(width, scanner.name.size());
    }
    std::string table = "Index  " + PadRight("Name", width + 2) + "Kind\n";
    for (const BarcodeScanner& scanner : scanners) {
        table += PadRight(std::to_string(scanner.index), 7) + PadRight(Printable(scanner.name), width + 2) +
                 (scanner.isOwn ? "built in" : "external") + '\n';
    }
    return table;
}

std::string ScannersJson(const std::vector<BarcodeScanner>& scanners) {
    Json list = Json::array();
    for (const BarcodeScanner& scanner : scanners) {
        list.push_back({
            {"index", scanner.index},
            {"name", scanner.name},
            {"built_in", scanner.isOwn},
            {"link_kind", scanner.linkKind},
            {"link_flag", scanner.linkFlag},
        });
    }
    return JsonLine({{"scanners", std::move(list)}});
}

std::string ScanText(const BarcodeScan& scan, int number) {
    return "Scan " + std::to_string(number) + "  " + SymbologyOf(scan) + '\n' +
           Labelled("Text", Escaped(TextOf(scan))) + BytesOf(scan);
}

std::string ScanJson(const BarcodeScan& scan, int number) {
    Json object{{"scan", number}};
    object.update(ScanObject(scan));
    return JsonLine(object);
}

std::string EditText(const EditRule& rule, const BarcodeScan& before, const BarcodeScan& after) {
    return Row("Edit", RuleText(rule)) + Row("Symbology", SymbologyOf(before)) +
           Row("Before", Escaped(TextOf(before))) + Row("After", Escaped(TextOf(after)));
}

std::string EditJson(const EditRule& rule, const BarcodeScan& before, const BarcodeScan& after) {
    return JsonLine({{"edit", RuleObject(rule)}, {"before", ScanObject(before)}, {"after", ScanObject(after)}});
}

std::string ChangesText(const std::vector<SymbologyChange>& changes, bool enable) {
    std::string text;
    for (const SymbologyChange& change : changes) {
        text += PadRight(change.symbology->name, 23) +
                (change.error ? Describe(*change.error)
                 : enable     ? "enabled"
                              : "disabled") +
                '\n';
    }
    return text;
}

std::string ChangesJson(const std::vector<SymbologyChange>& changes, bool enable) {
    Json list = Json::array();
    for (const SymbologyChange& change : changes) {
        list.push_back({
            {"value", change.symbology->value},
            {"name", change.symbology->name},
            {"enabled", change.error ? Json(nullptr) : Json(enable)},
            {"error", change.error ? ErrorJson(*change.error) : Json(nullptr)},
        });
    }
    return JsonLine({{"symbologies", std::move(list)}});
}

std::string FirmwareText(const ScannerFirmware& firmware) {
    return Row("Scanner", Printable(firmware.scanner)) +
           Row("Firmware", firmware.version.empty() ? "(empty)" : Escaped(firmware.version));
}

std::string FirmwareJson(const ScannerFirmware& firmware) {
    return JsonLine({{"scanner", firmware.scanner}, {"firmware", firmware.version}});
}

std::string TriggerText(const TriggerState& state) {
    return Row("Hardware", state.isHardwareOn ? "on" : "off") +
           Row("Mode", state.mode ? "set to " + std::to_string(*state.mode) : "the scanner does not tell");
}

std::string TriggerJson(const TriggerState& state) {
    return JsonLine({
        {"hardware_trigger", state.isHardwareOn},
        {"mode_set", state.mode ? Json(*state.mode) : Json(nullptr)},
    });
}

}  // namespace quarlin::qlctl
