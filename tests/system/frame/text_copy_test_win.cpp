// SPDX-License-Identifier: Apache-2.0
// QLSTR_StrCopy and QLSTR_StrCopyAnsi at every bound of the count.
#include <quarlin/strings.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <string>

#include "support/last_error.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr DWORD kInvalidArgument = 0x80070057;
constexpr DWORD kInsufficientBuffer = 0x8007007A;

std::string CopyFailure(DWORD result) {
    return Win32Message("Failed to copy string", result);
}

struct CopyCase {
    const char* name;
    int count;
    std::string source;
    // The buffer afterwards, up to the first character that was not written; it is filled with '?' before.
    std::string written;
    // 0 for success.
    DWORD failure;
};

void PrintTo(const CopyCase& copy, std::ostream* stream) {
    *stream << copy.name;
}

using namespace std::string_literals;
const CopyCase kCopyCases[] = {
    {"RoomToSpare", 16, "abcd", "abcd\0"s, 0},
    {"Exact", 5, "abcd", "abcd\0"s, 0},
    {"OneShort", 4, "abcd", "abc\0"s, kInsufficientBuffer},
    {"Two", 2, "abcd", "a\0"s, kInsufficientBuffer},
    {"One", 1, "abcd", "\0"s, kInsufficientBuffer},
    {"Zero", 0, "abcd", "", kInvalidArgument},
    {"MinusOne", -1, "abcd", "\0"s, kInvalidArgument},
    {"Smallest", INT_MIN, "abcd", "\0"s, kInvalidArgument},
    {"Largest", INT_MAX, "abcd", "abcd\0"s, 0},
    {"EmptyIntoOne", 1, "", "\0"s, 0},
    {"EmptyIntoZero", 0, "", "", kInvalidArgument},
    {"EmptyIntoMinusOne", -1, "", "\0"s, kInvalidArgument},
};

class Copy : public ::testing::TestWithParam<CopyCase> {};

constexpr size_t kBufferSize = 16;

// Success leaves no record, failure the exact one; either way the buffer is written this far and no further.
template <typename Char>
void ExpectWritten(const std::array<Char, kBufferSize>& buffer, const std::string& written) {
    for (size_t i = 0; i < buffer.size(); ++i) {
        const char expected = i < written.size() ? written[i] : '?';
        EXPECT_EQ(buffer[i], static_cast<Char>(expected)) << "at " << i;
    }
}

TEST_P(Copy, Wide) {
    const CopyCase& test = GetParam();
    std::array<wchar_t, kBufferSize> buffer;
    buffer.fill(L'?');
    const std::wstring source = ToWide(test.source);
    if (test.failure == 0) {
        EXPECT_SUCCESS(QLSTR_StrCopy(buffer.data(), test.count, source.c_str()));
    } else {
        EXPECT_FAILURE(QLSTR_StrCopy(buffer.data(), test.count, source.c_str()), QLERR_INTERNAL_ERROR,
                       CopyFailure(test.failure));
    }
    ExpectWritten(buffer, test.written);
}

TEST_P(Copy, Narrow) {
    const CopyCase& test = GetParam();
    std::array<char, kBufferSize> buffer;
    buffer.fill('?');
    if (test.failure == 0) {
        EXPECT_SUCCESS(QLSTR_StrCopyAnsi(buffer.data(), test.count, test.source.c_str()));
    } else {
        EXPECT_FAILURE(QLSTR_StrCopyAnsi(buffer.data(), test.count, test.source.c_str()), QLERR_INTERNAL_ERROR,
                       CopyFailure(test.failure));
    }
    ExpectWritten(buffer, test.written);
}

INSTANTIATE_TEST_SUITE_P(Counts, Copy, ::testing::ValuesIn(kCopyCases),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(CopyFailureText, NamesTheResultAndTheSystemsText) {
    std::array<wchar_t, 4> buffer{};
    ASSERT_EQ(QLSTR_StrCopy(buffer.data(), 4, L"abcd"), QLERR_INTERNAL_ERROR);
    const std::string expected = "Failed to copy string\nWin32 Error 0x8007007A: ";
    const Failure failure = FetchLastError();
    EXPECT_EQ(failure.text.substr(0, expected.size()), expected);
    EXPECT_GT(failure.text.size(), expected.size());
}

TEST(CopyNarrow, MayCutInsideACharacter) {
    std::array<char, 4> buffer{'?', '?', '?', '?'};
    // "é€": two bytes, then three.
    EXPECT_FAILURE(QLSTR_StrCopyAnsi(buffer.data(), 2, "\xC3\xA9\xE2\x82\xAC"), QLERR_INTERNAL_ERROR,
                   CopyFailure(kInsufficientBuffer));
    EXPECT_EQ(std::string(buffer.data(), 4), "\xC3\0??"s);
    EXPECT_FAILURE(QLSTR_StrCopyAnsi(buffer.data(), 4, "\xC3\xA9\xE2\x82\xAC"), QLERR_INTERNAL_ERROR,
                   CopyFailure(kInsufficientBuffer));
    EXPECT_EQ(std::string(buffer.data(), 4), "\xC3\xA9\xE2\0"s);
}

TEST(CopyNarrow, CarriesAnyByte) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    std::array<char, 256> buffer{};
    EXPECT_SUCCESS(QLSTR_StrCopyAnsi(buffer.data(), 256, all.c_str()));
    EXPECT_EQ(std::string(buffer.data()), all);
}

TEST(CopyWide, MayCutInsideASurrogatePair) {
    std::array<wchar_t, 4> buffer{L'?', L'?', L'?', L'?'};
    EXPECT_FAILURE(QLSTR_StrCopy(buffer.data(), 3, L"a\xD83D\xDEF0"), QLERR_INTERNAL_ERROR,
                   CopyFailure(kInsufficientBuffer));
    EXPECT_EQ(std::wstring(buffer.data(), 4), L"a\xD83D\0?"s);
}

TEST(CopyNull, SourceFailsAndLeavesAnEmptyText) {
    std::array<wchar_t, 2> wide{L'?', L'?'};
    std::array<char, 2> narrow{'?', '?'};
    EXPECT_FAILURE(QLSTR_StrCopy(wide.data(), 2, nullptr), QLERR_INTERNAL_ERROR, CopyFailure(kInvalidArgument));
    EXPECT_FAILURE(QLSTR_StrCopyAnsi(narrow.data(), 2, nullptr), QLERR_INTERNAL_ERROR, CopyFailure(kInvalidArgument));
    EXPECT_EQ(std::wstring(wide.data(), 2), L"\0?"s);
    EXPECT_EQ(std::string(narrow.data(), 2), "\0?"s);
}

TEST(CopyNull, DestinationFailsWhateverTheCount) {
    for (const int count : {5, 1, 0, -1}) {
        EXPECT_FAILURE(QLSTR_StrCopy(nullptr, count, L"text"), QLERR_INTERNAL_ERROR, CopyFailure(kInvalidArgument));
        EXPECT_FAILURE(QLSTR_StrCopyAnsi(nullptr, count, "text"), QLERR_INTERNAL_ERROR, CopyFailure(kInvalidArgument));
    }
}

}  // namespace
}  // namespace quarlin::test
