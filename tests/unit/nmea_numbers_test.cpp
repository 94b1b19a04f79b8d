// SPDX-License-Identifier: Apache-2.0
#include "gps/nmea_fields.h"

#include <gtest/gtest.h>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace quarlin::gps {
namespace {

std::int32_t Integer(const std::string& text) {
    return FieldCursor(text.c_str()).Integer();
}

double Real(const std::string& text) {
    return FieldCursor(text.c_str()).Real();
}

// A text with one character many times in its middle.
std::string Long(const char* before, std::size_t count, char middle, const char* after) {
    return std::string(before).append(count, middle).append(after);
}

struct IntegerRow {
    const char* text;
    std::int32_t value;
};

void PrintTo(const IntegerRow& row, std::ostream* stream) {
    *stream << '"' << row.text << '"';
}

class IntegerField : public testing::TestWithParam<IntegerRow> {};

TEST_P(IntegerField, Reads) {
    EXPECT_EQ(Integer(GetParam().text), GetParam().value);
}

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

INSTANTIATE_TEST_SUITE_P(Values, IntegerField,
                         testing::Values(IntegerRow{"", 0}, IntegerRow{",5", 0}, IntegerRow{"*6A", 0},
                                         IntegerRow{"0", 0}, IntegerRow{"7", 7}, IntegerRow{"007", 7},
                                         IntegerRow{"12*6A", 12}, IntegerRow{"12,34", 12}, IntegerRow{"12.9", 12},
                                         IntegerRow{"1e5", 1}, IntegerRow{"0x1F", 0}, IntegerRow{"inf", 0},
                                         IntegerRow{"+8", 8}, IntegerRow{"-8", -8}, IntegerRow{"  -8", -8},
                                         IntegerRow{" \t\v\f\r8", 8}, IntegerRow{"- 8", 0}, IntegerRow{"--8", 0},
                                         IntegerRow{"+-8", 0}, IntegerRow{"-", 0}, IntegerRow{" ", 0},
                                         IntegerRow{" ,5", 0}, IntegerRow{".5", 0}, IntegerRow{"A1", 0}));

INSTANTIATE_TEST_SUITE_P(Limits, IntegerField,
                         testing::Values(IntegerRow{"999999999", 999999999}, IntegerRow{"1000000000", 1000000000},
                                         IntegerRow{"2147483647", kHighest}, IntegerRow{"2147483648", kHighest},
                                         IntegerRow{"-2147483647", -kHighest}, IntegerRow{"-2147483648", kLowest},
                                         IntegerRow{"-2147483649", kLowest}, IntegerRow{"4294967296", kHighest},
                                         IntegerRow{"4294967297", kHighest},
                                         IntegerRow{"9223372036854775808", kHighest},
                                         IntegerRow{"18446744073709551617", kHighest},
                                         IntegerRow{"-18446744073709551617", kLowest},
                                         IntegerRow{"00000000000000000000000000000000000042", 42},
                                         IntegerRow{"-00000000000000000000000000000000000042", -42}));

TEST(IntegerField, OfHundredsOfDigitsSaturates) {
    EXPECT_EQ(Integer(Long("", 1000, '9', "")), kHighest);
    EXPECT_EQ(Integer(Long("-", 1000, '1', "")), kLowest);
    EXPECT_EQ(Integer(Long("", 1000, '0', "17")), 17);
}

struct RealRow {
    const char* text;
    double value;
};

void PrintTo(const RealRow& row, std::ostream* stream) {
    *stream << '"' << row.text << '"';
}

class RealField : public testing::TestWithParam<RealRow> {};

TEST_P(RealField, Reads) {
    const double value = Real(GetParam().text);
    EXPECT_EQ(value, GetParam().value);
    EXPECT_EQ(std::signbit(value), std::signbit(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(Values, RealField,
                         testing::Values(RealRow{"", 0}, RealRow{",1.5", 0}, RealRow{"*6A", 0}, RealRow{"0", 0},
                                         RealRow{"0.0", 0}, RealRow{"1.03", 1.03}, RealRow{"061.70*00", 61.7},
                                         RealRow{"5.", 5}, RealRow{".5", .5}, RealRow{"-.5", -.5}, RealRow{"+.5", .5},
                                         RealRow{".", 0}, RealRow{"-.", 0}, RealRow{"-", 0}, RealRow{"+", 0},
                                         RealRow{"- 1", 0}, RealRow{"--1", 0}, RealRow{" \t 2.5", 2.5},
                                         RealRow{"1..5", 1}, RealRow{"1.5.5", 1.5}, RealRow{"1,5", 1},
                                         RealRow{"-0", -0.0}, RealRow{"-0.0", -0.0}));

INSTANTIATE_TEST_SUITE_P(OtherNotations, RealField,
                         testing::Values(RealRow{"1e3", 1}, RealRow{"1E3", 1}, RealRow{"1.5e-3", 1.5},
                                         RealRow{"0x1F", 0}, RealRow{"0x1p4", 0}, RealRow{"inf", 0},
                                         RealRow{"INFINITY", 0}, RealRow{"-inf", 0}, RealRow{"nan", 0},
                                         RealRow{"NAN(1)", 0}, RealRow{"1d2", 1}, RealRow{"1 000", 1},
                                         RealRow{"1'000", 1}));

INSTANTIATE_TEST_SUITE_P(
    Rounding, RealField,
    testing::Values(RealRow{"9007199254740992", 9007199254740992.0}, RealRow{"9007199254740993", 9007199254740992.0},
                    RealRow{"9007199254740993.0000000000000000000000000001", 9007199254740994.0},
                    RealRow{"9007199254740995", 9007199254740996.0}, RealRow{"0.1", 0.1}, RealRow{"0.3", 0.3},
                    RealRow{"123456789012345678", 123456789012345678.0},
                    RealRow{"1234567890123456789", 1234567890123456789.0},
                    RealRow{"0.1234567890123456789", 0.1234567890123456789},
                    RealRow{"5321.68020000000000000000000000000000001", 5321.6802},
                    RealRow{"2.2250738585072012", 2.2250738585072012},
                    RealRow{"1.00000000000000011102230246251565404236316680908203125", 1.0},
                    RealRow{"1.00000000000000011102230246251565404236316680908203126", 1.0000000000000002}));

TEST(RealField, OfHundredsOfDigitsIsRoundedCorrectly) {
    EXPECT_EQ(Real(Long("", 300, '0', "1.5")), 1.5);
    EXPECT_EQ(Real(Long("1.", 900, '0', "")), 1);
    EXPECT_EQ(Real(Long("1.", 900, '9', "")), 2);
    EXPECT_EQ(Real(Long("1", 300, '0', "")), 1e300);
    EXPECT_EQ(Real(Long("0.", 299, '0', "1")), 1e-300);
    // Neither a largest nor a smallest double ends the number early.
    EXPECT_EQ(Real(Long("", 400, '9', "")), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Real(Long("-", 400, '9', "")), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(Real(Long("0.", 400, '0', "1")), 0);
    EXPECT_EQ(Real(Long("0.", 323, '0', "49")), std::numeric_limits<double>::denorm_min());
}

std::string Digits(std::mt19937& random, int most) {
    std::string digits;
    for (int i = std::uniform_int_distribution<int>(0, most)(random); i > 0; --i) {
        digits.push_back(static_cast<char>('0' + std::uniform_int_distribution<int>(0, 9)(random)));
    }
    return digits;
}

// The C library's conversion is correctly rounded on the host alone.
#ifndef _WIN32
TEST(RealField, IsThatOfTheCLibraryForRandomDecimals) {
    std::mt19937 random(1);
    const char* const signs[] = {"", "-", "+", " "};
    for (int i = 0; i < 300'000; ++i) {
        const int most = i % 100 == 0 ? 400 : i % 3 == 0 ? 25 : 6;
        std::string text = signs[i % 4] + Digits(random, most);
        if (i % 5 != 0) {
            text += '.' + Digits(random, most);
        }
        const double expected = std::strtod(text.c_str(), nullptr);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(Real(text)), std::bit_cast<std::uint64_t>(expected)) << text;
    }
}
#endif

TEST(IntegerField, IsThatOfTheCLibraryForRandomDecimals) {
    std::mt19937 random(2);
    const char* const signs[] = {"", "-", "+", " "};
    for (int i = 0; i < 100'000; ++i) {
        const std::string text = signs[i % 4] + Digits(random, i % 7 == 0 ? 30 : 11);
        const long long value = std::strtoll(text.c_str(), nullptr, 10);
        ASSERT_EQ(Integer(text), std::min<long long>(std::max<long long>(value, kLowest), kHighest)) << text;
    }
}

TEST(RealField, KnowsNoLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const char* comma = nullptr;
    for (const char* const name :
         {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "German_Germany.1252", "de-DE"}) {
        if (std::setlocale(LC_ALL, name) != nullptr && *std::localeconv()->decimal_point == ',') {
            comma = name;
            break;
        }
    }
    if (comma == nullptr) {
        std::setlocale(LC_ALL, before.c_str());
        GTEST_SKIP() << "this system has no locale with a decimal comma";
    }
    const double point = Real("53.25");
    const double commaValue = Real("53,25");
    const double longer = Real("53.2500000000000000000000000000001");
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(point, 53.25) << comma;
    EXPECT_EQ(commaValue, 53) << comma;
    EXPECT_EQ(longer, 53.25) << comma;
}

TEST(FieldCursor, StepsBehindTheNextComma) {
    FieldCursor field("$GPGGA,1,,*3");
    ASSERT_TRUE(field.Next());
    EXPECT_EQ(field.First(), '1');
    EXPECT_FALSE(field.IsEmpty());
    ASSERT_TRUE(field.Next());
    EXPECT_TRUE(field.IsEmpty());
    EXPECT_TRUE(field.HoldsNothing());
    ASSERT_TRUE(field.Next());
    EXPECT_FALSE(field.IsEmpty());
    EXPECT_FALSE(field.HoldsNothing());
    EXPECT_FALSE(field.Next());
    EXPECT_TRUE(field.HoldsNothing());
    EXPECT_FALSE(field.IsEmpty());
    EXPECT_FALSE(field.Next());
}

TEST(FieldCursor, PassesOverEveryOtherCharacter) {
    for (int c = 1; c < 256; ++c) {
        if (c == ',') {
            continue;
        }
        const std::string text = std::string(3, static_cast<char>(c)) + ",x";
        FieldCursor field(text.c_str());
        ASSERT_TRUE(field.Next()) << c;
        EXPECT_EQ(field.First(), 'x') << c;
    }
}

TEST(FieldCursor, SkipsAsManyFieldsAsThereAre) {
    FieldCursor field("a,b,c,d");
    EXPECT_TRUE(field.Skip(2));
    EXPECT_EQ(field.First(), 'c');
    EXPECT_FALSE(field.Skip(2));
    std::int32_t value = 5;
    EXPECT_FALSE(field.NextInteger(value));
    EXPECT_EQ(value, 5);
}

TEST(FieldCursor, StandsBehindANumberItRead) {
    FieldCursor field("12.5x,3");
    EXPECT_EQ(field.Real(), 12.5);
    EXPECT_EQ(field.First(), 'x');
    std::int32_t value = 0;
    EXPECT_TRUE(field.NextInteger(value));
    EXPECT_EQ(value, 3);
    EXPECT_EQ(field.First(), '\0');
}

}  // namespace
}  // namespace quarlin::gps
