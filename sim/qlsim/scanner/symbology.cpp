// SPDX-License-Identifier: Apache-2.0
#include "scanner/symbology.h"

#include <array>

#include "core/command.h"

namespace quarlin::sim::scanner {
namespace {

// Engines of one family share some switches: reading one sort of code is then reading the other.
constexpr std::array<Symbology, kSymbologies> kTable = {{
    {"Codabar", "]F0", 0x4040, "CBRENA1", "CBRENA0"},
    {"Code11", "]H0", 0x4A40, "C11ENA1", "C11ENA0"},
    {"Code128", "]C0", 0x4340, "128ENA1", "128ENA0"},
    {"ISBT", "]C4", 0x4341, "128ENA1", "ISBENA0"},
    {"Code_128_FrenchCIP", "]C0", 0x434C, "128ENA1", "128ENA0"},
    {"Code39", "]A0", 0x4240, "C39ENA1", "C39ENA0"},
    {"TLC39", "]L2", 0x4E40, "T39ENA1", "T39ENA0"},
    {"Code93", "]G0", 0x4140, "C93ENA1", "C93ENA0"},
    {"EAN_13", "]E0", 0x4B43, "E13ENA1", "E13ENA0"},
    {"EAN_128_Irregular", "]C1", 0x4343, "", ""},
    {"ISBN", "]E0", 0x4B44, "E13ISB1", "E13ISB0"},
    {"EAN_ISMN", "]E0", 0x4B61, "DFMBK30099649999fe39fe37fe39fe30f7f503f501f44d01f100.", "DFMCA3"},
    {"EAN_ISSN", "]E0", 0x4B62, "E13ISS1", "E13ISS0"},
    {"EAN_8", "]E4", 0x4B42, "EA8ENA1", "EA8ENA0"},
    {"EAN_128", "]C1", 0x4342, "GS1ENA1", "GS1ENA0"},
    {"RSS_14", "]e0", 0x4F40, "RSSENA1", "RSSENA0"},
    {"RSS_Limited", "]e0", 0x4F41, "RSLENA1", "RSLENA0"},
    {"RSS_Expanded", "]e0", 0x4F42, "RSEENA1", "RSEENA0"},
    {"EAN.UCC Composite_AB", "]e1", 0x5640, "COMENA1", "COMENA0"},
    {"EAN.UCC Composite_C", "]e2", 0x5641, "COMENA1", "COMENA0"},
    {"EAN.UCC Composite_Lin", "]e0", 0x5644, "COMENA1", "COMENA0"},
    {"Interleaved2of5", "]I0", 0x4440, "I25ENA1", "I25ENA0"},
    {"Matrix", "]X0", 0x4540, "X25ENA1", "X25ENA0"},
    {"Standard2of5", "]S0", 0x4840, "R25ENA1", "R25ENA0"},
    {"MSI", "]M0", 0x4640, "MSIENA1", "MSIENA0"},
    {"Plessey", "]P0", 0x4740, "PLSENA1", "PLSENA0"},
    {"Telepen", "]B0", 0x4940, "TELENA1", "TELENA0"},
    {"UPC_A", "]E0", 0x4B40, "UPBENA1", "UPBENA0"},
    {"UPC_E", "]E0", 0x4B41, "UPEEN01", "UPEEN00"},
    {"UPC_E1", "]X0", 0x4B4C, "UPEEN11", "UPEEN10"},
    {"Aztec", "]z0", 0x5340, "AZTENA1", "AZTENA0"},
    {"CODABLOCK_A", "]O6", 0x4D40, "CBAENA1", "CBAENA0"},
    {"CODABLOCK_F", "]O4", 0x4D41, "CBFENA1", "CBFENA0"},
    {"DataMatrix", "]d1", 0x5440, "IDMENA1", "IDMENA0"},
    {"Maxicode", "]U0", 0x5240, "MAXENA1", "MAXENA0"},
    {"PDF417", "]L0", 0x4C40, "PDFENA1", "PDFENA0"},
    {"MicroPDF 417", "]L3", 0x4C42, "MPDENA1", "MPDENA0"},
    {"QR", "]Q1", 0x5540, "QRCENA1", "QRCENA0"},
    {"AustralianPost", "]X0", 0x3440, "POSTAL1", "POSTAL0"},
    {"BPOCode", "]X0", 0x3240, "POSTAL7", "POSTAL0"},
    {"CanadaPost", "]X0", 0x3340, "POSTAL30", "POSTAL0"},
    {"Infomail", "]X0", 0x3940, "POSTAL2", "POSTAL0"},
    {"JapanPost", "]X0", 0x3540, "POSTAL3", "POSTAL0"},
    {"DutchPost", "]X0", 0x3640, "POSTAL4", "POSTAL0"},
    {"Planet", "]X0", 0x3140, "POSTAL5", "POSTAL0"},
    {"Postnet", "]X0", 0x3040, "POSTAL6", "POSTAL0"},
    {"SwedenPost", "]X0", 0x3740, "POSTAL32", "POSTAL0"},
}};

}  // namespace

std::span<const Symbology, kSymbologies> Symbologies() {
    return kTable;
}

std::size_t SymbologyArgument(const std::string& name) {
    std::vector<std::string> known;
    for (std::size_t i = 0; i < kSymbologies; ++i) {
        if (kTable[i].name == name) {
            return i;
        }
        known.emplace_back(kTable[i].name);
    }
    throw CommandError("there is no symbology \"" + name + "\"" + Suggestion(name, known));
}

const std::vector<std::string>& UsualSymbologies() {
    static const std::vector<std::string> usual = {"Codabar", "Code39", "Code128",        "EAN_13", "EAN_8",
                                                   "EAN_128", "UPC_A",  "UPC_E",          "Aztec",  "DataMatrix",
                                                   "PDF417",  "QR",     "Interleaved2of5"};
    return usual;
}

}  // namespace quarlin::sim::scanner
