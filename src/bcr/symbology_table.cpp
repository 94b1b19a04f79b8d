// SPDX-License-Identifier: Apache-2.0
#include "bcr/symbology_table.h"

namespace quarlin::bcr {

namespace {

// A symbology that a Honeywell engine switches with two commands.
struct PairRow {
    std::int32_t value;
    HoneywellCommandPair enable;
    HoneywellCommandPair disable;
};

constexpr std::array kPairs{
    PairRow{BARCODE_SYMBOLOGY_EAN_ISSN, {{"E13ISR1", "E13ISS1"}}, {{"E13ISR0", "E13ISS0"}}},
    PairRow{BARCODE_SYMBOLOGY_BPO_CODE, {{"POSTAL7", "RMMISC1"}}, {{"POSTAL0", "RMMISC0"}}},
};

}  // namespace

constexpr std::array<SymbologyRow, kSymbologyCount + 1> kSymbologyTable{{
    {0, L"Codabar", {0x40, 0x40}},
    {1, L"Code11", {0x4A, 0x40}},
    {2, L"Code128", {0x43, 0x40}},
    {3, L"ISBT", {0x43, 0x41}},
    {4, L"Code_128_FrenchCIP", {0x43, 0x4C}},
    {5, L"Code39", {0x42, 0x40}},
    {6, L"TLC39", {0x4E, 0x40}},
    {7, L"Code93", {0x41, 0x40}},
    {8, L"EAN_13", {0x4B, 0x43}},
    {9, L"EAN_128_Irregular", {0x43, 0x43}},
    {10, L"ISBN", {0x4B, 0x44}},
    {11, L"EAN_ISMN", {0x4B, 0x61}},
    {12, L"EAN_ISSN", {0x4B, 0x62}},
    {13, L"EAN_8", {0x4B, 0x42}},
    {14, L"EAN_128", {0x43, 0x42}},
    {15, L"RSS_14", {0x4F, 0x40}},
    {16, L"RSS_Limited", {0x4F, 0x41}},
    {17, L"RSS_Expanded", {0x4F, 0x42}},
    {18, L"EAN.UCC Composite_AB", {0x56, 0x40}},
    {19, L"EAN.UCC Composite_C", {0x56, 0x41}},
    {20, L"EAN.UCC Composite_Lin", {0x56, 0x44}},
    {21, L"Interleaved2of5", {0x44, 0x40}},
    {22, L"Matrix", {0x45, 0x40}},
    {23, L"Standard2of5", {0x48, 0x40}},
    {24, L"MSI", {0x46, 0x40}},
    {25, L"Plessey", {0x47, 0x40}},
    {26, L"Telepen", {0x49, 0x40}},
    {27, L"UPC_A", {0x4B, 0x40}},
    {28, L"UPC_E", {0x4B, 0x41}},
    {29, L"UPC_E1", {0x4B, 0x4C}},
    {30, L"Aztec", {0x53, 0x40}},
    {31, L"CODABLOCK_A", {0x4D, 0x40}},
    {32, L"CODABLOCK_F", {0x4D, 0x41}},
    {33, L"DataMatrix", {0x54, 0x40}},
    {34, L"Maxicode", {0x52, 0x40}},
    {35, L"PDF417", {0x4C, 0x40}},
    {36, L"MicroPDF 417", {0x4C, 0x42}},
    {37, L"QR", {0x55, 0x40}},
    {38, L"AustralianPost", {0x34, 0x40}},
    {39, L"BPOCode", {0x32, 0x40}},
    {40, L"CanadaPost", {0x33, 0x40}},
    {41, L"Infomail", {0x39, 0x40}},
    {42, L"JapanPost", {0x35, 0x40}},
    {43, L"DutchPost", {0x36, 0x40}},
    {44, L"Planet", {0x31, 0x40}},
    {45, L"Postnet", {0x30, 0x40}},
    {46, L"SwedenPost", {0x37, 0x40}},
    {-1, nullptr, {}},
}};

// What looks odd here is what programs and engines rely on: ISBT and French CIP are switched on with Code 128, enabling
// the linear composite disables composites, UPC-A has one prefix for switching and another for its default, the postal
// codes can only be disabled together, and Plessey's default has no digit.
constexpr std::array<HoneywellRow, kSymbologyCount + 1> kHoneywellTable{{
    {0, "CBRENA1", "CBRENA0", "CBRDFT"},
    {1, "C11ENA1", "C11ENA0", "C11DFT"},
    {2, "128ENA1", "128ENA0", "128DFT"},
    {3, "128ENA1", "ISBENA0", "ISBENA0"},
    {4, "128ENA1", "128ENA0", "128DFT"},
    {5, "C39ENA1", "C39ENA0", "C39DFT"},
    {6, "T39ENA1", "T39ENA0", "T39ENA0"},
    {7, "C93ENA1", "C93ENA0", "C93DFT"},
    {8, "E13ENA1", "E13ENA0", "E13DFT"},
    {9, "", "", ""},
    {10, "E13ISB1", "E13ISB0", "E13ISB0"},
    {11, "DFMBK30099649999fe39fe37fe39fe30f7f503f501f44d01f100.", "DFMCA3", "DFMCA3"},
    {12, "", "", ""},
    {13, "EA8ENA1", "EA8ENA0", "EA8DFT"},
    {14, "GS1ENA1", "GS1ENA0", "GS1DFT"},
    {15, "RSSENA1", "RSSENA0", "RSSDFT"},
    {16, "RSLENA1", "RSLENA0", "RSLDFT"},
    {17, "RSEENA1", "RSEENA0", "RSEDFT"},
    {18, "COMENA1", "COMENA0", "COMENA0"},
    {19, "COMENA1", "COMENA0", "COMENA0"},
    {20, "COMENA0", "COMENA0", "COMENA0"},
    {21, "I25ENA1", "I25ENA0", "I25DFT"},
    {22, "X25ENA1", "X25ENA0", "X25DFT"},
    {23, "R25ENA1", "R25ENA0", "R25DFT"},
    {24, "MSIENA1", "MSIENA0", "MSIDFT"},
    {25, "PLSENA1", "PLSENA0", "PLSENA"},
    {26, "TELENA1", "TELENA0", "TELDFT"},
    {27, "UPBENA1", "UPBENA0", "UPADFT"},
    {28, "UPEEN01", "UPEEN00", "UPEDFT"},
    {29, "UPEEN11", "UPEEN10", "UPEEN10"},
    {30, "AZTENA1", "AZTENA0", "AZTDFT"},
    {31, "CBAENA1", "CBAENA0", "CBADFT"},
    {32, "CBFENA1", "CBFENA0", "CBFDFT"},
    {33, "IDMENA1", "IDMENA0", "IDMDFT"},
    {34, "MAXENA1", "MAXENA0", "MAXDFT"},
    {35, "PDFENA1", "PDFENA0", "PDFDFT"},
    {36, "MPDENA1", "MPDENA0", "MPDDFT"},
    {37, "QRCENA1", "QRCENA0", "QRCDFT"},
    {38, "POSTAL1", "POSTAL0", "POSTAL0"},
    {39, "", "", ""},
    {40, "POSTAL30", "POSTAL0", "POSTAL0"},
    {41, "POSTAL2", "POSTAL0", "POSTAL0"},
    {42, "POSTAL3", "POSTAL0", "POSTAL0"},
    {43, "POSTAL4", "POSTAL0", "POSTAL0"},
    {44, "POSTAL5", "POSTAL0", "POSTAL0"},
    {45, "POSTAL6", "POSTAL0", "POSTAL0"},
    {46, "POSTAL32", "POSTAL0", "POSTAL0"},
    {-1, nullptr, nullptr, nullptr},
}};

std::optional<std::int32_t> FindSymbologyByName(std::wstring_view name) {
    for (const SymbologyRow* row = kSymbologyTable.data(); row->name != nullptr; ++row) {
        if (name == row->name) {
            return row->value;
        }
    }
    return std::nullopt;
}

const SymbologyRow* FindSymbology(std::int32_t value) {
    for (const SymbologyRow* row = kSymbologyTable.data(); row->name != nullptr; ++row) {
        if (row->value == value) {
            return row;
        }
    }
    return nullptr;
}

const HoneywellRow* FindHoneywellSymbology(std::int32_t value) {
    for (const HoneywellRow* row = kHoneywellTable.data(); row->enable != nullptr; ++row) {
        if (row->value == value) {
            return row;
        }
    }
    return nullptr;
}

std::optional<HoneywellCommandPair> FindHoneywellPair(std::int32_t value, bool enable) {
    for (const PairRow& row : kPairs) {
        if (row.value == value) {
            return enable ? row.enable : row.disable;
        }
    }
    return std::nullopt;
}

}  // namespace quarlin::bcr
