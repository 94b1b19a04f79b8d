// SPDX-License-Identifier: Apache-2.0
#include "scripted_reader.h"

#include <gtest/gtest.h>
#include <climits>
#include <numeric>

namespace quarlin::test {
namespace {

using uhfrfid::TagReader;

const Outcome kInvalid{QLERR_INVALID_ARGUMENT, "QLERR_INVALID_ARGUMENT"};
const Outcome kUnclassified{QLERR_UHFRFID_UNCLASSIFIED, "QLERR_UHFRFID_UNCLASSIFIED"};
const Outcome kTooSmall{QLERR_UHFRFID_BUFFERTOOSMALL, "QLERR_UHFRFID_BUFFERTOOSMALL"};

constexpr unsigned char kPassword[]{0x11, 0x22, 0x33, 0x44};
constexpr unsigned char kShortPassword[]{0xAA, 0xBB};
constexpr int kBadPasswordLengths[]{0, -1, INT_MIN, INT_MIN + 4, 5, 255, 256, 0x104, INT_MAX};

Outcome Select(ScriptedReader& reader, const unsigned char* tagId, unsigned int length) {
    return reader.Do([&](TagReader& r) { r.Select(tagId, length); });
}

TEST(UhfSelect, SendsAllButTheFirstTwoBytes) {
    for (unsigned int length = 3; length <= 33; ++length) {
        Bytes tagId(length);
        std::iota(tagId.begin(), tagId.end(), std::uint8_t{0xD0});
        ScriptedReader reader(Answer({0x34, 3, 0}));
        EXPECT_EQ(Select(reader, tagId.data(), length), kDone) << length;
        Bytes expected{0x33, static_cast<std::uint8_t>(length + 1), static_cast<std::uint8_t>(length - 2)};
        expected.insert(expected.end(), tagId.begin() + 2, tagId.end());
        EXPECT_EQ(reader.Frame(), expected) << length;
    }
}

TEST(UhfSelect, OfFourteenBytesSendsAFrameOfFifteen) {
    const Bytes tagId{0x30, 0x00, 0xE2, 0x80, 0x11, 0x60, 0x60, 0x00, 0x02, 0x0C, 0x1A, 0x2B, 0x3C, 0x4D};
    ScriptedReader reader(Answer({0x34, 3, 0}));
    EXPECT_EQ(Select(reader, tagId.data(), 14), kDone);
    EXPECT_EQ(reader.Frame(),
              (Bytes{0x33, 15, 12, 0xE2, 0x80, 0x11, 0x60, 0x60, 0x00, 0x02, 0x0C, 0x1A, 0x2B, 0x3C, 0x4D}));
}

TEST(UhfSelect, ChecksThePointerAndTheLimitThenTooShortThenTooLong) {
    const Bytes tagId(300);
    ScriptedReader reader(Answer({0x34, 3, 0}));
    for (const unsigned int length : {0U, 2U, 14U, 34U, 256U}) {
        EXPECT_EQ(Select(reader, nullptr, length), kInvalid) << length;
    }
    for (const unsigned int length : {0U, 1U, 2U}) {
        EXPECT_EQ(Select(reader, tagId.data(), length), kTooSmall) << length;
    }
    for (const unsigned int length : {34U, 35U, 255U, 256U, 257U, 256U + 14U, 0x80000000U, UINT_MAX}) {
        EXPECT_EQ(Select(reader, tagId.data(), length), kInvalid) << length;
    }
    EXPECT_TRUE(reader.sent.empty());
}

TEST(UhfLock, SendsBothParametersAndThePassword) {
    ScriptedReader reader(Answer({0x3C, 3, 0}));
    EXPECT_EQ(reader.Do([](TagReader& r) { r.Lock(0x0C, 0xF8, kPassword, 4); }), kDone);
    EXPECT_EQ(reader.Frame(), (Bytes{0x3B, 8, 0x0C, 0xF8, 0x44, 0x33, 0x22, 0x11}));
    ScriptedReader extremes(Answer({0x3C, 3, 0}));
    EXPECT_EQ(extremes.Do([](TagReader& r) { r.Lock(255, 0, kShortPassword, 2); }), kDone);
    EXPECT_EQ(extremes.Frame(), (Bytes{0x3B, 8, 0xFF, 0, 0xBB, 0xAA, 0, 0}));
}

TEST(UhfLock, RefusesWhatIsNoByteAndBadPasswords) {
    ScriptedReader reader(Answer({0x3C, 3, 0}));
    for (const unsigned int value : {256U, 0x101U, 0x80000000U, UINT_MAX}) {
        EXPECT_EQ(reader.Do([&](TagReader& r) { r.Lock(value, 0, kPassword, 4); }), kInvalid) << value;
        EXPECT_EQ(reader.Do([&](TagReader& r) { r.Lock(0, value, kPassword, 4); }), kInvalid) << value;
    }
    for (const int length : kBadPasswordLengths) {
        EXPECT_EQ(reader.Do([&](TagReader& r) { r.Lock(0, 0, kPassword, length); }), kInvalid) << length;
    }
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.Lock(0, 0, nullptr, 4); }), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

TEST(UhfKill, SendsThePassword) {
    ScriptedReader reader(Answer({0x3E, 3, 0}));
    EXPECT_EQ(reader.Do([](TagReader& r) { r.Kill(kPassword, 4); }), kDone);
    EXPECT_EQ(reader.Frame(), (Bytes{0x3D, 6, 0x44, 0x33, 0x22, 0x11}));
    ScriptedReader two(Answer({0x3E, 3, 0}));
    EXPECT_EQ(two.Do([](TagReader& r) { r.Kill(kShortPassword, 2); }), kDone);
    EXPECT_EQ(two.Frame(), (Bytes{0x3D, 6, 0xBB, 0xAA, 0, 0}));
}

TEST(UhfKill, RefusesBadPasswords) {
    ScriptedReader reader(Answer({0x3E, 3, 0}));
    for (const int length : kBadPasswordLengths) {
        EXPECT_EQ(reader.Do([&](TagReader& r) { r.Kill(kPassword, length); }), kInvalid) << length;
    }
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.Kill(nullptr, 4); }), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

TEST(UhfPower, IsSentAsOneByte) {
    for (const unsigned int power : {0U, 23U, 128U, 255U}) {
        ScriptedReader reader(Answer({0xC1, 3, 0}));
        EXPECT_EQ(reader.Do([&](TagReader& r) { r.SetPower(power); }), kDone) << power;
        EXPECT_EQ(reader.Frame(), (Bytes{0xC0, 3, static_cast<std::uint8_t>(power)}));
    }
    ScriptedReader reader(Answer({0xC1, 3, 0}));
    for (const unsigned int power : {256U, 0x117U, 0x80000000U, UINT_MAX}) {
        EXPECT_EQ(reader.Do([&](TagReader& r) { r.SetPower(power); }), kInvalid) << power;
    }
    EXPECT_TRUE(reader.sent.empty());
}

TEST(UhfPower, IsReadWithoutASign) {
    for (int byte = 0; byte < 256; ++byte) {
        ScriptedReader reader(Bytes{0xC3, 4, 0, static_cast<std::uint8_t>(byte)});
        unsigned int power = 0x77777777;
        EXPECT_EQ(reader.Do([&](TagReader& r) { r.GetPower(&power); }), kDone);
        EXPECT_EQ(power, static_cast<unsigned int>(byte));
        EXPECT_EQ(reader.Frame(), (Bytes{0xC2, 2}));
    }
}

TEST(UhfPower, IsNotMadeUpWhenItsByteDidNotCome) {
    ScriptedReader reader(Bytes{0xC3, 4, 0});
    unsigned int power = 777;
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.GetPower(&power); }), kUnclassified);
    EXPECT_EQ(power, 777U);
}

TEST(UhfPower, NeedsAPlaceToGo) {
    ScriptedReader reader(Bytes{0xC3, 4, 0, 1});
    EXPECT_EQ(reader.Do([](TagReader& r) { r.GetPower(nullptr); }), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

}  // namespace
}  // namespace quarlin::test
