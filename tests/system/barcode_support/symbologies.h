// SPDX-License-Identifier: Apache-2.0
// The symbologies and what the engines are sent for them.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace quarlin::test {

struct Symbology {
    std::int32_t value;
    const wchar_t* name;
    const char* intermecId;  // the parameter's two bytes
    // Menu commands, one after the other; none when the engine has none.
    std::vector<std::string> honeywellEnable;
    std::vector<std::string> honeywellDisable;
};

inline std::ostream& operator<<(std::ostream& out, const Symbology& symbology) {
    return out << symbology.value;
}

inline const std::vector<Symbology> kSymbologies = {
    {0, L"Codabar", "40 40", {"CBRENA1"}, {"CBRENA0"}},
    {1, L"Code11", "4A 40", {"C11ENA1"}, {"C11ENA0"}},
    {2, L"Code128", "43 40", {"128ENA1"}, {"128ENA0"}},
    {3, L"ISBT", "43 41", {"128ENA1"}, {"ISBENA0"}},
    {4, L"Code_128_FrenchCIP", "43 4C", {"128ENA1"}, {"128ENA0"}},
    {5, L"Code39", "42 40", {"C39ENA1"}, {"C39ENA0"}},
    {6, L"TLC39", "4E 40", {"T39ENA1"}, {"T39ENA0"}},
    {7, L"Code93", "41 40", {"C93ENA1"}, {"C93ENA0"}},
    {8, L"EAN_13", "4B 43", {"E13ENA1"}, {"E13ENA0"}},
    {9, L"EAN_128_Irregular", "43 43", {}, {}},
    {10, L"ISBN", "4B 44", {"E13ISB1"}, {"E13ISB0"}},
    {11, L"EAN_ISMN", "4B 61", {"DFMBK30099649999fe39fe37fe39fe30f7f503f501f44d01f100."}, {"DFMCA3"}},
    {12, L"EAN_ISSN", "4B 62", {"E13ISR1", "E13ISS1"}, {"E13ISR0", "E13ISS0"}},
    {13, L"EAN_8", "4B 42", {"EA8ENA1"}, {"EA8ENA0"}},
    {14, L"EAN_128", "43 42", {"GS1ENA1"}, {"GS1ENA0"}},
    {15, L"RSS_14", "4F 40", {"RSSENA1"}, {"RSSENA0"}},
    {16, L"RSS_Limited", "4F 41", {"RSLENA1"}, {"RSLENA0"}},
    {17, L"RSS_Expanded", "4F 42", {"RSEENA1"}, {"RSEENA0"}},
    {18, L"EAN.UCC Composite_AB", "56 40", {"COMENA1"}, {"COMENA0"}},
    {19, L"EAN.UCC Composite_C", "56 41", {"COMENA1"}, {"COMENA0"}},
    {20, L"EAN.UCC Composite_Lin", "56 44", {"COMENA0"}, {"COMENA0"}},
    {21, L"Interleaved2of5", "44 40", {"I25ENA1"}, {"I25ENA0"}},
    {22, L"Matrix", "45 40", {"X25ENA1"}, {"X25ENA0"}},
    {23, L"Standard2of5", "48 40", {"R25ENA1"}, {"R25ENA0"}},
    {24, L"MSI", "46 40", {"MSIENA1"}, {"MSIENA0"}},
    {25, L"Plessey", "47 40", {"PLSENA1"}, {"PLSENA0"}},
    {26, L"Telepen", "49 40", {"TELENA1"}, {"TELENA0"}},
    {27, L"UPC_A", "4B 40", {"UPBENA1"}, {"UPBENA0"}},
    {28, L"UPC_E", "4B 41", {"UPEEN01"}, {"UPEEN00"}},
    {29, L"UPC_E1", "4B 4C", {"UPEEN11"}, {"UPEEN10"}},
    {30, L"Aztec", "53 40", {"AZTENA1"}, {"AZTENA0"}},
    {31, L"CODABLOCK_A", "4D 40", {"CBAENA1"}, {"CBAENA0"}},
    {32, L"CODABLOCK_F", "4D 41", {"CBFENA1"}, {"CBFENA0"}},
    {33, L"DataMatrix", "54 40", {"IDMENA1"}, {"IDMENA0"}},
    {34, L"Maxicode", "52 40", {"MAXENA1"}, {"MAXENA0"}},
    {35, L"PDF417", "4C 40", {"PDFENA1"}, {"PDFENA0"}},
    {36, L"MicroPDF 417", "4C 42", {"MPDENA1"}, {"MPDENA0"}},
    {37, L"QR", "55 40", {"QRCENA1"}, {"QRCENA0"}},
    {38, L"AustralianPost", "34 40", {"POSTAL1"}, {"POSTAL0"}},
    {39, L"BPOCode", "32 40", {"POSTAL7", "RMMISC1"}, {"POSTAL0", "RMMISC0"}},
    {40, L"CanadaPost", "33 40", {"POSTAL30"}, {"POSTAL0"}},
    {41, L"Infomail", "39 40", {"POSTAL2"}, {"POSTAL0"}},
    {42, L"JapanPost", "35 40", {"POSTAL3"}, {"POSTAL0"}},
    {43, L"DutchPost", "36 40", {"POSTAL4"}, {"POSTAL0"}},
    {44, L"Planet", "31 40", {"POSTAL5"}, {"POSTAL0"}},
    {45, L"Postnet", "30 40", {"POSTAL6"}, {"POSTAL0"}},
    {46, L"SwedenPost", "37 40", {"POSTAL32"}, {"POSTAL0"}},
};

}  // namespace quarlin::test
