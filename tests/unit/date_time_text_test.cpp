// SPDX-License-Identifier: Apache-2.0
#include "gps/date_time_text.h"

#include <gtest/gtest.h>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace quarlin::gps {
namespace {

std::string Time(double hhmmss) {
    DateTimeText text;
    text.fill('#');
    FormatTime(hhmmss, text);
    return text.data();
}

std::string Date(std::int32_t ddmmyy) {
    DateTimeText text;
    text.fill('#');
    FormatDate(ddmmyy, text);
    return text.data();
}

std::string PrintedTime(double t) {
    const double h = std::trunc(t / 10000);
    const double r = t - h * 10000;
    const double m = std::trunc(r / 100);
    const double s = std::trunc(r - m * 100);
    char text[40];
    std::snprintf(text, sizeof text, "%d:%02d:%02d", static_cast<int>(h), static_cast<int>(m), static_cast<int>(s));
    return text;
}

std::string PrintedDate(std::int32_t d) {
    char text[40];
    std::snprintf(text, sizeof text, " %02d/%02d/20%02d", d / 10000, d % 10000 / 100, d % 100);
    return text;
}

TEST(TimeText, HasNoLeadingZeroInTheHour) {
    EXPECT_EQ(Time(92750), "9:27:50");
    EXPECT_EQ(Time(0), "0:00:00");
    EXPECT_EQ(Time(235959), "23:59:59");
    EXPECT_EQ(Time(10203), "1:02:03");
}

TEST(TimeText, CutsTheFractionOfASecondOff) {
    EXPECT_EQ(Time(92750.999), "9:27:50");
    EXPECT_EQ(Time(235959.99999999997), "23:59:59");
    EXPECT_EQ(Time(0.999999), "0:00:00");
    EXPECT_EQ(Time(std::nextafter(10000.0, 0)), "0:99:99");
    EXPECT_EQ(Time(std::nextafter(80000.0, 0)), "7:99:99");
}

TEST(TimeText, OfOddNumbersIsWhatPrintfMakesOfThem) {
    EXPECT_EQ(Time(999999), "99:99:99");
    EXPECT_EQ(Time(1234567), "123:45:67");
    EXPECT_EQ(Time(-92750.5), "-9:-27:-50");
    EXPECT_EQ(Time(-5), "0:00:-5");
    EXPECT_EQ(Time(-105), "0:-1:-5");
}

TEST(TimeText, IsThatOfPrintfForManyNumbers) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> usual(0, 240000);
    std::uniform_real_distribution<double> wide(-2.1e13, 2.1e13);
    std::uniform_real_distribution<double> middle(-3e9, 3e9);
    for (int i = 0; i < 100'000; ++i) {
        for (const double t : {usual(random), wide(random), middle(random), std::trunc(middle(random)), i * 1.0,
                               std::nextafter(i * 100.0, 0), -i * 100.0}) {
            ASSERT_EQ(Time(t), PrintedTime(t)) << t;
        }
    }
}

TEST(TimeText, OfNumbersThatFitNoIntegerStopsAtTheLimits) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double t : {1e14, 1e300, -1e14, -1e300, infinity, -infinity, std::nan("")}) {
        EXPECT_LT(Time(t).size(), 40U) << t;
    }
    EXPECT_TRUE(Time(1e300).starts_with("2147483647:"));
    EXPECT_TRUE(Time(-1e300).starts_with("-2147483648:"));
}

TEST(DateText, BeginsWithABlankAndIsOfThisCentury) {
    EXPECT_EQ(Date(191194), " 19/11/2094");
    EXPECT_EQ(Date(10203), " 01/02/2003");
    EXPECT_EQ(Date(0), " 00/00/2000");
    EXPECT_EQ(Date(311299), " 31/12/2099");
}

TEST(DateText, OfOddNumbersIsWhatPrintfMakesOfThem) {
    EXPECT_EQ(Date(-191194), " -19/-11/20-94");
    EXPECT_EQ(Date(-5), " 00/00/20-5");
    EXPECT_EQ(Date(std::numeric_limits<std::int32_t>::max()), " 214748/36/2047");
    EXPECT_EQ(Date(std::numeric_limits<std::int32_t>::min()), " -214748/-36/20-48");
}

TEST(DateText, IsThatOfPrintfForManyNumbers) {
    std::mt19937 random(4);
    std::uniform_int_distribution<std::int32_t> any(std::numeric_limits<std::int32_t>::min(),
                                                    std::numeric_limits<std::int32_t>::max());
    for (std::int32_t i = 0; i < 320'000; ++i) {
        ASSERT_EQ(Date(i), PrintedDate(i));
    }
    for (int i = 0; i < 100'000; ++i) {
        const std::int32_t number = any(random);
        ASSERT_EQ(Date(number), PrintedDate(number));
        ASSERT_EQ(Date(-i), PrintedDate(-i));
    }
}

}  // namespace
}  // namespace quarlin::gps
