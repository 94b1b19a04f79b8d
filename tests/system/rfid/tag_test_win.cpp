// SPDX-License-Identifier: Apache-2.0
// Simulated tags, really read, written, locked and killed.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

constexpr unsigned int kReserved = 0;
constexpr unsigned int kEpc = 1;
constexpr unsigned int kTid = 2;
constexpr unsigned int kUser = 3;

Password NoPassword() {
    return Password({0, 0, 0, 0});
}
// The last byte differs.
Password WrongPassword() {
    return Password({0xAB, 0xBB, 0, 0});
}

struct TagSession : RfidSession {
    TagSession() : RfidSession(TwoTags()) {}

    QLerr Select(const std::string& id) {
        Bytes bytes = Hex(id);
        return QLUHFRFID_SelectTag(handle, bytes.data(), static_cast<unsigned int>(bytes.size()));
    }
    // What is read is in `words`.
    QLerr Read(unsigned int bank, unsigned int pointer, int count, Password password = AccessPassword()) {
        std::array<unsigned char, 64> data;
        data.fill('?');
        const QLerr result =
            QLUHFRFID_ReadTag(handle, bank, pointer, password.Data(), password.Length(), data.data(), count);
        std::size_t used = data.size();
        while (used > 0 && data[used - 1] == '?') {
            --used;
        }
        words = sim::HexText(std::span(data).first(used));
        return result;
    }
    QLerr Write(unsigned int bank, unsigned int pointer, const std::string& data,
                Password password = AccessPassword()) {
        Bytes bytes = Hex(data);
        return QLUHFRFID_WriteTag(handle, bank, pointer, password.Data(), password.Length(), bytes.data(),
                                  static_cast<int>(bytes.size() / 2));
    }
    QLerr Lock(unsigned int area, unsigned int state, Password password = AccessPassword()) {
        return QLUHFRFID_LockTag(handle, area, state, password.Data(), password.Length());
    }
    QLerr Kill(Password password = KillPassword()) {
        return QLUHFRFID_KillTag(handle, password.Data(), password.Length());
    }

    std::string words;
};

TEST(RfidRead, GivesTheWordsOfEveryBankAsTheTagSendsThem) {
    TagSession session;
    EXPECT_DONE(session.Read(kUser, 0, 8));
    EXPECT_EQ(session.words, "000102030405060708090A0B0C0D0E0F");
    EXPECT_DONE(session.Read(kUser, 7, 1));
    EXPECT_EQ(session.words, "0E0F");
    EXPECT_DONE(session.Read(kTid, 0, 6));
    EXPECT_EQ(session.words, "E280116020007F3C88A80001");
    EXPECT_DONE(session.Read(kEpc, 1, 7));
    EXPECT_EQ(session.words, kLabelId);
    EXPECT_DONE(session.Read(kReserved, 0, 4));
    EXPECT_EQ(session.words, "1A2B3C4DBBAA0000");
}

// A tag understands 0 as "all that are left".
TEST(RfidRead, OfMoreWordsThanTheCallerAskedForWritesNothing) {
    TagSession session;
    EXPECT_FAILURE(session.Read(kUser, 0, 0), QLERR_UHFRFID_BUFFERTOOSMALL, "QLERR_UHFRFID_BUFFERTOOSMALL");
    EXPECT_EQ(session.words, "");
    session.reader->AddFault(UhfFault::WordCount(4));
    EXPECT_FAILURE(session.Read(kUser, 0, 2), QLERR_UHFRFID_BUFFERTOOSMALL, "QLERR_UHFRFID_BUFFERTOOSMALL");
    EXPECT_EQ(session.words, "");
}

TEST(RfidRead, OfFewerWordsThanTheCallerAskedForLeavesTheRest) {
    TagSession session;
    session.reader->AddFault(UhfFault::WordCount(1));
    EXPECT_DONE(session.Read(kUser, 0, 8));
    EXPECT_EQ(session.words, "0001");
    session.reader->AddFault(UhfFault::WordCount(0));
    EXPECT_DONE(session.Read(kUser, 0, 8));
    EXPECT_EQ(session.words, "");
}

TEST(RfidRead, FailsBehindTheMemoryAndWithAWrongPassword) {
    TagSession session;
    EXPECT_FAILURE(session.Read(kUser, 6, 3), QLERR_UHFRFID_MEMORY_OVERRUN, "QLERR_UHFRFID_MEMORY_OVERRUN");
    EXPECT_FAILURE(session.Read(kUser, 255, 1), QLERR_UHFRFID_MEMORY_OVERRUN, "QLERR_UHFRFID_MEMORY_OVERRUN");
    EXPECT_FAILURE(session.Read(kUser, 0, 1, WrongPassword()), QLERR_UHFRFID_ACCESS, "QLERR_UHFRFID_ACCESS");
    EXPECT_FAILURE(session.Read(4, 0, 1), QLERR_UHFRFID_INVALID_PARAMETER2, "QLERR_UHFRFID_INVALID_PARAMETER2");
    EXPECT_EQ(session.words, "");
}

TEST(RfidWrite, ChangesTheTagAndNothingAroundTheWords) {
    TagSession session;
    EXPECT_DONE(session.Write(kUser, 2, "CAFEBABE00FF"));
    EXPECT_EQ(session.reader.Memory(0, TagBank::kUser), Hex("00010203CAFEBABE00FF0A0B0C0D0E0F"));
    EXPECT_EQ(session.reader.Memory(1, TagBank::kUser), Crate().user);
    EXPECT_DONE(session.Read(kUser, 1, 5));
    EXPECT_EQ(session.words, "0203CAFEBABE00FF0A0B");
    // A new EPC, which the next round then shows.
    EXPECT_DONE(session.Write(kEpc, 2, "111122223333444455556666"));
    std::array<char, 64> tagId{};
    int length = 64;
    int signal = 0;
    EXPECT_DONE(QLUHFRFID_GetFirstTag(session.handle, tagId.data(), &length, &signal));
    EXPECT_EQ(Bytes(tagId.begin(), tagId.begin() + length), Hex("3000111122223333444455556666"));
}

TEST(RfidWrite, OfTwentySevenWordsArrivesWhole) {
    TagSettings tag = Label();
    tag.user.assign(60, 0);
    const RfidReaderTurn turn;
    TestReader reader(WithTags({tag}));
    const OpenedReader handle;
    Bytes data(54);
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<std::uint8_t>(0xFF - i);
    }
    Password password = AccessPassword();
    EXPECT_DONE(QLUHFRFID_WriteTag(handle, kUser, 3, password.Data(), password.Length(), data.data(), 27));
    Bytes expected(6);
    expected.insert(expected.end(), data.begin(), data.end());
    EXPECT_EQ(reader.Memory(0, TagBank::kUser), expected);
}

TEST(RfidWrite, FailsWhereTheTagOrTheReaderDoesNotLetIt) {
    TagSession session;
    const auto expectUnchanged = [&] {
        EXPECT_EQ(session.reader.Memory(0, TagBank::kUser), Label().user);
        EXPECT_EQ(session.reader.Memory(0, TagBank::kTid), Label().tid);
    };
    EXPECT_FAILURE(session.Write(kUser, 7, "AAAABBBB"), QLERR_UHFRFID_MEMORY_OVERRUN, "QLERR_UHFRFID_MEMORY_OVERRUN");
    EXPECT_FAILURE(session.Write(kTid, 0, "AAAA"), QLERR_UHFRFID_READONLY_ADDRESS, "QLERR_UHFRFID_READONLY_ADDRESS");
    EXPECT_FAILURE(session.Write(kUser, 0, "AAAA", WrongPassword()), QLERR_UHFRFID_ACCESS, "QLERR_UHFRFID_ACCESS");
    expectUnchanged();
    session.reader->With([](sim::UhfEngine& engine) {
        TagSettings distant = Label();
        distant.writePower = 28;
        engine.Remove(distant.epc);
        engine.Add(distant);
    });
    EXPECT_DONE(session.Select(kLabelId));
    EXPECT_FAILURE(session.Write(kUser, 0, "AAAA"), QLERR_UHFRFID_INSUFFICIENT_POWER,
                   "QLERR_UHFRFID_INSUFFICIENT_POWER");
    EXPECT_DONE(QLUHFRFID_SetPower(session.handle, 28));
    EXPECT_DONE(session.Write(kUser, 0, "AAAA"));
    EXPECT_EQ(session.reader.Memory(1, TagBank::kUser), Hex("AAAA02030405060708090A0B0C0D0E0F"));
}

TEST(RfidSelect, DecidesWhichTagIsMeant) {
    TagSession session;
    EXPECT_DONE(session.Select("3000" + kCrateEpc));
    EXPECT_DONE(session.Write(kUser, 0, "12345678", NoPassword()));
    EXPECT_EQ(session.reader.Memory(1, TagBank::kUser), Hex("12345678"));
    EXPECT_EQ(session.reader.Memory(0, TagBank::kUser), Label().user);
    // The two first bytes do not count.
    EXPECT_DONE(session.Select("FFFF" + kLabelEpc));
    EXPECT_DONE(session.Read(kTid, 0, 6));
    EXPECT_EQ(session.words, sim::HexText(Label().tid));
    EXPECT_FAILURE(session.Select("3000DEADBEEF"), QLERR_UHFRFID_SELECT, "QLERR_UHFRFID_SELECT");
}

TEST(RfidLock, KeepsTheTagFromBeingWrittenWithoutThePassword) {
    TagSession session;
    constexpr unsigned int kUserArea = 4;
    constexpr unsigned int kLocked = 2;
    constexpr unsigned int kAlwaysLocked = 3;
    const auto stateOfUser = [&] {
        return session.reader->With(
            [](const sim::UhfEngine& engine) { return engine.Field().at(0).tag.Lock(sim::LockArea::kUser); });
    };
    EXPECT_FAILURE(session.Lock(kUserArea, kLocked, WrongPassword()), QLERR_UHFRFID_ACCESS, "QLERR_UHFRFID_ACCESS");
    EXPECT_FAILURE(session.Lock(kUserArea, kLocked, NoPassword()), QLERR_UHFRFID_LOCK, "QLERR_UHFRFID_LOCK");
    EXPECT_EQ(stateOfUser(), sim::LockState::kUnlocked);
    EXPECT_DONE(session.Lock(kUserArea, kLocked));
    EXPECT_EQ(stateOfUser(), sim::LockState::kLocked);
    EXPECT_FAILURE(session.Write(kUser, 0, "AAAA", NoPassword()), QLERR_UHFRFID_MEMORY_LOCKED,
                   "QLERR_UHFRFID_MEMORY_LOCKED");
    EXPECT_EQ(session.reader.Memory(0, TagBank::kUser), Label().user);
    EXPECT_DONE(session.Write(kUser, 0, "AAAA"));
    EXPECT_DONE(session.Lock(kUserArea, kAlwaysLocked));
    EXPECT_EQ(stateOfUser(), sim::LockState::kAlwaysLocked);
    EXPECT_FAILURE(session.Write(kUser, 0, "BBBB"), QLERR_UHFRFID_MEMORY_LOCKED, "QLERR_UHFRFID_MEMORY_LOCKED");
    EXPECT_EQ(session.reader.Memory(0, TagBank::kUser), Hex("AAAA02030405060708090A0B0C0D0E0F"));
}

TEST(RfidKill, SilencesTheTagForEver) {
    TagSession session;
    const auto isKilled = [&] {
        return session.reader->With([](const sim::UhfEngine& engine) { return engine.Field().at(0).tag.IsKilled(); });
    };
    EXPECT_FAILURE(session.Kill(Password({0x4D, 0x3C, 0x2B})), QLERR_UHFRFID_KILL, "QLERR_UHFRFID_KILL");
    EXPECT_FAILURE(session.Kill(NoPassword()), QLERR_UHFRFID_KILL, "QLERR_UHFRFID_KILL");
    EXPECT_FALSE(isKilled());
    EXPECT_DONE(session.Select(kLabelId));
    EXPECT_DONE(session.Kill());
    EXPECT_TRUE(isKilled());
    EXPECT_FAILURE(session.Read(kUser, 0, 1), QLERR_UHFRFID_NOREPLY, "QLERR_UHFRFID_NOREPLY");
    EXPECT_FAILURE(session.Kill(), QLERR_UHFRFID_NOREPLY, "QLERR_UHFRFID_NOREPLY");
    EXPECT_FAILURE(session.Select(kLabelId), QLERR_UHFRFID_SELECT, "QLERR_UHFRFID_SELECT");
}

}  // namespace
}  // namespace quarlin::test
