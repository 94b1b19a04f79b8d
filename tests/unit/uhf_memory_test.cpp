// SPDX-License-Identifier: Apache-2.0
#include "scripted_reader.h"

#include <gtest/gtest.h>
#include <array>
#include <climits>
#include <numeric>

namespace quarlin::test {
namespace {

using uhfrfid::TagReader;

const Outcome kInvalid{QLERR_INVALID_ARGUMENT, "QLERR_INVALID_ARGUMENT"};
const Outcome kUnclassified{QLERR_UHFRFID_UNCLASSIFIED, "QLERR_UHFRFID_UNCLASSIFIED"};
const Outcome kTooSmall{QLERR_UHFRFID_BUFFERTOOSMALL, "QLERR_UHFRFID_BUFFERTOOSMALL"};

constexpr unsigned char kPassword[]{0x11, 0x22, 0x33, 0x44};

struct Numbers {
    unsigned int bank = 3;
    unsigned int wordPointer = 2;
    int passwordLength = 4;
    int wordCount = 4;
};

// Runs a read whose data must not be written when it fails.
struct ReadCall : Numbers {
    const unsigned char* password = kPassword;
    std::array<unsigned char, 600> data;

    explicit ReadCall(Numbers numbers = {}) : Numbers(numbers) { data.fill('#'); }

    Outcome Run(ScriptedReader& reader) {
        return reader.Do(
            [&](TagReader& r) { r.ReadMemory(bank, wordPointer, password, passwordLength, data.data(), wordCount); });
    }
    bool IsUntouchedFrom(std::size_t offset) const {
        return std::all_of(data.begin() + static_cast<std::ptrdiff_t>(offset), data.end(),
                           [](unsigned char byte) { return byte == '#'; });
    }
};

Bytes WordsAnswer(std::uint8_t words, std::size_t size = 64) {
    Bytes answer = Answer({0x38, 64, 0, words}, std::max<std::size_t>(size, 4));
    std::iota(answer.begin() + 4, answer.end(), std::uint8_t{0xA0});
    answer.resize(size);
    return answer;
}

TEST(UhfRead, SendsBankPointerPasswordAndCount) {
    ScriptedReader reader(WordsAnswer(4));
    EXPECT_EQ(ReadCall({1, 0x20, 4, 6}).Run(reader), kDone);
    EXPECT_EQ(reader.Frame(), (Bytes{0x37, 9, 1, 0x20, 0x44, 0x33, 0x22, 0x11, 6}));
}

TEST(UhfRead, SendsAShortPasswordReversedAndFilledUpWithZeros) {
    const std::array<Bytes, 5> fields{
        {{}, {0x11, 0, 0, 0}, {0x22, 0x11, 0, 0}, {0x33, 0x22, 0x11, 0}, {0x44, 0x33, 0x22, 0x11}}};
    for (int length = 1; length <= 4; ++length) {
        ScriptedReader reader(WordsAnswer(0));
        EXPECT_EQ(ReadCall({3, 2, length, 4}).Run(reader), kDone);
        const Bytes frame = reader.Frame();
        ASSERT_EQ(frame.size(), 9U);
        EXPECT_EQ(Bytes(frame.begin() + 4, frame.begin() + 8), fields[static_cast<std::size_t>(length)]) << length;
    }
}

TEST(UhfRead, PassesAnyBankPointerAndCountOfOneByteOn) {
    for (const unsigned int value : {0U, 1U, 4U, 127U, 128U, 255U}) {
        ScriptedReader reader(WordsAnswer(0));
        EXPECT_EQ(ReadCall({value, 255 - value, 1, static_cast<int>(value)}).Run(reader), kDone) << value;
        const auto byte = static_cast<std::uint8_t>(value);
        EXPECT_EQ(reader.Frame(), (Bytes{0x37, 9, byte, static_cast<std::uint8_t>(255 - byte), 0x11, 0, 0, 0, byte}));
    }
}

TEST(UhfRead, CopiesTheWordsAsReceivedAndNothingBehindThem) {
    for (std::uint8_t words = 0; words <= 4; ++words) {
        ScriptedReader reader(WordsAnswer(words));
        ReadCall call;
        ASSERT_EQ(call.Run(reader), kDone);
        for (std::size_t i = 0; i < 2U * words; ++i) {
            EXPECT_EQ(call.data[i], 0xA0 + i);
        }
        EXPECT_TRUE(call.IsUntouchedFrom(2U * words)) << int{words};
    }
}

TEST(UhfRead, OfMoreWordsThanTheBufferHoldsWritesNothing) {
    for (int wordCount = 0; wordCount < 30; ++wordCount) {
        ScriptedReader reader(WordsAnswer(30));
        ReadCall call({3, 0, 4, wordCount});
        EXPECT_EQ(call.Run(reader), kTooSmall) << wordCount;
        EXPECT_TRUE(call.IsUntouchedFrom(0)) << wordCount;
    }
    ScriptedReader reader(WordsAnswer(30));
    EXPECT_EQ(ReadCall({3, 0, 4, 30}).Run(reader), kDone);
}

TEST(UhfRead, RefusesACountThatGoesBeyondWhatWasReceived) {
    for (int words = 0; words < 256; ++words) {
        for (const int wordCount : {0, 2, 30, 31, 255}) {
            ScriptedReader reader(WordsAnswer(static_cast<std::uint8_t>(words)));
            ReadCall call({3, 0, 4, wordCount});
            const Outcome outcome = call.Run(reader);
            if (words > 30) {
                EXPECT_EQ(outcome, kUnclassified) << words << ' ' << wordCount;
                EXPECT_TRUE(call.IsUntouchedFrom(0)) << words << ' ' << wordCount;
            } else {
                EXPECT_EQ(outcome, words <= wordCount ? kDone : kTooSmall) << words << ' ' << wordCount;
            }
        }
    }
}

TEST(UhfRead, RefusesAReplyThatEndsTooEarlyWhereverItEnds) {
    for (std::size_t size = 3; size < 4 + 8; ++size) {
        ScriptedReader reader(WordsAnswer(4, size));
        ReadCall call;
        EXPECT_EQ(call.Run(reader), kUnclassified) << size;
        EXPECT_TRUE(call.IsUntouchedFrom(0)) << size;
    }
    ScriptedReader reader(WordsAnswer(4, 4 + 8));
    EXPECT_EQ(ReadCall().Run(reader), kDone);
}

TEST(UhfRead, TakesTheMostWordsOfALargerReport) {
    ScriptedReader reader(WordsAnswer(255, 4 + 510));
    ReadCall call({3, 0, 4, 255});
    EXPECT_EQ(call.Run(reader), kDone);
    EXPECT_TRUE(call.IsUntouchedFrom(510));
    EXPECT_FALSE(call.IsUntouchedFrom(509));
}

TEST(UhfRead, WantsDataAndPassword) {
    ScriptedReader reader(WordsAnswer(0));
    unsigned char data[8];
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.ReadMemory(3, 0, kPassword, 4, nullptr, 4); }), kInvalid);
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.ReadMemory(3, 0, nullptr, 4, data, 4); }), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

struct BadNumbers {
    const char* name;
    Numbers numbers;
};

void PrintTo(const BadNumbers& bad, std::ostream* stream) {
    *stream << bad.name;
}

constexpr std::array kBadForBoth{
    BadNumbers{"Bank256", {256, 0, 4, 4}},
    BadNumbers{"BankWithItsLowByteGood", {0x103, 0, 4, 4}},
    BadNumbers{"LargestBank", {UINT_MAX, 0, 4, 4}},
    BadNumbers{"Pointer256", {3, 256, 4, 4}},
    BadNumbers{"PointerWithItsLowByteGood", {3, 0x80000002, 4, 4}},
    BadNumbers{"NoPassword", {3, 0, 0, 4}},
    BadNumbers{"NegativePassword", {3, 0, -1, 4}},
    BadNumbers{"PasswordOfFive", {3, 0, 5, 4}},
    BadNumbers{"PasswordOf256", {3, 0, 256, 4}},
    BadNumbers{"PasswordWithItsLowByteGood", {3, 0, 0x104, 4}},
    BadNumbers{"NegativePasswordWithItsLowByteGood", {3, 0, INT_MIN + 4, 4}},
    BadNumbers{"NegativeCount", {3, 0, 4, -1}},
    BadNumbers{"SmallestCount", {3, 0, 4, INT_MIN}},
    BadNumbers{"Count256", {3, 0, 4, 256}},
    BadNumbers{"CountWithItsLowByteGood", {3, 0, 4, 0x10004}},
};

class UhfBadNumbers : public testing::TestWithParam<BadNumbers> {};

TEST_P(UhfBadNumbers, AreRefusedByReadingAndNothingIsSent) {
    ScriptedReader reader(WordsAnswer(0));
    EXPECT_EQ(ReadCall(GetParam().numbers).Run(reader), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

TEST_P(UhfBadNumbers, AreRefusedByWritingAndNothingIsSent) {
    ScriptedReader reader(Answer({0x36, 4, 0, 0}));
    const Numbers& n = GetParam().numbers;
    const Bytes data(600);
    EXPECT_EQ(reader.Do([&](TagReader& r) {
        r.WriteMemory(n.bank, n.wordPointer, kPassword, n.passwordLength, data.data(), n.wordCount);
    }),
              kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

INSTANTIATE_TEST_SUITE_P(Numbers, UhfBadNumbers, testing::ValuesIn(kBadForBoth),
                         [](const auto& test) { return test.param.name; });

Outcome Write(ScriptedReader& reader, int wordCount, const Bytes& data) {
    return reader.Do([&](TagReader& r) { r.WriteMemory(3, 1, kPassword, 2, data.data(), wordCount); });
}

TEST(UhfWrite, SendsTheDataAsGivenBehindTheHead) {
    for (int words = 1; words <= 27; ++words) {
        // Exactly as long as the words: a byte read beyond them is noticed.
        Bytes data(2 * static_cast<std::size_t>(words));
        std::iota(data.begin(), data.end(), std::uint8_t{0xB0});
        ScriptedReader reader(Answer({0x36, 4, 0, 0x77}));
        EXPECT_EQ(Write(reader, words, data), kDone) << words;
        Bytes expected{0x35, static_cast<std::uint8_t>(9 + 2 * words), 3, 1, 0x22, 0x11, 0,
                       0,    static_cast<std::uint8_t>(words)};
        expected.insert(expected.end(), data.begin(), data.end());
        EXPECT_EQ(reader.Frame(), expected) << words;
    }
}

TEST(UhfWrite, WantsOneTo27Words) {
    const Bytes data(600);
    for (const int words : {0, 28, 29, 255, -27}) {
        ScriptedReader reader(Answer({0x36, 4, 0, 0}));
        EXPECT_EQ(Write(reader, words, data), kInvalid) << words;
        EXPECT_TRUE(reader.sent.empty()) << words;
    }
}

TEST(UhfWrite, WantsDataAndPassword) {
    ScriptedReader reader(Answer({0x36, 4, 0, 0}));
    const Bytes data(8);
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.WriteMemory(3, 0, kPassword, 4, nullptr, 4); }), kInvalid);
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.WriteMemory(3, 0, nullptr, 4, data.data(), 4); }), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

TEST(UhfWrite, DoesNotNeedTheLastByteOfTheReply) {
    ScriptedReader reader(Bytes{0x36, 4, 0});
    EXPECT_EQ(Write(reader, 1, Bytes{1, 2}), kDone);
}

TEST(UhfWrite, TooLongForASmallReportIsNotSent) {
    ScriptedReader reader(Answer({0x36, 4, 0, 0}), 62);
    EXPECT_EQ(Write(reader, 27, Bytes(54)), (Outcome{QLERR_UHFRFID_BUFFERTOOBIG, "QLERR_UHFRFID_BUFFERTOOBIG"}));
    EXPECT_TRUE(reader.sent.empty());
    EXPECT_EQ(Write(reader, 26, Bytes(52)), kDone);
}

}  // namespace
}  // namespace quarlin::test
