// SPDX-License-Identifier: Apache-2.0
#include "core/hex_text.h"

#include <gtest/gtest.h>
#include <cstdio>
#include <random>

namespace quarlin {
namespace {

std::string Printed(const char* format, std::uint32_t value) {
    char text[20];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(value));
#pragma GCC diagnostic pop
    return text;
}

TEST(HexText, OfAnHresultIsUpperCaseWithEightDigits) {
    EXPECT_EQ(HexText(0x8007007A, HexCase::kUpper, 8), "8007007A");
    EXPECT_EQ(HexText(0x57, HexCase::kUpper, 8), "00000057");
    EXPECT_EQ(HexText(0, HexCase::kUpper, 8), "00000000");
    EXPECT_EQ(HexText(0xFFFFFFFF, HexCase::kUpper, 8), "FFFFFFFF");
}

TEST(HexText, CanBeLowerCaseWithoutFilling) {
    EXPECT_EQ(HexText(0x80041003, HexCase::kLower, 1), "80041003");
    EXPECT_EQ(HexText(1, HexCase::kLower, 1), "1");
    EXPECT_EQ(HexText(0, HexCase::kLower, 1), "0");
    EXPECT_EQ(HexText(0xABCDEF, HexCase::kLower, 1), "abcdef");
}

TEST(HexText, IsThatOfPrintfForManyNumbers) {
    std::mt19937 random(5);
    for (int i = 0; i < 50'000; ++i) {
        const auto value = static_cast<std::uint32_t>(random()) >> (i % 32);
        ASSERT_EQ(HexText(value, HexCase::kUpper, 8), Printed("%08X", value));
        ASSERT_EQ(HexText(value, HexCase::kLower, 1), Printed("%x", value));
    }
}

}  // namespace
}  // namespace quarlin
