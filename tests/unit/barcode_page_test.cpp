// SPDX-License-Identifier: Apache-2.0
// The tables of docs/barcode.md against the library that they describe.
#include "bcr/scan_text.h"
#include "bcr/scanner_choice.h"
#include "bcr/symbology_table.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace quarlin::bcr {
namespace {

using Row = std::vector<std::string>;

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The cells between the first and the last bar of a line.
Row CellsOf(const std::string& line) {
    Row cells;
    for (std::size_t at = 1; at < line.size();) {
        const std::size_t end = std::min(line.find('|', at), line.size());
        cells.push_back(Trimmed(line.substr(at, end - at)));
        at = end + 1;
    }
    return cells;
}

// The rows of the table whose heading begins with these words.
std::vector<Row> TableOf(const std::string& heading) {
    std::ifstream page(QUARLIN_BARCODE_PAGE);
    EXPECT_TRUE(page.is_open()) << QUARLIN_BARCODE_PAGE;
    std::vector<Row> rows;
    bool isInside = false;
    for (std::string line; std::getline(page, line);) {
        std::erase(line, '\r');
        if (line.rfind(heading, 0) == 0) {
            isInside = true;
        } else if (isInside && line.rfind("|---", 0) != 0) {
            if (line.empty() || line.front() != '|') {
                break;
            }
            rows.push_back(CellsOf(line));
        }
    }
    return rows;
}

// What stands between the first two backticks; nothing when there are none.
std::string Quoted(const std::string& cell) {
    const std::size_t begin = cell.find('`');
    return begin == std::string::npos ? "" : cell.substr(begin + 1, cell.find('`', begin + 1) - begin - 1);
}

// All of a cell's quoted texts.
std::vector<std::string> AllQuoted(std::string cell) {
    std::vector<std::string> texts;
    while (cell.find('`') != std::string::npos) {
        texts.push_back(Quoted(cell));
        cell.erase(0, cell.find('`', cell.find('`') + 1) + 1);
    }
    return texts;
}

TEST(BarcodePage, ShowsWhatEditingDoes) {
    const std::map<std::string, std::uint32_t> modes{
        {"replace", QLBCR_EDIT_REPLACE}, {"insert", QLBCR_EDIT_INSERT}, {"delete", QLBCR_EDIT_DELETE}};
    const std::vector<Row> rows = TableOf("| mode | `strTarget`");
    EXPECT_EQ(rows.size(), 18U);
    for (const Row& row : rows) {
        ASSERT_GE(row.size(), 7U);
        const EditSetting setting{modes.at(row[0]), Quoted(row[1]), Quoted(row[2]), std::stoi(row[3]),
                                  std::stoi(row[4])};
        EXPECT_EQ(Edit(Quoted(row[5]), setting), Quoted(row[6])) << row[0] << " in " << row[5];
    }
}

TEST(BarcodePage, ShowsWherePrefixAndSuffixGo) {
    ExtendedData scan;
    scan.fields = {"A1", "B2", "1234", "C3", "]C0"};
    const std::vector<Row> rows = TableOf("| `asTop` of the prefix");
    EXPECT_EQ(rows.size(), 4U);
    for (const Row& row : rows) {
        ASSERT_EQ(row.size(), 4U);
        const auto flag = [&row](std::size_t cell) { return static_cast<std::uint8_t>(std::stoi(row[cell])); };
        const TextSettings settings{{"[", flag(0)}, {"]", flag(1)}, {}};
        EXPECT_EQ(IntermecText(scan, settings), Quoted(row[2]));
        EXPECT_EQ(HoneywellText("1234", settings), Quoted(row[3]));
    }
}

std::vector<std::string> HoneywellCommands(std::int32_t symbology, bool enable) {
    if (const auto pair = FindHoneywellPair(symbology, enable)) {
        return {pair->commands.begin(), pair->commands.end()};
    }
    const HoneywellRow* const row = FindHoneywellSymbology(symbology);
    const std::string command = enable ? row->enable : row->disable;
    return command.empty() ? std::vector<std::string>() : std::vector<std::string>{command};
}

TEST(BarcodePage, ListsTheSymbologiesWithTheirCommands) {
    const std::vector<Row> rows = TableOf("| value | name |");
    ASSERT_EQ(rows.size(), kSymbologyCount);
    for (std::size_t at = 0; at < rows.size(); ++at) {
        const Row& row = rows[at];
        ASSERT_EQ(row.size(), 5U);
        const SymbologyRow& symbology = kSymbologyTable[at];
        EXPECT_EQ(std::stoi(row[0]), symbology.value);
        const std::string name = Quoted(row[1]);
        EXPECT_EQ(std::wstring(name.begin(), name.end()), symbology.name);
        EXPECT_EQ(std::stoi(row[2].substr(0, 2), nullptr, 16), symbology.intermecId[0]) << name;
        EXPECT_EQ(std::stoi(row[2].substr(3), nullptr, 16), symbology.intermecId[1]) << name;
        EXPECT_EQ(AllQuoted(row[3]), HoneywellCommands(symbology.value, true)) << name;
        EXPECT_EQ(AllQuoted(row[4]), HoneywellCommands(symbology.value, false)) << name;
    }
}

TEST(BarcodePage, ListsTheScannersThatMachinesHave) {
    struct Answer {
        ScannerHardware hardware;
        const char* words;
    };
    constexpr std::array kAnswers{Answer{ScannerHardware::kMiniDb, "device 15"},
                                  Answer{ScannerHardware::kEngine, "device 14"},
                                  Answer{ScannerHardware::kIntermecBuiltIn, "device 1"}};
    const std::vector<Row> rows = TableOf("| available | product name");
    EXPECT_EQ(rows.size(), 6U);
    int known = 0;
    for (const Row& row : rows) {
        ASSERT_EQ(row.size(), 5U);
        const auto answer = std::ranges::find(kAnswers, row[0], &Answer::words);
        if (answer == kAnswers.end()) {
            continue;
        }
        ++known;
        std::vector<std::string> beginnings = AllQuoted(row[1]);
        if (beginnings.empty()) {
            beginnings = {"Desk"};
        }
        for (const std::string& beginning : beginnings) {
            const auto choice =
                ChooseScanner(ModelOf(std::wstring(beginning.begin(), beginning.end())), answer->hardware);
            EXPECT_EQ(choice ? std::string(choice->info.deviceName) : "", Quoted(row[2]))
                << row[0] << ", " << beginning;
        }
    }
    EXPECT_EQ(known, 5);
    EXPECT_EQ(ExternalScanner().info.deviceName, Quoted(TableOf("| | `deviceName`").at(0).at(1)));
}

}  // namespace
}  // namespace quarlin::bcr
