// SPDX-License-Identifier: Apache-2.0
// What a scan takes from the heap: nothing to be split, and for its text a number of blocks that does not grow with it.
#include "allocations.h"
#include "bcr/scan_text.h"
#include "bcr/scanner_names.h"
#include "bcr/setup_frame.h"
#include "bcr/symbology_table.h"
#include "scan_record.h"

#include <gtest/gtest.h>
#include <quarlin/barcode.h>

namespace quarlin::test {
namespace {

using bcr::EditSetting;

// Blocks that a call takes.
template <typename Call>
long AllocationsOf(Call&& call) {
    const long before = AllocationsSoFar();
    call();
    return AllocationsSoFar() - before;
}

long AllocationsOfEdit(std::string text, const EditSetting& setting) {
    return AllocationsOf([&] { text = bcr::Edit(std::move(text), setting); });
}

TEST(BarcodeAllocations, NoneForSplittingARecord) {
    const ScanBytes bytes = RecordOf({"A", "B", std::string(3000, 'C'), "D", "]Q1"}).Bytes();
    EXPECT_EQ(AllocationsOf([&] { bcr::SplitExtendedData(bytes); }), 0);
}

TEST(BarcodeAllocations, NoneForLookingUp) {
    EXPECT_EQ(AllocationsOf([] {
                  bcr::FindSymbologyByName(L"SwedenPost");
                  bcr::FindHoneywellSymbology(46);
                  bcr::FindHoneywellPair(12, true);
                  bcr::SymbologyFrame(3, true);
                  bcr::EngineOfHidPath(LR"(\\?\hid#vid_067e&pid_0809#6&2c1ce9c&0&0000#)");
                  bcr::ScannerPortNumber(L"Intermec Scanner VID_067E (COM9)");
              }),
              0);
}

TEST(BarcodeAllocations, NoneForATextThatStaysAsItIs) {
    const std::string text(3000, '1');
    for (const EditSetting& setting :
         {EditSetting{}, EditSetting{QLBCR_EDIT_REPLACE, "2", "3"}, EditSetting{QLBCR_EDIT_REPLACE, "1", ""},
          EditSetting{QLBCR_EDIT_INSERT, "", "x", 3001}, EditSetting{QLBCR_EDIT_INSERT, "", "x", 0},
          EditSetting{QLBCR_EDIT_DELETE, "2", ""}, EditSetting{QLBCR_EDIT_DELETE, "1", "", 2, 2}}) {
        EXPECT_EQ(AllocationsOfEdit(text, setting), 0) << setting.mode;
    }
}

// A block for the text's copy, one for the target, none for each occurrence.
TEST(BarcodeAllocations, OfDeletingDoNotGrowWithTheText) {
    for (const std::size_t length : {20U, 200U, 3000U, 300000U}) {
        EXPECT_LE(AllocationsOfEdit(std::string(length, '0'), {QLBCR_EDIT_DELETE, "0", ""}), 2) << length;
    }
}

// The new text doubles its room, so that 16 times the text is 4 blocks more.
TEST(BarcodeAllocations, OfReplacingGrowByDoubling) {
    const EditSetting setting{QLBCR_EDIT_REPLACE, "0", "--"};
    const long few = AllocationsOfEdit(std::string(1000, '0'), setting);
    EXPECT_LE(few, 16);
    EXPECT_LE(AllocationsOfEdit(std::string(16000, '0'), setting), few + 5);
}

TEST(BarcodeAllocations, OfAScansTextDoNotGrowWithIt) {
    bcr::TextSettings settings;
    settings.prefix.text = "<";
    settings.suffix.text = ">";
    const std::string few(200, 'x');
    const std::string many(3000, 'x');
    const long forFew = AllocationsOf([&] { bcr::HoneywellText(few, settings); });
    EXPECT_LE(forFew, 4);
    EXPECT_EQ(AllocationsOf([&] { bcr::HoneywellText(many, settings); }), forFew);
}

}  // namespace
}  // namespace quarlin::test
