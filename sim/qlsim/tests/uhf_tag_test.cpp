// SPDX-License-Identifier: Apache-2.0
#include "uhf/tag.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace quarlin::sim {
namespace {

using Access = Tag::Access;

constexpr std::uint32_t kAccessPassword = 0x1A2B3C4D;
constexpr std::uint32_t kKillPassword = 0x0D15EA5E;

Bytes Hex(const char* text) {
    return ParseHex(text).value();
}

TagSettings Settings() {
    TagSettings settings;
    settings.epc = Hex("3034257BF7194E4000001A85");
    settings.tid = Hex("E280116020007F3C");
    settings.user = Hex("000102030405060708090A0B0C0D0E0F");
    settings.accessPassword = kAccessPassword;
    settings.killPassword = kKillPassword;
    return settings;
}

UhfStatus Read(const Tag& tag, Access access, TagBank bank, std::size_t pointer, std::size_t words,
               Bytes* data = nullptr) {
    Bytes read;
    const UhfStatus status = tag.Read(access, bank, pointer, words, 30, read);
    if (data != nullptr) {
        *data = read;
    }
    return status;
}

TEST(TagChecksums, AreThoseOfTheStandard) {
    const std::string_view digits = "123456789";
    EXPECT_EQ(0xD64E, TagChecksum(Bytes(digits.begin(), digits.end())));
}

TEST(UhfTag, AnswersWithItsControlWordAndEpc) {
    const Tag tag(Settings());
    EXPECT_EQ("3034257BF7194E4000001A85", HexText(tag.Epc()));
    EXPECT_EQ("30003034257BF7194E4000001A85", HexText(tag.Identifier()));
}

TEST(UhfTag, TakesAControlWordWithOtherBitsThanTheLength) {
    TagSettings settings = Settings();
    settings.pc = 0x3415;
    EXPECT_EQ("34153034257BF7194E4000001A85", HexText(Tag(settings).Identifier()));
}

TEST(UhfTag, HasAllItsMemoryInItsBanks) {
    const Tag tag(Settings());
    EXPECT_EQ("0D15EA5E1A2B3C4D", HexText(tag.Memory(TagBank::kReserved)));
    const Bytes& epc = tag.Memory(TagBank::kEpc);
    ASSERT_EQ(16u, epc.size());
    const std::uint16_t checksum = TagChecksum(tag.Identifier());
    EXPECT_EQ(checksum >> 8, epc[0]);
    EXPECT_EQ(checksum & 0xFF, epc[1]);
    EXPECT_EQ("30003034257BF7194E4000001A85", HexText(std::span(epc).subspan(2)));
    EXPECT_EQ("E280116020007F3C", HexText(tag.Memory(TagBank::kTid)));
}

TEST(UhfTag, CannotBeMadeOfWhatNoTagHas) {
    const auto problem = [](auto change) {
        TagSettings settings = Settings();
        change(settings);
        EXPECT_THROW(Tag{settings}, std::invalid_argument);
        return ProblemOf(settings).value_or("");
    };
    EXPECT_EQ("an EPC has whole words of two bytes, at most 31", problem([](TagSettings& s) { s.epc.pop_back(); }));
    EXPECT_EQ("an EPC has whole words of two bytes, at most 31", problem([](TagSettings& s) { s.epc.resize(64); }));
    EXPECT_EQ("a tag's memory has whole words of two bytes, at most 1024",
              problem([](TagSettings& s) { s.user.pop_back(); }));
    EXPECT_EQ("the protocol control word's first five bits have to be the EPC's length in words",
              problem([](TagSettings& s) { s.pc = 0x3800; }));
    TagSettings longest = Settings();
    longest.epc.resize(62);
    EXPECT_EQ(64u, Tag(longest).Identifier().size());
}

TEST(UhfTag, OpensForItsPasswordOnly) {
    const Tag tag(Settings());
    EXPECT_EQ(Access::kSecured, tag.Enter(kAccessPassword));
    EXPECT_EQ(Access::kOpen, tag.Enter(0));
    EXPECT_EQ(std::nullopt, tag.Enter(kAccessPassword + 1));
    TagSettings settings = Settings();
    settings.accessPassword = 0;
    EXPECT_EQ(Access::kSecured, Tag(settings).Enter(0)) << "without a password nothing is kept from anybody";
    EXPECT_EQ(std::nullopt, Tag(settings).Enter(1));
}

TEST(UhfTag, ReadsWordsFromAnyPlace) {
    const Tag tag(Settings());
    Bytes data;
    EXPECT_EQ(UhfStatus::kSuccess, Read(tag, Access::kOpen, TagBank::kUser, 2, 3, &data));
    EXPECT_EQ("040506070809", HexText(data));
    EXPECT_EQ(UhfStatus::kSuccess, Read(tag, Access::kOpen, TagBank::kUser, 6, 0, &data));
    EXPECT_EQ("0C0D0E0F", HexText(data)) << "no count means the rest";
    Bytes some;
    EXPECT_EQ(UhfStatus::kSuccess, tag.Read(Access::kOpen, TagBank::kUser, 1, 0, 2, some));
    EXPECT_EQ("02030405", HexText(some)) << "as far as the reader can carry it";
}

TEST(UhfTag, SaysWhenMemoryIsOver) {
    const Tag tag(Settings());
    EXPECT_EQ(UhfStatus::kSuccess, Read(tag, Access::kOpen, TagBank::kUser, 7, 1));
    EXPECT_EQ(UhfStatus::kMemoryOverrun, Read(tag, Access::kOpen, TagBank::kUser, 7, 2));
    EXPECT_EQ(UhfStatus::kMemoryOverrun, Read(tag, Access::kOpen, TagBank::kUser, 8, 0));
    EXPECT_EQ(UhfStatus::kMemoryOverrun, Read(tag, Access::kOpen, TagBank::kReserved, 4, 1));
    Tag written(Settings());
    EXPECT_EQ(UhfStatus::kMemoryOverrun, written.Write(Access::kSecured, TagBank::kUser, 7, Hex("AAAABBBB")));
    EXPECT_EQ(tag.Memory(TagBank::kUser), written.Memory(TagBank::kUser)) << "nothing of it is written";
    TagSettings without = Settings();
    without.user.clear();
    EXPECT_EQ(UhfStatus::kMemoryOverrun, Read(Tag(without), Access::kOpen, TagBank::kUser, 0, 0));
}

TEST(UhfTag, KeepsWhatIsWritten) {
    Tag tag(Settings());
    EXPECT_EQ(UhfStatus::kSuccess, tag.Write(Access::kOpen, TagBank::kUser, 1, Hex("CAFEBABE")));
    EXPECT_EQ("0001CAFEBABE060708090A0B0C0D0E0F", HexText(tag.Memory(TagBank::kUser)));
}

TEST(UhfTag, AnswersWithANewEpcAndChecksumAfterAWrite) {
    Tag tag(Settings());
    EXPECT_EQ(UhfStatus::kSuccess, tag.Write(Access::kOpen, TagBank::kEpc, 1, Hex("1800111122223333")));
    EXPECT_EQ("1800111122223333", HexText(tag.Identifier())) << "the control word's length counts";
    const Bytes& bank = tag.Memory(TagBank::kEpc);
    EXPECT_EQ(TagChecksum(tag.Identifier()), bank[0] << 8 | bank[1]);
    EXPECT_EQ(UhfStatus::kMemoryOverrun, tag.Write(Access::kOpen, TagBank::kEpc, 1, Hex("3800")))
        << "it has room for six words";
}

TEST(UhfTag, HasMemoryThatNobodyWrites) {
    Tag tag(Settings());
    EXPECT_EQ(UhfStatus::kReadOnly, tag.Write(Access::kSecured, TagBank::kTid, 0, Hex("0000")));
    EXPECT_EQ(UhfStatus::kReadOnly, tag.Write(Access::kSecured, TagBank::kEpc, 0, Hex("0000")));
}

TEST(UhfTag, UsesANewPasswordAtOnce) {
    Tag tag(Settings());
    EXPECT_EQ(UhfStatus::kSuccess, tag.Write(Access::kSecured, TagBank::kReserved, 2, Hex("00000007")));
    EXPECT_EQ(Access::kSecured, tag.Enter(7));
    EXPECT_EQ(std::nullopt, tag.Enter(kAccessPassword));
}

struct LockCase {
    const char* name;
    LockState state;
    bool openWrites;
    bool securedWrites;
};

void PrintTo(const LockCase& lock, std::ostream* stream) {
    *stream << lock.name;
}

class LockedTag : public ::testing::TestWithParam<LockCase> {
  protected:
    static UhfStatus Expected(bool allowed) { return allowed ? UhfStatus::kSuccess : UhfStatus::kMemoryLocked; }
    static Tag With(LockArea area) {
        TagSettings settings = Settings();
        settings.Lock(area) = GetParam().state;
        return Tag(settings);
    }
};

TEST_P(LockedTag, GuardsABankAgainstWrites) {
    Tag tag = With(LockArea::kUser);
    EXPECT_EQ(Expected(GetParam().openWrites), tag.Write(Access::kOpen, TagBank::kUser, 0, Hex("1111")));
    EXPECT_EQ(Expected(GetParam().securedWrites), tag.Write(Access::kSecured, TagBank::kUser, 0, Hex("2222")));
    EXPECT_EQ(UhfStatus::kSuccess, Read(tag, Access::kOpen, TagBank::kUser, 0, 1)) << "anybody may read it";
    Tag named = With(LockArea::kEpc);
    EXPECT_EQ(Expected(GetParam().openWrites), named.Write(Access::kOpen, TagBank::kEpc, 2, Hex("1111")));
    EXPECT_EQ(Expected(GetParam().securedWrites), named.Write(Access::kSecured, TagBank::kEpc, 2, Hex("1111")));
}

TEST_P(LockedTag, GuardsAPasswordAgainstReadsAndWrites) {
    Tag tag = With(LockArea::kKillPassword);
    EXPECT_EQ(Expected(GetParam().openWrites), Read(tag, Access::kOpen, TagBank::kReserved, 1, 1));
    EXPECT_EQ(Expected(GetParam().securedWrites), Read(tag, Access::kSecured, TagBank::kReserved, 1, 1));
    EXPECT_EQ(Expected(GetParam().openWrites), Read(tag, Access::kOpen, TagBank::kReserved, 1, 2))
        << "a read that begins in it and ends in the next";
    EXPECT_EQ(UhfStatus::kSuccess, Read(tag, Access::kOpen, TagBank::kReserved, 2, 2)) << "the other password";
    EXPECT_EQ(Expected(GetParam().openWrites), tag.Write(Access::kOpen, TagBank::kReserved, 0, Hex("00000000")));
    EXPECT_EQ(Expected(GetParam().securedWrites), tag.Write(Access::kSecured, TagBank::kReserved, 0, Hex("00000000")));
    Tag other = With(LockArea::kAccessPassword);
    EXPECT_EQ(Expected(GetParam().openWrites), Read(other, Access::kOpen, TagBank::kReserved, 2, 2));
    EXPECT_EQ(UhfStatus::kSuccess, Read(other, Access::kOpen, TagBank::kReserved, 0, 2));
}

INSTANTIATE_TEST_SUITE_P(States, LockedTag,
                         ::testing::Values(LockCase{"Unlocked", LockState::kUnlocked, true, true},
                                           LockCase{"AlwaysUnlocked", LockState::kAlwaysUnlocked, true, true},
                                           LockCase{"Locked", LockState::kLocked, false, true},
                                           LockCase{"AlwaysLocked", LockState::kAlwaysLocked, false, false}),
                         [](const auto& test) { return test.param.name; });

TEST(TagLocks, ChangeForWhoHasThePassword) {
    Tag tag(Settings());
    EXPECT_EQ(UhfStatus::kLock, tag.ChangeLock(Access::kOpen, LockArea::kUser, LockState::kLocked));
    EXPECT_EQ(LockState::kUnlocked, tag.Lock(LockArea::kUser));
    EXPECT_EQ(UhfStatus::kSuccess, tag.ChangeLock(Access::kSecured, LockArea::kUser, LockState::kLocked));
    EXPECT_EQ(LockState::kLocked, tag.Lock(LockArea::kUser));
    EXPECT_EQ(UhfStatus::kSuccess, tag.ChangeLock(Access::kSecured, LockArea::kUser, LockState::kUnlocked));
}

TEST(TagLocks, ThatAreForEverStay) {
    for (const LockState forEver : {LockState::kAlwaysLocked, LockState::kAlwaysUnlocked}) {
        Tag tag(Settings());
        EXPECT_EQ(UhfStatus::kSuccess, tag.ChangeLock(Access::kSecured, LockArea::kUser, forEver));
        EXPECT_EQ(UhfStatus::kMemoryLocked, tag.ChangeLock(Access::kSecured, LockArea::kUser, LockState::kLocked));
        EXPECT_EQ(UhfStatus::kSuccess, tag.ChangeLock(Access::kSecured, LockArea::kUser, forEver)) << "no change";
        EXPECT_EQ(forEver, tag.Lock(LockArea::kUser));
    }
}

TEST(UhfTag, DiesOfItsKillPasswordOnly) {
    Tag tag(Settings());
    EXPECT_EQ(UhfStatus::kKill, tag.Kill(kKillPassword + 1));
    EXPECT_EQ(UhfStatus::kKill, tag.Kill(0));
    EXPECT_FALSE(tag.IsKilled());
    EXPECT_EQ(UhfStatus::kSuccess, tag.Kill(kKillPassword));
    EXPECT_TRUE(tag.IsKilled());
}

TEST(UhfTag, WithoutAKillPasswordCannotBeKilled) {
    TagSettings settings = Settings();
    settings.killPassword = 0;
    Tag tag(settings);
    EXPECT_EQ(UhfStatus::kKill, tag.Kill(0));
    EXPECT_FALSE(tag.IsKilled());
}

}  // namespace
}  // namespace quarlin::sim
