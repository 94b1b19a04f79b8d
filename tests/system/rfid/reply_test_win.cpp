// SPDX-License-Identifier: Apache-2.0
// Replies that lie about themselves, are cut short, or come when nobody has asked; reports of other sizes than usual.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kUnclassified = "QLERR_UHFRFID_UNCLASSIFIED";
constexpr const char* kTooSmall = "QLERR_UHFRFID_BUFFERTOOSMALL";

// What reading hands out, with room for every count that a byte can say.
struct ReadWords {
    QLerr From(void* handle, int words) {
        data.fill('?');
        Password none({0});
        return QLUHFRFID_ReadTag(handle, 3, 0, none.Data(), none.Length(), data.data(), words);
    }
    // As text, without what is untouched at the end.
    std::string Text() const {
        std::size_t used = data.size();
        while (used > 0 && data[used - 1] == '?') {
            --used;
        }
        return sim::HexText(std::span(data).first(used));
    }

    std::array<unsigned char, 520> data{};
};

TEST(RfidWordCount, ThatPointsBehindTheReplyIsRefusedAndNothingIsWritten) {
    RfidSession session;
    ReadWords words;
    for (const std::uint8_t count : Bytes{31, 32, 128, 255}) {
        for (const int room : {0, 2, 30, 255}) {
            SCOPED_TRACE(std::to_string(count) + " words, room for " + std::to_string(room));
            session.reader->AddFault(UhfFault::Status(0));
            session.reader->AddFault(UhfFault::WordCount(count));
            EXPECT_FAILURE(words.From(session.handle, room), QLERR_UHFRFID_UNCLASSIFIED, kUnclassified);
            EXPECT_EQ(words.Text(), "");
        }
    }
}

TEST(RfidWordCount, OfAWholeReplyIsTakenAtItsWord) {
    RfidSession session;
    ReadWords words;
    session.reader->AddFault(UhfFault::Status(0).Always());
    session.reader->AddFault(UhfFault::WordCount(30).Always());
    session.reader->AddFault(UhfFault::Byte(4, 0x5A).Always());
    session.reader->AddFault(UhfFault::Byte(63, 0xA5).Always());
    EXPECT_FAILURE(words.From(session.handle, 29), QLERR_UHFRFID_BUFFERTOOSMALL, kTooSmall);
    EXPECT_EQ(words.Text(), "");
    for (const int room : {30, 31, 255}) {
        EXPECT_DONE(words.From(session.handle, room));
        EXPECT_EQ(words.Text(), "5A" + std::string(2 * 58, '0') + "A5");
    }
}

struct FoundTag {
    QLerr From(void* handle, int room) {
        tagId.fill('?');
        length = room;
        signal = 77;
        return QLUHFRFID_GetFirstTag(handle, tagId.data(), &length, &signal);
    }
    std::string Text() const {
        const std::span id(reinterpret_cast<const std::uint8_t*>(tagId.data()), tagId.size());
        std::size_t used = id.size();
        while (used > 0 && id[used - 1] == '?') {
            --used;
        }
        return sim::HexText(id.first(used));
    }

    std::array<char, 300> tagId{};
    int length = 0;
    int signal = 0;
};

void ExpectUntouched(const FoundTag& tag, int room) {
    EXPECT_EQ(tag.Text(), "");
    EXPECT_EQ(tag.length, room);
    EXPECT_EQ(tag.signal, 77);
}

TEST(RfidIdentifierLength, ThatPointsBehindTheReplyIsRefusedAndNothingIsWritten) {
    RfidSession session;
    FoundTag tag;
    for (const std::uint8_t length : Bytes{56, 57, 128, 255}) {
        for (const int room : {0, 55, 255}) {
            SCOPED_TRACE(std::to_string(length) + " bytes, room for " + std::to_string(room));
            session.reader->AddFault(UhfFault::IdentifierLength(length));
            EXPECT_FAILURE(tag.From(session.handle, room), QLERR_UHFRFID_UNCLASSIFIED, kUnclassified);
            ExpectUntouched(tag, room);
        }
    }
}

TEST(RfidIdentifierLength, OfAWholeReplyIsTakenAtItsWord) {
    RfidSession session;
    FoundTag tag;
    const std::string whole = kLabelId + std::string(2 * 41, '0');
    session.reader->AddFault(UhfFault::IdentifierLength(55));
    EXPECT_FAILURE(tag.From(session.handle, 54), QLERR_UHFRFID_BUFFERTOOSMALL, kTooSmall);
    ExpectUntouched(tag, 54);
    session.reader->AddFault(UhfFault::IdentifierLength(55));
    EXPECT_DONE(tag.From(session.handle, 55));
    EXPECT_EQ(tag.Text(), whole);
    EXPECT_EQ(tag.length, 55);
}

// The reply says that it has its full length, and holds less.
TEST(RfidShortReports, AreRefusedWhereTheyMissWhatTheFunctionLooksAt) {
    for (const std::size_t size : {2, 3, 4, 5, 6, 8, 11, 12, 14, 15, 22, 23, 1024}) {
        SCOPED_TRACE(size);
        RfidSession session(WithReports(64, size));
        for (const ReaderFunction& function : ReaderFunctions()) {
            SCOPED_TRACE(function.name);
            if (size >= function.replyBytes) {
                EXPECT_DONE(function.call(session.handle));
            } else {
                EXPECT_FAILURE(function.call(session.handle), QLERR_UHFRFID_UNCLASSIFIED, kUnclassified);
            }
            EXPECT_EQ(session.reader.TakeReports(), Reports{Report(function.frame)});
        }
    }
}

TEST(RfidShortReports, GiveTheWordsThatTheyHold) {
    RfidSession session(WithReports(64, 12));
    ReadWords words;
    EXPECT_DONE(words.From(session.handle, 4));
    EXPECT_EQ(words.Text(), "0001020304050607");
    EXPECT_FAILURE(words.From(session.handle, 5), QLERR_UHFRFID_UNCLASSIFIED, kUnclassified);
    EXPECT_EQ(words.Text(), "");
}

// 1024 bytes are asked for, and such a reader has none that short.
TEST(RfidLongReports, CannotBeRead) {
    for (const std::size_t size : {1025, 4096}) {
        SCOPED_TRACE(size);
        RfidSession session(WithReports(64, size));
        for (const ReaderFunction& function : ReaderFunctions()) {
            SCOPED_TRACE(function.name);
            EXPECT_FAILURE(function.call(session.handle), QLERR_UHFRFID_COMMAND_RECEIVE,
                           "QLERR_UHFRFID_COMMAND_RECEIVE");
        }
    }
}

TEST(RfidOutputReports, AreAsLongAsTheReaderSaysAndRefusedWhereTheCommandIsLonger) {
    for (const std::size_t size : {2, 3, 5, 6, 7, 8, 9, 13, 14, 15, 65}) {
        SCOPED_TRACE(size);
        RfidSession session(WithReports(size, 64));
        // So that there is a next tag, also where the first cannot be asked for.
        session.reader->With([](sim::UhfEngine& engine) { engine.Execute(Bytes{0x43, 3, 1}); });
        for (const ReaderFunction& function : ReaderFunctions()) {
            SCOPED_TRACE(function.name);
            if (function.frame.size() / 2 <= size) {
                EXPECT_DONE(function.call(session.handle));
                EXPECT_EQ(session.reader.TakeReports(), Reports{Report(function.frame, size)});
            } else {
                EXPECT_FAILURE(function.call(session.handle), QLERR_UHFRFID_BUFFERTOOBIG, "QLERR_UHFRFID_BUFFERTOOBIG");
                EXPECT_EQ(session.reader.TakeReports(), Reports{});
            }
        }
    }
}

// A reply carries nothing that tells which command it belongs to, beyond the command's code.
TEST(RfidReply, ThatNobodyAskedForIsTakenForTheNextOne) {
    RfidSession session;
    ASSERT_TRUE(session.reader->SendReport({0xC3, 4, 0, 99}));
    unsigned int power = 0;
    EXPECT_DONE(QLUHFRFID_GetPower(session.handle, &power));
    EXPECT_EQ(power, 99U);
    // The true reply is still there.
    EXPECT_FAILURE(QLUHFRFID_SetPower(session.handle, 30), QLERR_UHFRFID_UNCLASSIFIED, kUnclassified);
    // Opening anew begins anew.
    session.handle.Reopen();
    EXPECT_DONE(QLUHFRFID_GetPower(session.handle, &power));
    EXPECT_EQ(power, 30U);
}

}  // namespace
}  // namespace quarlin::test
