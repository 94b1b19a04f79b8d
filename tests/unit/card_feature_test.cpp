// SPDX-License-Identifier: Apache-2.0
// What a reader is asked for its identity, and what becomes of its answers.
#include "msr/feature_command.h"

#include "core/bounded_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using msr::PropertyText;
using msr::SecurityLevel;
// On the heap and exactly as long as the reply: a byte read behind it is noticed.
using Reply = std::vector<std::uint8_t>;

template <std::size_t size>
Reply BytesOf(const std::array<std::uint8_t, size>& request) {
    return {request.begin(), request.end()};
}

TEST(CardRequest, IsReportIdCommandLengthAndData) {
    EXPECT_EQ(BytesOf(msr::kGetSerialNumber), (Reply{0x00, 0x00, 0x01, 0x03}));
    EXPECT_EQ(BytesOf(msr::kGetSoftwareId), (Reply{0x00, 0x00, 0x01, 0x00}));
    EXPECT_EQ(BytesOf(msr::kGetSecurityLevel), (Reply{0x00, 0x15, 0x00}));
}

TEST(CardProperty, IsEveryByteFromTheFourthOn) {
    for (std::size_t length = 0; length <= 300; ++length) {
        Reply reply(length);
        std::wstring expected;
        for (std::size_t i = 0; i < length; ++i) {
            reply[i] = static_cast<std::uint8_t>(i * 5 + 1);
            if (i >= 3) {
                expected += static_cast<wchar_t>(reply[i]);
            }
        }
        ASSERT_EQ(PropertyText(reply), expected) << length;
    }
}

TEST(CardProperty, KeepsZerosInTheMiddleAndAtTheEnd) {
    EXPECT_EQ(PropertyText(Reply{0, 0, 4, 'B', 0, '7', 0, 0}), std::wstring(L"B\0007\0\0", 5));
    EXPECT_EQ(PropertyText(Reply(25)), std::wstring(22, L'\0'));
}

TEST(CardProperty, TakesEachByteAsTheCharacterOfItsNumber) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::wstring text = PropertyText(Reply{0, 0, 1, static_cast<std::uint8_t>(byte)});
        ASSERT_EQ(text.size(), 1U);
        ASSERT_EQ(static_cast<unsigned long>(text[0]), static_cast<unsigned long>(byte));
    }
}

TEST(CardProperty, DoesNotDependOnResultCodeAndLength) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto odd = static_cast<std::uint8_t>(byte);
        ASSERT_EQ(PropertyText(Reply{odd, 0, 2, 'A', 'B'}), L"AB");
        ASSERT_EQ(PropertyText(Reply{0, odd, 2, 'A', 'B'}), L"AB");
        ASSERT_EQ(PropertyText(Reply{0, 0, odd, 'A', 'B'}), L"AB");
    }
}

// What the list of readers shows of it.
TEST(CardProperty, IsCutTo149CharactersAndReadUpToItsFirstZero) {
    const auto shown = [](const Reply& reply) {
        std::array<wchar_t, 150> field;
        field.fill(L'?');
        static_cast<void>(BoundedCopy(field.data(), 150, PropertyText(reply).c_str()));
        EXPECT_NE(std::ranges::find(field, L'\0'), field.end());
        return std::wstring(field.data());
    };
    EXPECT_EQ(shown(Reply{0, 0, 4, 'B', '0', 0, '7', 0}), L"B0");
    EXPECT_EQ(shown(Reply{0, 0, 0}), L"");
    for (const std::size_t length : {148U, 149U, 150U, 151U, 400U}) {
        EXPECT_EQ(shown(Reply(3 + length, 0xE9)), std::wstring(std::min<std::size_t>(length, 149), L'\u00E9'))
            << length;
    }
}

TEST(CardSecurityLevel, IsTheFourthByteOfAnyReplyThatHasOne) {
    for (std::size_t length = 4; length <= 70; ++length) {
        for (int level = 0; level < 256; ++level) {
            Reply reply(length, 0xEE);
            reply[3] = static_cast<std::uint8_t>(level);
            ASSERT_EQ(SecurityLevel(reply), level) << length;
        }
    }
}

TEST(CardSecurityLevel, OfALongReplyDoesNotDependOnTheResultCode) {
    for (int result = 0; result < 256; ++result) {
        ASSERT_EQ(SecurityLevel(Reply{0, static_cast<std::uint8_t>(result), 1, 4}), 4) << result;
    }
}

TEST(CardSecurityLevel, OfAShortReplyIsZeroWhenTheResultCodeIsGood) {
    EXPECT_EQ(SecurityLevel(Reply{0, 0}), 0);
    EXPECT_EQ(SecurityLevel(Reply{7, 0}), 0);
    EXPECT_EQ(SecurityLevel(Reply{0, 0, 0}), 0);
    EXPECT_EQ(SecurityLevel(Reply{0, 0, 1}), 0);
}

TEST(CardSecurityLevel, IsNotToldByAShortReplyWithAnotherResultCode) {
    for (int result = 1; result < 256; ++result) {
        const auto code = static_cast<std::uint8_t>(result);
        ASSERT_EQ(SecurityLevel(Reply{0, code}), std::nullopt) << result;
        ASSERT_EQ(SecurityLevel(Reply{0, code, 1}), std::nullopt) << result;
    }
}

TEST(CardSecurityLevel, IsNotToldByAReplyWithoutAResultCode) {
    EXPECT_EQ(SecurityLevel(Reply{}), std::nullopt);
    EXPECT_EQ(SecurityLevel(Reply{0}), std::nullopt);
    EXPECT_EQ(SecurityLevel(Reply{4}), std::nullopt);
}

// Unsigned: the levels from 128 on encrypt, too.
TEST(CardSecurityLevel, EncryptsFromThreeOn) {
    for (int level = 0; level < 256; ++level) {
        const auto told = SecurityLevel(Reply{0, 0, 1, static_cast<std::uint8_t>(level)});
        ASSERT_TRUE(told.has_value());
        ASSERT_EQ(*told >= msr::kEncryptingSecurityLevel, level >= 3) << level;
    }
}

}  // namespace
}  // namespace quarlin::test
