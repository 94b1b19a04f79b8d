// SPDX-License-Identifier: Apache-2.0
#include "core/bounded_text.h"

#include <gtest/gtest.h>
#include <cstdint>
#include <limits>
#include <string>

namespace quarlin {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kRefused = static_cast<std::int32_t>(0x80070057);
constexpr std::int32_t kCut = static_cast<std::int32_t>(0x8007007A);

template <typename Char>
std::basic_string<Char> Widened(const std::string& text) {
    return {text.begin(), text.end()};
}

// Both kinds of text follow the same rules.
template <typename Char>
class BoundedCopyOf : public testing::Test {
  protected:
    using String = std::basic_string<Char>;

    // The result, and the whole buffer of ten afterwards: a '#' was not written, a '0' is a terminator.
    struct Outcome {
        std::int32_t result;
        std::string buffer;
    };

    static Outcome Copy(std::int32_t count, const std::string& source) {
        String buffer(10, Char{'#'});
        Outcome outcome{BoundedCopy(buffer.data(), count, Widened<Char>(source).c_str()), {}};
        for (const Char c : buffer) {
            outcome.buffer.push_back(c == Char{} ? '0' : static_cast<char>(c));
        }
        return outcome;
    }

    static void Expect(std::int32_t count, const std::string& source, std::int32_t result, const std::string& buffer) {
        const Outcome outcome = Copy(count, source);
        EXPECT_EQ(outcome.result, result) << count << ' ' << source;
        EXPECT_EQ(outcome.buffer, buffer) << count << ' ' << source;
    }
};

using Characters = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(BoundedCopyOf, Characters);

TYPED_TEST(BoundedCopyOf, ATextThatFitsIsCopiedWithItsTerminatorAndNothingBehindIt) {
    this->Expect(10, "abcd", 0, "abcd0#####");
    this->Expect(6, "abcd", 0, "abcd0#####");
    this->Expect(5, "abcd", 0, "abcd0#####");
    this->Expect(10, "", 0, "0#########");
    this->Expect(1, "", 0, "0#########");
    this->Expect(10, "abcdefghi", 0, "abcdefghi0");
}

TYPED_TEST(BoundedCopyOf, ATextThatDoesNotFitIsCutAndReported) {
    this->Expect(4, "abcd", kCut, "abc0######");
    this->Expect(2, "abcd", kCut, "a0########");
    this->Expect(1, "abcd", kCut, "0#########");
    this->Expect(1, "a", kCut, "0#########");
    this->Expect(10, "abcdefghij", kCut, "abcdefghi0");
    this->Expect(10, std::string(5000, 'x'), kCut, "xxxxxxxxx0");
}

TYPED_TEST(BoundedCopyOf, ACountOfZeroWritesNothing) {
    this->Expect(0, "abcd", kRefused, "##########");
    this->Expect(0, "", kRefused, "##########");
}

TYPED_TEST(BoundedCopyOf, ANegativeCountLeavesATerminator) {
    for (const std::int32_t count : {-1, -2, -1000, kLeast, kLeast + 1}) {
        this->Expect(count, "abcd", kRefused, "0#########");
        this->Expect(count, "", kRefused, "0#########");
    }
}

TYPED_TEST(BoundedCopyOf, TheLargestCountIsLegal) {
    this->Expect(kMost, "abcd", 0, "abcd0#####");
    this->Expect(kMost - 1, "", 0, "0#########");
}

TYPED_TEST(BoundedCopyOf, EveryCountAroundTheLengthFollowsTheRule) {
    const std::string source = "abcdefg";
    for (std::int32_t count = 1; count <= 10; ++count) {
        const auto room = static_cast<std::size_t>(count) - 1;
        std::string buffer = source.substr(0, room) + '0';
        buffer.resize(10, '#');
        this->Expect(count, source, room >= source.size() ? 0 : kCut, buffer);
    }
}

TYPED_TEST(BoundedCopyOf, NullPointersAreRefused) {
    TypeParam buffer[2] = {TypeParam{'#'}, TypeParam{'#'}};
    const TypeParam* const nothing = nullptr;
    EXPECT_EQ(BoundedCopy(static_cast<TypeParam*>(nullptr), 5, buffer), kRefused);
    EXPECT_EQ(BoundedCopy(static_cast<TypeParam*>(nullptr), 0, buffer), kRefused);
    EXPECT_EQ(BoundedCopy(static_cast<TypeParam*>(nullptr), -5, buffer), kRefused);
    EXPECT_EQ(BoundedCopy(buffer, 2, nothing), kRefused);
    EXPECT_EQ(buffer[0], TypeParam{});
    EXPECT_EQ(buffer[1], TypeParam{'#'});
}

TYPED_TEST(BoundedCopyOf, MultibyteTextIsCutWhereTheCountSays) {
    const TypeParam source[] = {static_cast<TypeParam>(0xC3), static_cast<TypeParam>(0xA9), TypeParam{'x'},
                                TypeParam{}};
    TypeParam buffer[4] = {TypeParam{'#'}, TypeParam{'#'}, TypeParam{'#'}, TypeParam{'#'}};
    EXPECT_EQ(BoundedCopy(buffer, 2, source), kCut);
    EXPECT_EQ(buffer[0], source[0]);
    EXPECT_EQ(buffer[1], TypeParam{});
    EXPECT_EQ(buffer[2], TypeParam{'#'});
}

}  // namespace
}  // namespace quarlin
