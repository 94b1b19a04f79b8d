// SPDX-License-Identifier: Apache-2.0
// QLSTR_NarrowToWide and QLSTR_WideToNarrow.
#include <quarlin/strings.h>

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <string>

#include "support/last_error.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr int kUntouched = -4711;

std::string ToWideFailure(DWORD code) {
    return Win32Message("Multibyte to unicode conversion failed", code);
}
std::string ToNarrowFailure(DWORD code) {
    return Win32Message("Unicode to multibyte conversion failed", code);
}

struct Text {
    const char* name;
    std::string narrow;
    std::wstring wide;
};

void PrintTo(const Text& text, std::ostream* stream) {
    *stream << text.name;
}
const Text kTexts[] = {
    {"Empty", "", L""},
    {"Ascii", "abcd", L"abcd"},
    {"TwoBytes", "\xC3\xA9", L"\x00E9"},
    {"ThreeBytes", "\xE2\x82\xAC", L"\x20AC"},
    {"FourBytes", "\xF0\x9F\x9B\xB0", L"\xD83D\xDEF0"},
    {"Mixed", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9B\xB0z", L"a\x00E9\x20AC\xD83D\xDEF0z"},
};

class Conversion : public ::testing::TestWithParam<Text> {
  protected:
    int NarrowSize() const { return static_cast<int>(GetParam().narrow.size()) + 1; }
    int WideSize() const { return static_cast<int>(GetParam().wide.size()) + 1; }
};

TEST_P(Conversion, CountsTheTerminator) {
    std::array<wchar_t, 32> wide{};
    std::array<char, 32> narrow{};
    int count = kUntouched;
    EXPECT_SUCCESS(QLSTR_NarrowToWide(wide.data(), 32, &count, GetParam().narrow.c_str()));
    EXPECT_EQ(count, WideSize());
    EXPECT_EQ(std::wstring(wide.data()), GetParam().wide);

    EXPECT_SUCCESS(QLSTR_WideToNarrow(narrow.data(), 32, &count, GetParam().wide.c_str()));
    EXPECT_EQ(count, NarrowSize());
    EXPECT_EQ(std::string(narrow.data()), GetParam().narrow);
}

TEST_P(Conversion, FitsExactly) {
    std::array<wchar_t, 32> wide;
    wide.fill(L'?');
    std::array<char, 32> narrow;
    narrow.fill('?');
    int count = kUntouched;
    EXPECT_SUCCESS(QLSTR_NarrowToWide(wide.data(), WideSize(), &count, GetParam().narrow.c_str()));
    EXPECT_EQ(std::wstring(wide.data()), GetParam().wide);
    EXPECT_EQ(wide[static_cast<size_t>(WideSize())], L'?');

    EXPECT_SUCCESS(QLSTR_WideToNarrow(narrow.data(), NarrowSize(), &count, GetParam().wide.c_str()));
    EXPECT_EQ(std::string(narrow.data()), GetParam().narrow);
    EXPECT_EQ(narrow[static_cast<size_t>(NarrowSize())], '?');
}

// One short, two short, and a buffer that ends inside a character: no count, and nothing beyond the buffer.
TEST_P(Conversion, FailsWhenItDoesNotFit) {
    for (int size = 1; size < NarrowSize(); ++size) {
        std::array<char, 32> narrow;
        narrow.fill('?');
        int count = kUntouched;
        EXPECT_FAILURE(QLSTR_WideToNarrow(narrow.data(), size, &count, GetParam().wide.c_str()), QLERR_INTERNAL_ERROR,
                       ToNarrowFailure(ERROR_INSUFFICIENT_BUFFER));
        EXPECT_EQ(narrow[static_cast<size_t>(size)], '?') << size;
        EXPECT_EQ(count, kUntouched);
    }
    for (int size = 1; size < WideSize(); ++size) {
        std::array<wchar_t, 32> wide;
        wide.fill(L'?');
        int count = kUntouched;
        EXPECT_FAILURE(QLSTR_NarrowToWide(wide.data(), size, &count, GetParam().narrow.c_str()), QLERR_INTERNAL_ERROR,
                       ToWideFailure(ERROR_INSUFFICIENT_BUFFER));
        EXPECT_EQ(wide[static_cast<size_t>(size)], L'?') << size;
        EXPECT_EQ(count, kUntouched);
    }
}

TEST_P(Conversion, CountOfZeroAsksForTheSize) {
    wchar_t wide = L'?';
    char narrow = '?';
    int count = kUntouched;
    EXPECT_SUCCESS(QLSTR_NarrowToWide(&wide, 0, &count, GetParam().narrow.c_str()));
    EXPECT_EQ(count, WideSize());
    EXPECT_SUCCESS(QLSTR_WideToNarrow(&narrow, 0, &count, GetParam().wide.c_str()));
    EXPECT_EQ(count, NarrowSize());
    EXPECT_EQ(wide, L'?');
    EXPECT_EQ(narrow, '?');

    EXPECT_SUCCESS(QLSTR_NarrowToWide(nullptr, 0, &count, GetParam().narrow.c_str()));
    EXPECT_EQ(count, WideSize());
    EXPECT_SUCCESS(QLSTR_WideToNarrow(nullptr, 0, &count, GetParam().wide.c_str()));
    EXPECT_EQ(count, NarrowSize());
}

TEST_P(Conversion, LargestCountIsLegal) {
    std::array<wchar_t, 32> wide{};
    std::array<char, 32> narrow{};
    int count = kUntouched;
    EXPECT_SUCCESS(QLSTR_NarrowToWide(wide.data(), INT_MAX, &count, GetParam().narrow.c_str()));
    EXPECT_EQ(std::wstring(wide.data()), GetParam().wide);
    EXPECT_SUCCESS(QLSTR_WideToNarrow(narrow.data(), INT_MAX, &count, GetParam().wide.c_str()));
    EXPECT_EQ(std::string(narrow.data()), GetParam().narrow);
}

TEST_P(Conversion, NegativeCountIsRefused) {
    for (const int size : {-1, INT_MIN}) {
        wchar_t wide = L'?';
        char narrow = '?';
        int count = kUntouched;
        EXPECT_FAILURE(QLSTR_NarrowToWide(&wide, size, &count, GetParam().narrow.c_str()), QLERR_INTERNAL_ERROR,
                       ToWideFailure(ERROR_INVALID_PARAMETER));
        EXPECT_FAILURE(QLSTR_WideToNarrow(&narrow, size, &count, GetParam().wide.c_str()), QLERR_INTERNAL_ERROR,
                       ToNarrowFailure(ERROR_INVALID_PARAMETER));
        EXPECT_EQ(count, kUntouched);
        EXPECT_EQ(wide, L'?');
        EXPECT_EQ(narrow, '?');
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, Conversion, ::testing::ValuesIn(kTexts),
                         [](const auto& test) { return std::string(test.param.name); });

struct Invalid {
    const char* name;
    std::string narrow;
    std::wstring replaced;
};

void PrintTo(const Invalid& invalid, std::ostream* stream) {
    *stream << invalid.name;
}
const Invalid kInvalidTexts[] = {
    {"LoneByte", "a\xFF", L"a\xFFFD"},
    {"LoneContinuation", "a\x80z", L"a\xFFFDz"},
    {"LeadWithoutContinuation", "\xC3(", L"\xFFFD("},
    {"CutAtTheEnd", "a\xC3", L"a\xFFFD"},
};

class InvalidUtf8 : public ::testing::TestWithParam<Invalid> {};

// Conversion is lenient: what is no UTF-8 becomes the replacement character.
TEST_P(InvalidUtf8, IsReplaced) {
    std::array<wchar_t, 16> wide{};
    int count = kUntouched;
    EXPECT_SUCCESS(QLSTR_NarrowToWide(wide.data(), 16, &count, GetParam().narrow.c_str()));
    EXPECT_EQ(std::wstring(wide.data()), GetParam().replaced);
    EXPECT_EQ(count, static_cast<int>(GetParam().replaced.size()) + 1);
}

INSTANTIATE_TEST_SUITE_P(Texts, InvalidUtf8, ::testing::ValuesIn(kInvalidTexts),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(InvalidUtf16, LoneSurrogateIsReplaced) {
    std::array<char, 16> narrow{};
    int count = kUntouched;
    EXPECT_SUCCESS(QLSTR_WideToNarrow(narrow.data(), 16, &count, L"a\xD83Dz"));
    EXPECT_STREQ(narrow.data(), "a\xEF\xBF\xBDz");
    EXPECT_EQ(count, 6);
}

TEST(ConversionNull, SourceFails) {
    std::array<wchar_t, 4> wide{};
    std::array<char, 4> narrow{};
    int count = kUntouched;
    EXPECT_FAILURE(QLSTR_NarrowToWide(wide.data(), 4, &count, nullptr), QLERR_INTERNAL_ERROR,
                   ToWideFailure(ERROR_INVALID_PARAMETER));
    EXPECT_FAILURE(QLSTR_WideToNarrow(narrow.data(), 4, &count, nullptr), QLERR_INTERNAL_ERROR,
                   ToNarrowFailure(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(count, kUntouched);
}

TEST(ConversionNull, DestinationWithACountFails) {
    int count = kUntouched;
    EXPECT_FAILURE(QLSTR_NarrowToWide(nullptr, 8, &count, "text"), QLERR_INTERNAL_ERROR,
                   ToWideFailure(ERROR_INVALID_PARAMETER));
    EXPECT_FAILURE(QLSTR_WideToNarrow(nullptr, 8, &count, L"text"), QLERR_INTERNAL_ERROR,
                   ToNarrowFailure(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(count, kUntouched);
}

TEST(ConversionNull, CountIsRefusedAndNothingIsWritten) {
    std::array<wchar_t, 8> wide{L'?'};
    std::array<char, 8> narrow{'?'};
    EXPECT_FAILURE(QLSTR_NarrowToWide(wide.data(), 8, nullptr, "text"), QLERR_INVALID_ARGUMENT,
                   "The argument count cannot be NULL.");
    EXPECT_FAILURE(QLSTR_WideToNarrow(narrow.data(), 8, nullptr, L"text"), QLERR_INVALID_ARGUMENT,
                   "The argument count cannot be NULL.");
    EXPECT_EQ(wide[0], L'?');
    EXPECT_EQ(narrow[0], '?');
}

}  // namespace
}  // namespace quarlin::test
