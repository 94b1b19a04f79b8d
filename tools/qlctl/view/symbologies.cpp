// SPDX-License-Identifier: Apache-2.0
#include "view/symbologies.h"

#include "view/json_line.h"
#include "view/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quarlin::qlctl {
namespace {

constexpr const char* kPostal = "Honeywell: disabling one postal code disables them all";

constexpr std::array kSymbologies{
    Symbology{0, "Codabar", ""},
    Symbology{1, "Code11", ""},
    Symbology{2, "Code128", "Honeywell: switches Code_128_FrenchCIP, too"},
    Symbology{3, "ISBT", "Intermec: enabling it disables Code128 and EAN_128; Honeywell: enabling it enables Code128"},
    Symbology{4, "Code_128_FrenchCIP", "Honeywell: switches Code128"},
    Symbology{5, "Code39", ""},
    Symbology{6, "TLC39", ""},
    Symbology{7, "Code93", ""},
    Symbology{8, "EAN_13", ""},
    Symbology{9, "EAN_128_Irregular", "Intermec only"},
    Symbology{10, "ISBN", ""},
    Symbology{11, "EAN_ISMN", ""},
    Symbology{12, "EAN_ISSN", ""},
    Symbology{13, "EAN_8", ""},
    Symbology{14, "EAN_128", ""},
    Symbology{15, "RSS_14", ""},
    Symbology{16, "RSS_Limited", ""},
    Symbology{17, "RSS_Expanded", ""},
    Symbology{18, "EAN.UCC Composite_AB", "Honeywell: the same switch as EAN.UCC Composite_C"},
    Symbology{19, "EAN.UCC Composite_C", "Honeywell: the same switch as EAN.UCC Composite_AB"},
    Symbology{20, "EAN.UCC Composite_Lin", "Honeywell: enabling it disables composites, too"},
    Symbology{21, "Interleaved2of5", ""},
    Symbology{22, "Matrix", "Matrix 2 of 5"},
    Symbology{23, "Standard2of5", ""},
    Symbology{24, "MSI", ""},
    Symbology{25, "Plessey", ""},
    Symbology{26, "Telepen", ""},
    Symbology{27, "UPC_A", ""},
    Symbology{28, "UPC_E", ""},
    Symbology{29, "UPC_E1", ""},
    Symbology{30, "Aztec", ""},
    Symbology{31, "CODABLOCK_A", ""},
    Symbology{32, "CODABLOCK_F", ""},
    Symbology{33, "DataMatrix", ""},
    Symbology{34, "Maxicode", ""},
    Symbology{35, "PDF417", ""},
    Symbology{36, "MicroPDF 417", ""},
    Symbology{37, "QR", ""},
    Symbology{38, "AustralianPost", kPostal},
    Symbology{39, "BPOCode", kPostal},
    Symbology{40, "CanadaPost", kPostal},
    Symbology{41, "Infomail", kPostal},
    Symbology{42, "JapanPost", kPostal},
    Symbology{43, "DutchPost", kPostal},
    Symbology{44, "Planet", kPostal},
    Symbology{45, "Postnet", kPostal},
    Symbology{46, "SwedenPost", kPostal},
};

// Letters and digits alone, in lower case.
std::string Folded(std::string_view name) {
    std::string folded;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z') {
            folded += static_cast<char>(c - 'A' + 'a');
        } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            folded += c;
        }
    }
    return folded;
}

std::optional<unsigned> Number(std::string_view text) {
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

}  // namespace

std::span<const Symbology> Symbologies() {
    return kSymbologies;
}

const Symbology* FindSymbology(std::string_view nameOrValue) {
    const auto value = Number(nameOrValue);
    const std::string folded = Folded(nameOrValue);
    const auto found = std::ranges::find_if(kSymbologies, [&value, &folded](const Symbology& symbology) {
        return value ? symbology.value == *value : Folded(symbology.name) == folded;
    });
    return found == kSymbologies.end() ? nullptr : &*found;
}

std::string SymbologyTable() {
    constexpr size_t kValueWidth = 7;
    constexpr size_t kNameWidth = 23;
    std::string table = PadRight("Value", kValueWidth) + PadRight("Name", kNameWidth) + "Remark\n";
    for (const Symbology& symbology : kSymbologies) {
        const std::string value = PadRight(std::to_string(symbology.value), kValueWidth);
        table += *symbology.remark == '\0' ? value + symbology.name
                                           : value + PadRight(symbology.name, kNameWidth) + symbology.remark;
        table += '\n';
    }
    return table;
}

std::string SymbologiesJson() {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Symbology& symbology : kSymbologies) {
        list.push_back({
            {"value", symbology.value},
            {"name", symbology.name},
            {"remark", *symbology.remark == '\0' ? nlohmann::ordered_json(nullptr) : symbology.remark},
        });
    }
    return JsonLine({{"symbologies", std::move(list)}});
}

}  // namespace quarlin::qlctl
