// SPDX-License-Identifier: Apache-2.0
#include "core/error_table.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace quarlin {
namespace {

struct Row {
    std::int32_t code;
    const char* name;
    // What stands for the code when no text is given.
    const char* message;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

constexpr const char* kInternal = "An internal error has occurred";

constexpr std::array kRows{
    Row{0, "QLERR_OK", nullptr},
    Row{1, "QLERR_INVALID_ARGUMENT", "Invalid Argument"},
    Row{2, "QLERR_INVALID_STATE", "Invalid State"},
    Row{3, "QLERR_IO_ERROR", "I/O Error"},
    Row{4, "QLERR_OP_UNSUPPORTED", "Operation Not Supported"},
    Row{5, "QLERR_INTERNAL_ERROR", kInternal},
    Row{6, "QLERR_BUFFER_OVERFLOW", "Buffer too small"},
    Row{65537, "QLERR_UHFRFID_REQ_NOT_ALLOWED", "Unknown Error: 65537"},
    Row{65538, "QLERR_UHFRFID_ACCESS", kInternal},
    Row{65539, "QLERR_UHFRFID_KILL", kInternal},
    Row{65540, "QLERR_UHFRFID_NOREPLY", kInternal},
    Row{65541, "QLERR_UHFRFID_LOCK", kInternal},
    Row{65542, "QLERR_UHFRFID_WRITE", kInternal},
    Row{65543, "QLERR_UHFRFID_ERASE", kInternal},
    Row{65544, "QLERR_UHFRFID_READ", kInternal},
    Row{65545, "QLERR_UHFRFID_SELECT", kInternal},
    Row{65546, "QLERR_UHFRFID_CHANNEL_TIMEOUT", kInternal},
    Row{65551, "QLERR_UHFRFID_INVALID_PARAMETER2", kInternal},
    Row{65568, "QLERR_UHFRFID_EASCODE", kInternal},
    Row{65664, "QLERR_UHFRFID_OTHER", kInternal},
    Row{65667, "QLERR_UHFRFID_MEMORY_OVERRUN", kInternal},
    Row{65668, "QLERR_UHFRFID_MEMORY_LOCKED", kInternal},
    Row{65675, "QLERR_UHFRFID_INSUFFICIENT_POWER", kInternal},
    Row{65679, "QLERR_UHFRFID_NONSPECIFIC", kInternal},
    Row{65696, "QLERR_UHFRFID_READONLY_ADDRESS", kInternal},
    Row{65712, "QLERR_UHFRFID_PCIE_RADIO_DISABLED", kInternal},
    Row{65790, "QLERR_UHFRFID_SECURITY_FAILURE", kInternal},
    Row{65791, "QLERR_UHFRFID_HW_FAILURE", kInternal},
    Row{65794, "QLERR_UHFRFID_INVALID_HANDLE", kInternal},
    Row{65796, "QLERR_UHFRFID_NO_TAGS", kInternal},
    Row{65797, "QLERR_UHFRFID_COMMAND_SEND", kInternal},
    Row{65798, "QLERR_UHFRFID_COMMAND_RECEIVE", kInternal},
    Row{65799, "QLERR_UHFRFID_BUFFERTOOSMALL", kInternal},
    Row{65800, "QLERR_UHFRFID_BUFFERTOOBIG", kInternal},
    Row{65802, "QLERR_UHFRFID_SYSTEM", kInternal},
    Row{65803, "QLERR_UHFRFID_DEVICENOTFOUND", kInternal},
    Row{65804, "QLERR_UHFRFID_UNCLASSIFIED", kInternal},
};

std::string Name(bool (*routine)(QLerr, char*), std::int32_t code) {
    // A canary behind the characters that the routine may write.
    std::array<char, kErrorNameSize + 1> text;
    text.fill('#');
    EXPECT_TRUE(routine(static_cast<QLerr>(code), text.data()));
    EXPECT_EQ(text.back(), '#');
    return text.data();
}

std::string Message(std::int32_t code) {
    return GeneratedMessage(static_cast<QLerr>(code)).value_or("no text");
}

class ErrorTable : public testing::TestWithParam<Row> {};

TEST_P(ErrorTable, HoldsTheRowAtItsPlace) {
    const auto place = static_cast<std::size_t>(&*std::ranges::find(kRows, GetParam().code, &Row::code) - kRows.data());
    ASSERT_LT(place, QlErrorNameTable.size());
    EXPECT_EQ(QlErrorNameTable[place].code, GetParam().code);
    EXPECT_STREQ(QlErrorNameTable[place].name, GetParam().name);
}

TEST_P(ErrorTable, EveryKnownCodeIsCalledOk) {
    EXPECT_EQ(Name(&QlErrorName, GetParam().code), "QLERR_OK");
}

TEST_P(ErrorTable, OnlyGeneralCodesHaveAGeneralName) {
    EXPECT_EQ(Name(&QlGeneralErrorName, GetParam().code), GetParam().code <= 6 ? GetParam().name : "UNKNOWN");
}

TEST_P(ErrorTable, GeneratesTheMessage) {
    EXPECT_EQ(Message(GetParam().code), GetParam().message != nullptr ? GetParam().message : "no text");
}

INSTANTIATE_TEST_SUITE_P(Rows, ErrorTable, testing::ValuesIn(kRows));

TEST(ErrorTable, HasNoOtherRows) {
    EXPECT_EQ(kRows.size(), 37U);
    EXPECT_EQ(QlErrorNameTable.size(), 37U);
}

// Every value beside a member that is none itself, and the ends of the range.
std::vector<std::int32_t> Strangers() {
    std::set<std::int32_t> codes{-1000,
                                 7,
                                 8,
                                 255,
                                 256,
                                 65535,
                                 131072,
                                 -65537,
                                 std::numeric_limits<std::int32_t>::min(),
                                 std::numeric_limits<std::int32_t>::max()};
    for (const Row& row : kRows) {
        codes.insert({row.code - 1, row.code + 1});
    }
    for (const Row& row : kRows) {
        codes.erase(row.code);
    }
    return {codes.begin(), codes.end()};
}

class UnknownCode : public testing::TestWithParam<std::int32_t> {};

TEST_P(UnknownCode, HasNoName) {
    EXPECT_EQ(Name(&QlErrorName, GetParam()), "UNKNOWN");
    EXPECT_EQ(Name(&QlGeneralErrorName, GetParam()), "UNKNOWN");
}

TEST_P(UnknownCode, IsSpelledOutInTheMessage) {
    EXPECT_EQ(Message(GetParam()), "Unknown Error: " + std::to_string(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Values, UnknownCode, testing::ValuesIn(Strangers()));

TEST(UnknownCode, IncludesEveryValueOfTheReadersRangeThatIsNoMember) {
    for (std::int32_t code = 0x10000; code <= 0x10200; ++code) {
        const bool member = std::ranges::find(kRows, code, &Row::code) != kRows.end();
        EXPECT_EQ(Name(&QlErrorName, code), member ? "QLERR_OK" : "UNKNOWN") << code;
    }
}

TEST(UnknownCode, NegativeOnesKeepTheirSign) {
    EXPECT_EQ(Message(-1), "Unknown Error: -1");
    EXPECT_EQ(Message(7), "Unknown Error: 7");
    EXPECT_EQ(Message(std::numeric_limits<std::int32_t>::min()), "Unknown Error: -2147483648");
}

}  // namespace
}  // namespace quarlin
