// SPDX-License-Identifier: Apache-2.0
#include "view/hex.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Hex, HasTwoCapitalDigitsPerByte) {
    EXPECT_EQ(Hex(Bytes{0x00, 0x0A, 0xFF, 0x3C}), "000AFF3C");
    EXPECT_EQ(Hex({}), "");
}

TEST(ParseHex, ReadsDigitsOfEitherCaseAndBlanksBetweenBytes) {
    EXPECT_EQ(ParseHex("300833B2"), (Bytes{0x30, 0x08, 0x33, 0xB2}));
    EXPECT_EQ(ParseHex("dd d9 "), (Bytes{0xDD, 0xD9}));
}

class NoHex : public testing::TestWithParam<const char*> {};

TEST_P(NoHex, IsRefused) {
    EXPECT_EQ(ParseHex(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Texts, NoHex, testing::Values("", " ", "3", "300", "3 0", "0x30", "-1", "+1", "GG", "30,31"));

TEST(ParsePassword, TurnsANumberIntoTheBytesOfTheLibrary) {
    EXPECT_EQ(ParsePassword("1234ABCD"), (Bytes{0xCD, 0xAB, 0x34, 0x12}));
    EXPECT_EQ(ParsePassword("1"), (Bytes{0x01, 0x00, 0x00, 0x00}));
    EXPECT_EQ(ParsePassword("00000000"), (Bytes{0x00, 0x00, 0x00, 0x00}));
}

class NoPassword : public testing::TestWithParam<const char*> {};

TEST_P(NoPassword, IsRefused) {
    EXPECT_EQ(ParsePassword(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Texts, NoPassword,
                         testing::Values("", "123456789", "000000001", "-1", "0x12", "12 34", "xyz"));

}  // namespace
}  // namespace quarlin::qlctl
