// SPDX-License-Identifier: Apache-2.0
#include "view/aim_identifier.h"

#include <gtest/gtest.h>
#include <cctype>
#include <string_view>
#include <vector>

namespace quarlin::qlctl {
namespace {

using namespace std::string_view_literals;

AimIdentifier Read(std::string_view text) {
    return ReadAimIdentifier(std::vector<std::uint8_t>(text.begin(), text.end()));
}

struct NameCase {
    const char* identifier;
    const char* name;
    const char* detail;
};

void PrintTo(const NameCase& row, std::ostream* stream) {
    *stream << row.identifier;
}

class AimName : public testing::TestWithParam<NameCase> {};

TEST_P(AimName, IsReadable) {
    const AimIdentifier read = Read(GetParam().identifier);
    EXPECT_EQ(read.text, GetParam().identifier);
    EXPECT_EQ(read.name, GetParam().name);
    EXPECT_EQ(read.detail, GetParam().detail);
}

std::string TestName(const testing::TestParamInfo<NameCase>& info) {
    std::string name = info.param.identifier;
    name.erase(0, 1);
    return (std::isupper(static_cast<unsigned char>(name.front())) != 0 ? "Upper" : "Lower") + name;
}

INSTANTIATE_TEST_SUITE_P(
    Codes, AimName,
    testing::Values(NameCase{"]A0", "Code 39", ""}, NameCase{"]A1", "Code 39", "check character verified"},
                    NameCase{"]A7", "Code 39", "full ASCII, check character verified and stripped"},
                    NameCase{"]B0", "Telepen", "full ASCII"}, NameCase{"]C0", "Code 128", ""},
                    NameCase{"]C1", "GS1-128", "FNC1 in the first position"},
                    NameCase{"]C4", "ISBT 128", "codes joined"}, NameCase{"]E0", "EAN-13, UPC-A or UPC-E", ""},
                    NameCase{"]E3", "EAN-13, UPC-A or UPC-E", "with add-on"}, NameCase{"]E4", "EAN-8", ""},
                    NameCase{"]F0", "Codabar", ""}, NameCase{"]G0", "Code 93", ""},
                    NameCase{"]H0", "Code 11", "check character verified"}, NameCase{"]I0", "Interleaved 2 of 5", ""},
                    NameCase{"]L0", "PDF417", ""}, NameCase{"]L5", "MicroPDF417", "as Code 128, without FNC1"},
                    NameCase{"]M0", "MSI", "check character verified"}, NameCase{"]O4", "Codablock F", ""},
                    NameCase{"]O6", "Codablock A", ""}, NameCase{"]P0", "Plessey", ""}, NameCase{"]Q1", "QR Code", ""},
                    NameCase{"]Q3", "GS1 QR Code", "FNC1 in the first position"},
                    NameCase{"]R0", "Straight 2 of 5", ""}, NameCase{"]S0", "Straight 2 of 5", ""},
                    NameCase{"]U1", "MaxiCode", "mode 2 or 3"}, NameCase{"]X0", "Other bar code", ""},
                    NameCase{"]d1", "Data Matrix", "ECC 200"},
                    NameCase{"]d2", "GS1 DataMatrix", "FNC1 in the first position"}, NameCase{"]e0", "GS1 DataBar", ""},
                    NameCase{"]e1", "GS1 Composite", "the part behind a separator"}, NameCase{"]o2", "OCR-B", ""},
                    NameCase{"]z0", "Aztec Code", ""}, NameCase{"]zC", "Aztec Rune", ""}),
    TestName);

TEST(AimIdentifier, IsCutWhereTheEngineFillsItUp) {
    EXPECT_EQ(Read("]C0\0\0"sv).text, "]C0");
    EXPECT_EQ(Read("]E0  "sv).text, "]E0");
    EXPECT_EQ(Read("]d1 \0"sv).name, "Data Matrix");
    EXPECT_EQ(Read("\0\0\0\0\0"sv).text, "");
}

TEST(AimIdentifier, TellsUpperAndLowerCaseApart) {
    EXPECT_EQ(Read("]E0").name, "EAN-13, UPC-A or UPC-E");
    EXPECT_EQ(Read("]e0").name, "GS1 DataBar");
}

TEST(AimIdentifier, HasTheNameOfItsLetterWhenTheModifierIsUnknownOrMissing) {
    EXPECT_EQ(Read("]C9").name, "Code 128");
    EXPECT_EQ(Read("]C9").detail, "");
    EXPECT_EQ(Read("]C").name, "Code 128");
}

TEST(AimIdentifier, LooksAtNothingBehindTheModifier) {
    EXPECT_EQ(Read("]C1xy").name, "GS1-128");
    EXPECT_EQ(Read("]C1xy").text, "]C1xy");
}

TEST(AimIdentifier, HasNoNameWhenItIsNone) {
    EXPECT_EQ(Read("").name, "");
    EXPECT_EQ(Read("]").name, "");
    EXPECT_EQ(Read("]?0").name, "");
    EXPECT_EQ(Read("C0").name, "");
    EXPECT_EQ(Read("C0").text, "C0");
    EXPECT_EQ(Read("]\x1B\xFF").text, "]..");
}

}  // namespace
}  // namespace quarlin::qlctl
