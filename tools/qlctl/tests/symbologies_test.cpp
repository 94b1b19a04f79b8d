// SPDX-License-Identifier: Apache-2.0
#include "view/symbologies.h"

#include <gtest/gtest.h>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

namespace quarlin::qlctl {
namespace {

std::string ReadFile(const char* path) {
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

// "BARCODE_SYMBOLOGY_QR = 37,  /**< "QR" */".
TEST(Symbologies, AreThoseOfThePublicHeader) {
    const std::string header = ReadFile(QLCTL_BARCODE_HEADER);
    const std::regex enumerator("BARCODE_SYMBOLOGY_\\w+ = (\\d+),?\\s*/\\*\\*< \"([^\"]+)\"");
    size_t count = 0;
    for (std::sregex_iterator match(header.begin(), header.end(), enumerator), end; match != end; ++match, ++count) {
        ASSERT_LT(count, Symbologies().size());
        EXPECT_EQ(Symbologies()[count].value, std::stoul((*match)[1]));
        EXPECT_EQ(Symbologies()[count].name, (*match)[2].str());
    }
    EXPECT_EQ(count, 47U);
    EXPECT_EQ(Symbologies().size(), 47U);
}

TEST(FindSymbology, FindsEachByItsNameAndByItsValue) {
    std::set<const Symbology*> found;
    for (const Symbology& symbology : Symbologies()) {
        EXPECT_EQ(FindSymbology(symbology.name), &symbology) << symbology.name;
        EXPECT_EQ(FindSymbology(std::to_string(symbology.value)), &symbology) << symbology.name;
        found.insert(&symbology);
    }
    EXPECT_EQ(found.size(), 47U);
}

TEST(FindSymbology, TakesNamesInAnyCaseAndWithoutWhatIsHardToType) {
    EXPECT_EQ(FindSymbology("qr")->value, 37U);
    EXPECT_EQ(FindSymbology("micropdf417")->value, 36U);
    EXPECT_EQ(FindSymbology("ean-13")->value, 8U);
    EXPECT_EQ(FindSymbology("Ean.Ucc_Composite-Ab")->value, 18U);
    EXPECT_EQ(FindSymbology("code 128")->value, 2U);
}

TEST(FindSymbology, FindsNothingElse) {
    for (const char* const name : {"", "47", "-1", "code", "code1", "128", "99999999999", "QR2", "?"}) {
        EXPECT_EQ(FindSymbology(name), nullptr) << name;
    }
}

TEST(SymbologyTable, HasALineForEach) {
    const std::string table = SymbologyTable();
    EXPECT_EQ(table.find("Value  Name                   Remark\n"
                         "0      Codabar\n"
                         "1      Code11\n"
                         "2      Code128                Honeywell: "),
              0U)
        << table;
    EXPECT_NE(table.find("\n36     MicroPDF 417\n37     QR\n"), std::string::npos) << table;
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 48);
}

TEST(SymbologiesJson, ListsThemInOneObject) {
    const nlohmann::json list = nlohmann::json::parse(SymbologiesJson())["symbologies"];
    ASSERT_EQ(list.size(), 47U);
    EXPECT_EQ(list[9],
              nlohmann::json::parse(R"({"value": 9, "name": "EAN_128_Irregular", "remark": "Intermec only"})"));
    EXPECT_EQ(list[37]["remark"], nullptr);
}

}  // namespace
}  // namespace quarlin::qlctl
