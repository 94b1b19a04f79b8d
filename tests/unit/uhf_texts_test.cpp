// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/result_text.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <string>

namespace quarlin::test {
namespace {

using uhfrfid::CodeName;
using uhfrfid::ReaderMessage;

struct Row {
    std::int32_t code;
    const char* name;
    const char* message;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

constexpr std::array kRows{
    Row{0, "QLERR_OK", "QLERR_OK"},
    Row{1, "QLERR_INVALID_ARGUMENT", "Invalid Argument"},
    Row{2, "QLERR_INVALID_STATE", "Invalid State"},
    Row{3, "QLERR_IO_ERROR", "I/O Error"},
    Row{4, "QLERR_OP_UNSUPPORTED", "Operation Not Supported"},
    Row{5, "QLERR_INTERNAL_ERROR", "An internal error has occurred"},
    Row{6, "QLERR_BUFFER_OVERFLOW", "Buffer too small"},
    Row{0x10001, "QLERR_UHFRFID_REQ_NOT_ALLOWED", "Unknown Error"},
    Row{0x10002, "QLERR_UHFRFID_ACCESS", "QLERR_UHFRFID_ACCESS"},
    Row{0x10003, "QLERR_UHFRFID_KILL", "QLERR_UHFRFID_KILL"},
    Row{0x10004, "QLERR_UHFRFID_NOREPLY", "QLERR_UHFRFID_NOREPLY"},
    Row{0x10005, "QLERR_UHFRFID_LOCK", "QLERR_UHFRFID_LOCK"},
    Row{0x10006, "QLERR_UHFRFID_WRITE", "QLERR_UHFRFID_WRITE"},
    Row{0x10007, "QLERR_UHFRFID_ERASE", "QLERR_UHFRFID_ERASE"},
    Row{0x10008, "QLERR_UHFRFID_READ", "QLERR_UHFRFID_READ "},
    Row{0x10009, "QLERR_UHFRFID_SELECT", "QLERR_UHFRFID_SELECT"},
    Row{0x1000A, "QLERR_UHFRFID_CHANNEL_TIMEOUT", "QLERR_UHFRFID_CHANNEL_TIMEOUT"},
    Row{0x1000F, "QLERR_UHFRFID_INVALID_PARAMETER2", "QLERR_UHFRFID_INVALID_PARAMETER2"},
    Row{0x10020, "QLERR_UHFRFID_EASCODE", "QLERR_UHFRFID_EASCODE"},
    Row{0x10080, "QLERR_UHFRFID_OTHER", "QLERR_UHFRFID_OTHER "},
    Row{0x10083, "QLERR_UHFRFID_MEMORY_OVERRUN", "QLERR_UHFRFID_MEMORY_OVERRUN"},
    Row{0x10084, "QLERR_UHFRFID_MEMORY_LOCKED", "QLERR_UHFRFID_MEMORY_LOCKED"},
    Row{0x1008B, "QLERR_UHFRFID_INSUFFICIENT_POWER", "QLERR_UHFRFID_INSUFFICIENT_POWER"},
    Row{0x1008F, "QLERR_UHFRFID_NONSPECIFIC", "QLERR_UHFRFID_NONSPECIFIC"},
    Row{0x100A0, "QLERR_UHFRFID_READONLY_ADDRESS", "QLERR_UHFRFID_READONLY_ADDRESS"},
    Row{0x100B0, "QLERR_UHFRFID_PCIE_RADIO_DISABLED", "QLERR_UHFRFID_PCIE_RADIO_DISABLED"},
    Row{0x100FE, "QLERR_UHFRFID_SECURITY_FAILURE", "QLERR_UHFRFID_SECURITY_FAILURE"},
    Row{0x100FF, "QLERR_UHFRFID_HW_FAILURE", "QLERR_UHFRFID_HW_FAILURE"},
    Row{0x10102, "QLERR_UHFRFID_INVALID_HANDLE", "QLERR_UHFRFID_INVALID_HANDLE"},
    Row{0x10104, "QLERR_UHFRFID_NO_TAGS", "QLERR_UHFRFID_NO_TAGS"},
    Row{0x10105, "QLERR_UHFRFID_COMMAND_SEND", "QLERR_UHFRFID_COMMAND_SEND"},
    Row{0x10106, "QLERR_UHFRFID_COMMAND_RECEIVE", "QLERR_UHFRFID_COMMAND_RECEIVE"},
    Row{0x10107, "QLERR_UHFRFID_BUFFERTOOSMALL", "QLERR_UHFRFID_BUFFERTOOSMALL"},
    Row{0x10108, "QLERR_UHFRFID_BUFFERTOOBIG", "QLERR_UHFRFID_BUFFERTOOBIG"},
    Row{0x1010A, "QLERR_UHFRFID_SYSTEM", "QLERR_UHFRFID_SYSTEM "},
    Row{0x1010B, "QLERR_UHFRFID_DEVICENOTFOUND", "QLERR_UHFRFID_DEVICENOTFOUND"},
    Row{0x1010C, "QLERR_UHFRFID_UNCLASSIFIED", "QLERR_UHFRFID_UNCLASSIFIED"},
};
static_assert(kRows.size() == 37);

class UhfTexts : public testing::TestWithParam<Row> {};

TEST_P(UhfTexts, AreTheMessageAndTheBareName) {
    const auto code = static_cast<QLerr>(GetParam().code);
    EXPECT_STREQ(ReaderMessage(code), GetParam().message);
    EXPECT_STREQ(CodeName(code), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Rows, UhfTexts, testing::ValuesIn(kRows), [](const auto& test) { return test.param.name; });

TEST(UhfTextsOfOtherCodes, SayThatTheErrorIsUnknown) {
    for (std::int32_t code = -300; code < 0x10000 + 0x300; ++code) {
        if (std::ranges::find(kRows, code, &Row::code) == kRows.end()) {
            ASSERT_STREQ(ReaderMessage(static_cast<QLerr>(code)), "Unknown Error") << code;
            ASSERT_STREQ(CodeName(static_cast<QLerr>(code)), "UNKNOWN") << code;
        }
    }
}

}  // namespace
}  // namespace quarlin::test
