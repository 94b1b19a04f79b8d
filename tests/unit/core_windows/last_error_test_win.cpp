// SPDX-License-Identifier: Apache-2.0
// The record as the families write it; how applications read it is shown by the tests of the DLL.
#include "core/last_error.h"

#include "core/error_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "support/failure.h"
#include "support/resource_count_win.h"

namespace quarlin {
namespace {

using test::Failure;

Failure FetchLastError() {
    return test::FetchLastErrorBy(&TakeQlLastError);
}

TEST(SetLastError, WithoutATextTakesThatOfTheCode) {
    for (const QlErrorNameRow& row : QlErrorNameTable) {
        const auto code = static_cast<QLerr>(row.code);
        if (code == QLERR_OK) {
            continue;
        }
        EXPECT_EQ(SetQlLastError(code, nullptr), code) << row.name;
        EXPECT_EQ(FetchLastError(), (Failure{code, *GeneratedMessage(code)})) << row.name;
    }
}

TEST(SetLastError, WithoutATextIsExactForTheOddCodes) {
    SetQlLastError(QLERR_UHFRFID_REQ_NOT_ALLOWED, nullptr);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_UHFRFID_REQ_NOT_ALLOWED, "Unknown Error: 65537"}));
    SetQlLastError(QLERR_UHFRFID_ACCESS, nullptr);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_UHFRFID_ACCESS, "An internal error has occurred"}));
    for (const int code : {7, -1, INT_MAX, INT_MIN, 0x10000, 0x10101}) {
        EXPECT_EQ(SetQlLastError(static_cast<QLerr>(code), nullptr), static_cast<QLerr>(code));
        EXPECT_EQ(FetchLastError(), (Failure{static_cast<QLerr>(code), "Unknown Error: " + std::to_string(code)}));
    }
}

TEST(SetLastError, OfSuccessWithoutATextStoresNothing) {
    EXPECT_EQ(SetQlLastError(QLERR_OK, nullptr), QLERR_OK);
    EXPECT_EQ(FetchLastError(), Failure{});
    SetQlLastError(QLERR_IO_ERROR, "older");
    EXPECT_EQ(SetQlLastError(QLERR_OK, nullptr), QLERR_OK);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_IO_ERROR, "older"}));
}

TEST(SetLastError, OfSuccessWithATextStoresIt) {
    SetQlLastError(QLERR_IO_ERROR, "older");
    EXPECT_EQ(SetQlLastError(QLERR_OK, "QLERR_OK"), QLERR_OK);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_OK, "QLERR_OK"}));
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(SetLastError, TakesAnyTextBeforeTheCodesOwn) {
    EXPECT_EQ(SetQlLastError(QLERR_INVALID_STATE, ""), QLERR_INVALID_STATE);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_STATE, ""}));
    const std::string longText(5000, 'x');
    EXPECT_EQ(SetQlLastError(QLERR_INVALID_STATE, longText.c_str()), QLERR_INVALID_STATE);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_STATE, longText}));
}

// The text may be that of the record itself, as when a caught failure is stored again.
TEST(SetLastError, CopiesItsText) {
    std::string text = "first";
    SetQlLastError(QLERR_IO_ERROR, text.c_str());
    text = "later";
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_IO_ERROR, "first"}));
}

TEST(ClearLastError, ForgetsAndFrees) {
    SetQlLastError(QLERR_IO_ERROR, std::string(1000, 'x').c_str());
    ClearQlLastError();
    const size_t before = test::CountHeapBlocks();
    for (int i = 0; i < 100; ++i) {
        SetQlLastError(QLERR_IO_ERROR, std::string(1000, 'x').c_str());
        SetQlLastError(QLERR_IO_ERROR, nullptr);
        EXPECT_EQ(ClearQlLastError(), QLERR_OK);
        EXPECT_EQ(ClearQlLastError(), QLERR_OK);
    }
    EXPECT_EQ(test::CountHeapBlocks(), before);
    EXPECT_EQ(FetchLastError(), Failure{});
}

}  // namespace
}  // namespace quarlin
