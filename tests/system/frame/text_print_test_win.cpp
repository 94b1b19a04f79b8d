// SPDX-License-Identifier: Apache-2.0
// QLSTR_StrPrintf and QLSTR_StrVarPrintf: Microsoft's formats, and every bound of the count.
#include <quarlin/strings.h>

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdarg>
#include <functional>
#include <string>
#include <vector>

#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

using namespace std::string_literals;

constexpr int kUntouched = -4711;
constexpr DWORD kInvalidArgument = 0x80070057;
constexpr DWORD kInsufficientBuffer = 0x8007007A;

std::string PrintFailure(DWORD result) {
    return Win32Message("Failed to print formatted string", result);
}

// QLSTR_StrVarPrintf with arguments.
QLerr VarPrintf(wchar_t* dst, int dstSize, int* written, const wchar_t* format, ...) {
    va_list args;
    va_start(args, format);
    const QLerr result = QLSTR_StrVarPrintf(dst, dstSize, written, format, args);
    va_end(args);
    return result;
}

// One format with its arguments, printed by either function.
struct Format {
    const char* name;
    std::wstring expected;
    std::function<QLerr(wchar_t*, int, int*)> print;
    std::function<QLerr(wchar_t*, int, int*)> varPrint;
};

void PrintTo(const Format& format, std::ostream* stream) {
    *stream << format.name;
}

template <typename... Arguments>
Format MakeFormat(const char* name, std::wstring expected, const wchar_t* format, Arguments... arguments) {
    return {
        name, std::move(expected),
        [=](wchar_t* dst, int size, int* written) { return QLSTR_StrPrintf(dst, size, written, format, arguments...); },
        [=](wchar_t* dst, int size, int* written) { return VarPrintf(dst, size, written, format, arguments...); }};
}

std::vector<Format> Formats() {
    return {
        MakeFormat("Plain", L"no arguments", L"no arguments"),
        MakeFormat("Decimal", L"42", L"%d", 42),
        MakeFormat("Signs", L"-1|+1| 1", L"%d|%+d|% d", -1, 1, 1),
        MakeFormat("Width", L"[   42|42   |00042]", L"[%5d|%-5d|%05d]", 42, 42, 42),
        MakeFormat("Hexadecimal", L"beef BEEF 0xbeef", L"%x %X %#x", 0xBEEF, 0xBEEF, 0xBEEF),
        MakeFormat("SixtyFourBits", L"-9223372036854775808", L"%I64d", INT64_MIN),
        MakeFormat("Real", L"3.14|2.500000", L"%.2f|%f", 3.14159, 2.5),
        MakeFormat("PercentSign", L"100%", L"%d%%", 100),
        MakeFormat("WideText", L"wide \x20AC", L"%s", L"wide \x20AC"),
        MakeFormat("LongWideText", L"wide", L"%ls", L"wide"),
        MakeFormat("NarrowText", L"narrow", L"%S", "narrow"),
        MakeFormat("ShortNarrowText", L"narrow", L"%hs", "narrow"),
        MakeFormat("CutText", L"[  wid]", L"[%5.3s]", L"wide"),
        MakeFormat("Character", L"\x20AC", L"%c", 0x20AC),
        MakeFormat("ArgumentsInOrder", L"a 1 b 2.0 c", L"%s %d %s %.1f %s", L"a", 1, L"b", 2.0, L"c"),
    };
}

class Print : public ::testing::TestWithParam<Format> {};

TEST_P(Print, PrintsAndLeavesTheThirdArgumentAlone) {
    std::array<wchar_t, 64> buffer{};
    int written = kUntouched;
    EXPECT_SUCCESS(GetParam().print(buffer.data(), 64, &written));
    EXPECT_EQ(std::wstring(buffer.data()), GetParam().expected);
    EXPECT_EQ(written, kUntouched);
    EXPECT_SUCCESS(GetParam().print(buffer.data(), 64, nullptr));
}

TEST_P(Print, VariantCountsWithoutTheTerminator) {
    std::array<wchar_t, 64> buffer{};
    int written = kUntouched;
    EXPECT_SUCCESS(GetParam().varPrint(buffer.data(), 64, &written));
    EXPECT_EQ(std::wstring(buffer.data()), GetParam().expected);
    EXPECT_EQ(written, static_cast<int>(GetParam().expected.size()));
}

TEST_P(Print, FitsExactlyAndIsCutOneShort) {
    const auto length = static_cast<int>(GetParam().expected.size());
    for (const bool variant : {false, true}) {
        const auto& print = variant ? GetParam().varPrint : GetParam().print;
        std::array<wchar_t, 64> buffer;
        buffer.fill(L'?');
        int written = kUntouched;
        EXPECT_SUCCESS(print(buffer.data(), length + 1, &written));
        EXPECT_EQ(std::wstring(buffer.data()), GetParam().expected);
        EXPECT_EQ(buffer[static_cast<size_t>(length) + 1], L'?');

        buffer.fill(L'?');
        written = kUntouched;
        EXPECT_FAILURE(print(buffer.data(), length, &written), QLERR_INTERNAL_ERROR, PrintFailure(kInsufficientBuffer));
        EXPECT_EQ(std::wstring(buffer.data()), GetParam().expected.substr(0, GetParam().expected.size() - 1));
        EXPECT_EQ(buffer[static_cast<size_t>(length)], L'?');
        EXPECT_EQ(written, kUntouched);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, Print, ::testing::ValuesIn(Formats()),
                         [](const auto& test) { return std::string(test.param.name); });

struct CountCase {
    const char* name;
    int count;
    std::wstring written;
    DWORD failure;
};

void PrintTo(const CountCase& count, std::ostream* stream) {
    *stream << count.name;
}
const CountCase kCountCases[] = {
    {"RoomToSpare", 10, L"42\0"s, 0},
    {"Exact", 3, L"42\0"s, 0},
    {"OneShort", 2, L"4\0"s, kInsufficientBuffer},
    {"One", 1, L"\0"s, kInsufficientBuffer},
    {"Zero", 0, L"", kInvalidArgument},
    {"MinusOne", -1, L"\0"s, kInvalidArgument},
    {"Smallest", INT_MIN, L"\0"s, kInvalidArgument},
    {"Largest", INT_MAX, L"42\0"s, 0},
};

class PrintCount : public ::testing::TestWithParam<CountCase> {};

TEST_P(PrintCount, BoundsWhatIsWritten) {
    const CountCase& test = GetParam();
    for (const bool variant : {false, true}) {
        std::array<wchar_t, 12> buffer;
        buffer.fill(L'?');
        int written = kUntouched;
        const auto print = [&] {
            return variant ? VarPrintf(buffer.data(), test.count, &written, L"%d", 42)
                           : QLSTR_StrPrintf(buffer.data(), test.count, &written, L"%d", 42);
        };
        if (test.failure == 0) {
            EXPECT_SUCCESS(print());
        } else {
            EXPECT_FAILURE(print(), QLERR_INTERNAL_ERROR, PrintFailure(test.failure));
        }
        EXPECT_EQ(written, variant && test.failure == 0 ? 2 : kUntouched);
        std::wstring expected = test.written;
        expected.resize(buffer.size(), L'?');
        EXPECT_EQ(std::wstring(buffer.data(), buffer.size()), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Counts, PrintCount, ::testing::ValuesIn(kCountCases),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(PrintEmpty, FitsIntoOne) {
    std::array<wchar_t, 2> buffer{L'?', L'?'};
    int written = kUntouched;
    EXPECT_SUCCESS(VarPrintf(buffer.data(), 1, &written, L"%s", L""));
    EXPECT_EQ(written, 0);
    EXPECT_EQ(std::wstring(buffer.data(), 2), L"\0?"s);
    EXPECT_SUCCESS(QLSTR_StrPrintf(buffer.data(), 1, nullptr, L""));
}

TEST(PrintLong, OutputOfAnyLengthIsPrinted) {
    const std::wstring text(100000, L'x');
    std::vector<wchar_t> buffer(text.size() + 3);
    int written = kUntouched;
    EXPECT_SUCCESS(VarPrintf(buffer.data(), static_cast<int>(buffer.size()), &written, L"%s%d", text.c_str(), 42));
    EXPECT_EQ(written, 100002);
    EXPECT_EQ(std::wstring(buffer.data()), text + L"42");
    EXPECT_FAILURE(VarPrintf(buffer.data(), 50001, &written, L"%s%d", text.c_str(), 42), QLERR_INTERNAL_ERROR,
                   PrintFailure(kInsufficientBuffer));
    EXPECT_EQ(std::wstring(buffer.data()), text.substr(0, 50000));
    EXPECT_EQ(written, 100002);
}

// A list that is read twice, to measure and to print, must give the same arguments twice.
TEST(PrintManyArguments, BeyondThoseInRegisters) {
    std::array<wchar_t, 64> buffer{};
    int written = 0;
    EXPECT_SUCCESS(
        VarPrintf(buffer.data(), 64, &written, L"%d %d %s %d %.1f %d %s %d", 1, 2, L"three", 4, 5.0, 6, L"seven", 8));
    EXPECT_EQ(std::wstring(buffer.data()), L"1 2 three 4 5.0 6 seven 8");
}

TEST(PrintNull, FormatFailsAndLeavesAnEmptyText) {
    std::array<wchar_t, 2> buffer{L'?', L'?'};
    int written = kUntouched;
    // Null formats are what is shown here; the compiler would warn of a plain one.
    const wchar_t* volatile none = nullptr;
    EXPECT_FAILURE(QLSTR_StrPrintf(buffer.data(), 2, &written, none), QLERR_INTERNAL_ERROR,
                   PrintFailure(kInvalidArgument));
    EXPECT_EQ(std::wstring(buffer.data(), 2), L"\0?"s);
    EXPECT_FAILURE(VarPrintf(buffer.data(), 2, &written, none), QLERR_INTERNAL_ERROR, PrintFailure(kInvalidArgument));
    EXPECT_EQ(written, kUntouched);
}

TEST(PrintNull, DestinationFailsWhateverTheCount) {
    int written = kUntouched;
    for (const int count : {5, 1, 0, -1}) {
        EXPECT_FAILURE(QLSTR_StrPrintf(nullptr, count, nullptr, L"text"), QLERR_INTERNAL_ERROR,
                       PrintFailure(kInvalidArgument));
        EXPECT_FAILURE(VarPrintf(nullptr, count, &written, L"text"), QLERR_INTERNAL_ERROR,
                       PrintFailure(kInvalidArgument));
    }
    EXPECT_EQ(written, kUntouched);
}

TEST(PrintNull, CountOfTheVariantIsRefusedAndNothingIsWritten) {
    std::array<wchar_t, 4> buffer{L'?', L'?', L'?', L'?'};
    EXPECT_FAILURE(VarPrintf(buffer.data(), 4, nullptr, L"%d", 42), QLERR_INVALID_ARGUMENT,
                   "The argument count cannot be NULL.");
    EXPECT_EQ(buffer[0], L'?');
}

TEST(PrintLeavesNothingBehind, AfterSuccessesAndFailures) {
    std::array<wchar_t, 16> buffer{};
    int written = 0;
    const auto round = [&] {
        VarPrintf(buffer.data(), 16, &written, L"%s %d", L"text", 42);
        VarPrintf(buffer.data(), 3, &written, L"%s %d", L"text", 42);
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
