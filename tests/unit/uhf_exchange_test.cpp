// SPDX-License-Identifier: Apache-2.0
#include "allocations.h"
#include "scripted_reader.h"
#include "uhfrfid/result_text.h"

#include <gtest/gtest.h>
#include <set>

namespace quarlin::test {
namespace {

using uhfrfid::TagReader;

const Outcome kUnclassified{QLERR_UHFRFID_UNCLASSIFIED, "QLERR_UHFRFID_UNCLASSIFIED"};

// The set power command: three bytes, and nothing of the answer but its head.
Outcome SetPower(ScriptedReader& reader) {
    return reader.Do([](TagReader& r) { r.SetPower(23); });
}

TEST(UhfExchange, SendsOneReportOfTheReadersSizeAndReadsOnce) {
    for (const std::size_t size : {3U, 4U, 64U, 65U, 1000U, 65535U}) {
        ScriptedReader reader(Answer({0xC1, 3, 0}), size);
        EXPECT_EQ(SetPower(reader), kDone) << size;
        EXPECT_EQ(reader.Frame(), (Bytes{0xC0, 3, 23})) << size;
        EXPECT_EQ(reader.reads, 1) << size;
        EXPECT_EQ(reader.capacity, 1024U) << size;
    }
}

TEST(UhfExchange, RefusesACommandLongerThanTheReportBeforeAnythingIsSent) {
    for (const std::size_t size : {0U, 1U, 2U}) {
        ScriptedReader reader(Answer({0xC1, 3, 0}), size);
        EXPECT_EQ(SetPower(reader), (Outcome{QLERR_UHFRFID_BUFFERTOOBIG, "QLERR_UHFRFID_BUFFERTOOBIG"})) << size;
        EXPECT_TRUE(reader.sent.empty()) << size;
        EXPECT_EQ(reader.reads, 0) << size;
    }
}

TEST(UhfExchange, ReportsARefusedCommandAndReadsNothing) {
    ScriptedReader reader(Answer({0xC1, 3, 0}));
    reader.accepts = false;
    EXPECT_EQ(SetPower(reader), (Outcome{QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND"}));
    EXPECT_EQ(reader.sent.size(), 1U);
    EXPECT_EQ(reader.reads, 0);
}

TEST(UhfExchange, ReportsThatThereIsNoMemoryForTheReportAndSendsNothing) {
    ScriptedReader reader(Answer({0xC1, 3, 0}));
    heapIsExhausted = true;
    const Outcome outcome = SetPower(reader);
    heapIsExhausted = false;
    EXPECT_EQ(outcome, (Outcome{QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM "}));
    EXPECT_TRUE(reader.sent.empty());
}

TEST(UhfExchange, ReportsAReadThatFailed) {
    ScriptedReader reader(Answer({0xC1, 3, 0}));
    reader.answers = false;
    EXPECT_EQ(SetPower(reader), (Outcome{QLERR_UHFRFID_COMMAND_RECEIVE, "QLERR_UHFRFID_COMMAND_RECEIVE"}));
    EXPECT_EQ(reader.sent.size(), 1U);
}

TEST(UhfExchange, NeedsThreeBytesOfAnswer) {
    const Bytes full{0xC1, 3, 0};
    for (std::size_t size = 0; size < full.size(); ++size) {
        ScriptedReader reader(Bytes(full.begin(), full.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(SetPower(reader), kUnclassified) << size;
    }
    ScriptedReader reader(full);
    EXPECT_EQ(SetPower(reader), kDone);
}

TEST(UhfExchange, DoesNotTakeWhatLiesBehindTheAnswerForTheAnswer) {
    // The buffer's rubbish is a good reply code.
    ScriptedReader reader(Bytes{0x5A, 15});
    unsigned int value = 77;
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.GetQuery(uhfrfid::kMiller, &value); }), kUnclassified);
    EXPECT_EQ(value, 77U);
}

TEST(UhfExchange, MatchesCodeAndLengthBeforeTheStatus) {
    ScriptedReader wrongLength(Answer({0xC1, 4, 0x84}));
    EXPECT_EQ(SetPower(wrongLength), kUnclassified);
    ScriptedReader wrongCode(Answer({0xC3, 3, 0x84}));
    EXPECT_EQ(SetPower(wrongCode), kUnclassified);
}

class UhfEveryOperation : public testing::TestWithParam<Operation> {};

TEST_P(UhfEveryOperation, RefusesAnyOtherReplyCode) {
    for (int code = 0; code < 256; ++code) {
        ScriptedReader reader(GetParam().GoodAnswer());
        reader.answer[0] = static_cast<std::uint8_t>(code);
        reader.answer[3] = 1;
        const Outcome outcome = reader.Do(GetParam().run);
        if (code == GetParam().replyCode) {
            EXPECT_EQ(outcome, kDone);
        } else {
            EXPECT_EQ(outcome, kUnclassified) << code;
        }
    }
}

TEST_P(UhfEveryOperation, RefusesAnyOtherReplyLength) {
    for (int length = 0; length < 256; ++length) {
        ScriptedReader reader(GetParam().GoodAnswer());
        reader.answer[1] = static_cast<std::uint8_t>(length);
        reader.answer[3] = 1;
        const Outcome outcome = reader.Do(GetParam().run);
        if (length == GetParam().replyLength) {
            EXPECT_EQ(outcome, kDone);
        } else {
            EXPECT_EQ(outcome, kUnclassified) << length;
        }
    }
}

TEST_P(UhfEveryOperation, ReportsEveryStatusAsItsCode) {
    const std::set<int> named{0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0F,
                              0x20, 0x80, 0x83, 0x84, 0x8B, 0x8F, 0xA0, 0xB0, 0xFE, 0xFF};
    for (int status = 1; status < 256; ++status) {
        ScriptedReader reader(GetParam().GoodAnswer());
        reader.answer[2] = static_cast<std::uint8_t>(status);
        const auto code = static_cast<QLerr>(65536 + status);
        const std::string text = named.contains(status) ? uhfrfid::ReaderMessage(code) : "Unknown Error";
        EXPECT_EQ(reader.Do(GetParam().run), (Outcome{code, text})) << status;
        EXPECT_EQ(text == "Unknown Error", !named.contains(status)) << status;
        EXPECT_EQ(reader.reads, 1) << "nothing is retried";
    }
}

TEST_P(UhfEveryOperation, ReportsAStatusThatCameWithoutAnythingMore) {
    ScriptedReader reader(Bytes{GetParam().replyCode, GetParam().replyLength, 0x04});
    EXPECT_EQ(reader.Do(GetParam().run), (Outcome{QLERR_UHFRFID_NOREPLY, "QLERR_UHFRFID_NOREPLY"}));
}

TEST_P(UhfEveryOperation, SendsItsLengthAndZerosBehindItsFrame) {
    ScriptedReader reader(GetParam().GoodAnswer());
    reader.answer[3] = 1;
    ASSERT_EQ(reader.Do(GetParam().run), kDone);
    const Bytes frame = reader.Frame();
    ASSERT_GE(frame.size(), 2U);
    EXPECT_EQ(frame[0] + 1, GetParam().replyCode);
}

INSTANTIATE_TEST_SUITE_P(Operations, UhfEveryOperation, testing::ValuesIn(Operations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace quarlin::test
