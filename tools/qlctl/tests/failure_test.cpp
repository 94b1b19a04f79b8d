// SPDX-License-Identifier: Apache-2.0
#include "failure.h"

#include <gtest/gtest.h>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace quarlin::qlctl {
namespace {

std::string ReadFile(const char* path) {
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(CodeName, KnowsEveryCodeOfThePublicHeader) {
    const std::string header = ReadFile(QLCTL_ERROR_HEADER);
    const std::regex enumerator("(QLERR_\\w+) = (\\w+)");
    int codes = 0;
    for (std::sregex_iterator match(header.begin(), header.end(), enumerator), end; match != end; ++match, ++codes) {
        const auto code = static_cast<QLerr>(std::stol((*match)[2], nullptr, 0));
        EXPECT_EQ(CodeName(code), (*match)[1].str());
    }
    EXPECT_EQ(codes, 37);
}

TEST(CodeName, SaysWhenACodeIsUnknown) {
    EXPECT_STREQ(CodeName(static_cast<QLerr>(7)), "unknown code");
}

TEST(Describe, GivesCodeNameAndMessage) {
    EXPECT_EQ(Describe({QLERR_INVALID_STATE, "GPS has not been initialized."}),
              "error 2 (QLERR_INVALID_STATE): GPS has not been initialized.");
    EXPECT_EQ(Describe({QLERR_UHFRFID_NO_TAGS, ""}), "error 65796 (QLERR_UHFRFID_NO_TAGS): ");
}

TEST(Describe, FoldsASystemTextIntoOneLine) {
    EXPECT_EQ(Describe({QLERR_INTERNAL_ERROR, "Failed to copy string\r\nWin32 Error 0x00000005: Access denied.\r\n"}),
              "error 5 (QLERR_INTERNAL_ERROR): Failed to copy string; Win32 Error 0x00000005: Access denied.");
}

TEST(Failure, OfTheLibraryCarriesItsCodeAndStatus) {
    const Failure failure(LibraryError{QLERR_INVALID_ARGUMENT, "Incorrect COM port"});
    EXPECT_EQ(failure.Status(), ExitStatus::kInvalidArgument);
    EXPECT_STREQ(failure.what(), "error 1 (QLERR_INVALID_ARGUMENT): Incorrect COM port");
    ASSERT_TRUE(failure.Cause().has_value());
    EXPECT_EQ(failure.Cause()->message, "Incorrect COM port");
}

TEST(Failure, OfTheToolHasNoCode) {
    const Failure failure(ExitStatus::kTimedOut, "nothing came");
    EXPECT_EQ(failure.Status(), ExitStatus::kTimedOut);
    EXPECT_STREQ(failure.what(), "error: nothing came");
    EXPECT_FALSE(failure.Cause().has_value());
}

struct StatusCase {
    QLerr code;
    ExitStatus status;
};

void PrintTo(const StatusCase& row, std::ostream* stream) {
    *stream << CodeName(row.code);
}

class StatusOfCode : public testing::TestWithParam<StatusCase> {};

TEST_P(StatusOfCode, IsItsClassOfFailure) {
    EXPECT_EQ(StatusOf(GetParam().code), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Codes, StatusOfCode,
                         testing::Values(StatusCase{QLERR_OK, ExitStatus::kDone},
                                         StatusCase{QLERR_INVALID_ARGUMENT, ExitStatus::kInvalidArgument},
                                         StatusCase{QLERR_INVALID_STATE, ExitStatus::kInvalidState},
                                         StatusCase{QLERR_IO_ERROR, ExitStatus::kDevice},
                                         StatusCase{QLERR_OP_UNSUPPORTED, ExitStatus::kUnsupported},
                                         StatusCase{QLERR_INTERNAL_ERROR, ExitStatus::kSystem},
                                         StatusCase{QLERR_BUFFER_OVERFLOW, ExitStatus::kSystem},
                                         StatusCase{QLERR_UHFRFID_REQ_NOT_ALLOWED, ExitStatus::kRfidReader},
                                         StatusCase{QLERR_UHFRFID_DEVICENOTFOUND, ExitStatus::kNoDevice},
                                         StatusCase{QLERR_UHFRFID_UNCLASSIFIED, ExitStatus::kRfidReader}));

TEST(ExitStatuses, AreDistinctAndListedInTheReadme) {
    const std::string readme = ReadFile(QLCTL_README);
    std::set<ExitStatus> seen;
    for (const ExitStatusRow& row : ExitStatuses()) {
        EXPECT_TRUE(seen.insert(row.status).second) << row.meaning;
        const std::string line = "| " + std::to_string(static_cast<int>(row.status)) + " | " + row.meaning + " |";
        EXPECT_NE(readme.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(seen.size(), 12U);
}

}  // namespace
}  // namespace quarlin::qlctl
