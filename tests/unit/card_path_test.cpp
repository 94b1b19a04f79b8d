// SPDX-License-Identifier: Apache-2.0
#include "msr/reader_path.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>

namespace quarlin::test {
namespace {

struct Row {
    const char* name;
    const wchar_t* path;
    bool isReader;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

constexpr std::array kRows{
    Row{"AsWindowsMakesIt", LR"(\\?\hid#vid_0801&pid_0011#6&2c1ce9c&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})",
        true},
    Row{"OneInterfaceOfMany",
        LR"(\\?\hid#vid_0801&pid_0011&mi_01&col02#7&1&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})", true},
    Row{"NothingButTheNumbers", L"vid_0801&pid_0011", true},
    Row{"NumbersAtTheEnd", LR"(\\?\hid#vid_0801&pid_0011)", true},
    Row{"NumbersAfterOthers", L"vid_0801&pid_0012#vid_0801&pid_0011#", true},
    Row{"NumbersAfterTheirOwnBeginning", L"vid_0801&pid_00vid_0801&pid_0011", true},
    Row{"LongerProductNumber", L"vid_0801&pid_00112", true},
    Row{"Empty", L"", false},
    Row{"OneCharacterShortAtTheEnd", L"vid_0801&pid_001", false},
    Row{"OneCharacterShortAtTheBeginning", L"id_0801&pid_0011", false},
    Row{"LongWithoutNumbers", LR"(\\?\hid#some#6&2c1ce9c&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})", false},
    Row{"OtherVendor", LR"(\\?\hid#vid_0802&pid_0011#6&2c1ce9c&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})", false},
    Row{"OtherProduct", LR"(\\?\hid#vid_0801&pid_0010#6&2c1ce9c&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})", false},
    Row{"RevisionBetween", L"vid_0801&rev_0100&pid_0011", false},
    Row{"OtherOrder", L"pid_0011&vid_0801", false},
    Row{"Apart", L"vid_0801 & pid_0011", false},
    // Paths are compared in lower case; whoever lists them makes them so.
    Row{"UpperCase", L"VID_0801&PID_0011", false},
};

class CardReaderPath : public testing::TestWithParam<Row> {};

TEST_P(CardReaderPath, IsKnownByVendorAndProductInItsText) {
    EXPECT_EQ(msr::IsMagneSafePath(GetParam().path), GetParam().isReader);
}

INSTANTIATE_TEST_SUITE_P(Rows, CardReaderPath, testing::ValuesIn(kRows),
                         [](const auto& test) { return test.param.name; });

TEST(CardReaderPathText, MayHoldZeros) {
    using namespace std::string_literals;
    EXPECT_TRUE(msr::IsMagneSafePath(L"\0vid_0801&pid_0011"s));
    EXPECT_FALSE(msr::IsMagneSafePath(L"vid_0801\0pid_0011"s));
}

}  // namespace
}  // namespace quarlin::test
