// SPDX-License-Identifier: Apache-2.0
// QLSTR_CppStrToCStr: the size protocol, and the string that crosses the border by value.
#define QL_WITH_STD_STRING
#include <quarlin/strings.h>

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <string>
#include <vector>

#include "support/last_error.h"
#include "support/resource_count_win.h"

namespace quarlin::test {
namespace {

using namespace std::string_literals;

constexpr const char* kNoSize = "dstSize cannot be NULL";
constexpr const char* kNoBuffer = "OutStr cannot be NULL if OutStrSize is non-zero";
constexpr const char* kTooSmall = "Buffer size too small";

TEST(CppStrToCStr, SizeQueryTellsWhatIsNeeded) {
    int size = 0;
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(nullptr, &size, "abc"));
    EXPECT_EQ(size, 4);
    size = 0;
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(nullptr, &size, ""));
    EXPECT_EQ(size, 1);
    size = 0;
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(nullptr, &size, std::string(100000, 'x')));
    EXPECT_EQ(size, 100001);
}

TEST(CppStrToCStr, NullBufferWithASizeIsRefused) {
    for (const int given : {3, 1, -1, INT_MAX, INT_MIN}) {
        int size = given;
        EXPECT_FAILURE(QLSTR_CppStrToCStr(nullptr, &size, "abc"), QLERR_INVALID_ARGUMENT, kNoBuffer);
        EXPECT_EQ(size, given);
    }
}

TEST(CppStrToCStr, NullSizeIsRefusedFirst) {
    std::array<char, 4> buffer{'?'};
    EXPECT_FAILURE(QLSTR_CppStrToCStr(nullptr, nullptr, "abc"), QLERR_INVALID_ARGUMENT, kNoSize);
    EXPECT_FAILURE(QLSTR_CppStrToCStr(buffer.data(), nullptr, "abc"), QLERR_INVALID_ARGUMENT, kNoSize);
    EXPECT_EQ(buffer[0], '?');
}

TEST(CppStrToCStr, SmallBufferIsLeftAloneWithItsSize) {
    for (const int given : {3, 1, 0, -1, INT_MIN}) {
        std::array<char, 4> buffer;
        buffer.fill('?');
        int size = given;
        EXPECT_FAILURE(QLSTR_CppStrToCStr(buffer.data(), &size, "abc"), QLERR_BUFFER_OVERFLOW, kTooSmall);
        EXPECT_EQ(size, given);
        EXPECT_EQ(std::string(buffer.data(), 4), "????");
    }
}

TEST(CppStrToCStr, CopiesAndTellsWhatWasNeeded) {
    for (const int given : {4, 5, 8, INT_MAX}) {
        std::array<char, 8> buffer;
        buffer.fill('?');
        int size = given;
        EXPECT_SUCCESS(QLSTR_CppStrToCStr(buffer.data(), &size, "abc"));
        EXPECT_EQ(size, 4);
        EXPECT_EQ(std::string(buffer.data(), 8), "abc\0????"s);
    }
}

TEST(CppStrToCStr, EmptyStringNeedsOne) {
    char buffer = '?';
    int size = 1;
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(&buffer, &size, ""));
    EXPECT_EQ(size, 1);
    EXPECT_EQ(buffer, '\0');
}

TEST(CppStrToCStr, CountsBytesOfUtf8) {
    std::array<char, 8> buffer{};
    int size = 0;
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(nullptr, &size, "\xE2\x82\xAC"));
    EXPECT_EQ(size, 4);
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(buffer.data(), &size, "\xE2\x82\xAC"));
    EXPECT_STREQ(buffer.data(), "\xE2\x82\xAC");
}

// The copy is that of a text: it ends at the first terminator, while the size is that of the string.
TEST(CppStrToCStr, StringWithATerminatorInside) {
    std::array<char, 8> buffer;
    buffer.fill('?');
    int size = 8;
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(buffer.data(), &size, "ab\0cd"s));
    EXPECT_EQ(size, 6);
    EXPECT_EQ(std::string(buffer.data(), 8), "ab\0?????"s);
}

TEST(CppStrToCStr, TwoCallsFetchAnyString) {
    const std::string text(5000, 'x');
    int size = 0;
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(nullptr, &size, text));
    std::vector<char> buffer(static_cast<size_t>(size));
    EXPECT_SUCCESS(QLSTR_CppStrToCStr(buffer.data(), &size, text));
    EXPECT_EQ(std::string(buffer.data()), text);
}

TEST(CppStrToCStr, DestroysTheStringOnEveryPath) {
    const std::string text(1000, 'x');
    std::vector<char> buffer(2000);
    const auto round = [&] {
        int size = 0;
        QLSTR_CppStrToCStr(nullptr, &size, text);
        size = 2000;
        QLSTR_CppStrToCStr(buffer.data(), &size, text);
        size = 10;
        QLSTR_CppStrToCStr(buffer.data(), &size, text);
        QLSTR_CppStrToCStr(nullptr, &size, text);
        QLSTR_CppStrToCStr(buffer.data(), nullptr, text);
        FetchLastError();
    };
    round();
    const size_t before = CountHeapBlocks();
    for (int i = 0; i < 1000; ++i) {
        round();
    }
    EXPECT_EQ(CountHeapBlocks(), before);
}

}  // namespace
}  // namespace quarlin::test
