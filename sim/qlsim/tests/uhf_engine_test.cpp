// SPDX-License-Identifier: Apache-2.0
// Commands and replies of the reader, byte by byte.
#include "uhf/engine.h"

#include <gtest/gtest.h>

namespace quarlin::sim {
namespace {

Bytes Hex(const std::string& text) {
    return ParseHex(text).value();
}

// What a reply has to be: these bytes, then zeros up to the length that its second byte says.
Bytes Padded(const std::string& text) {
    Bytes bytes = Hex(text);
    bytes.resize(bytes.at(1));
    return bytes;
}

const std::string kCarton = "3034257BF7194E4000001A85";
const std::string kPallet = "3034257BF7194E4000001A86";
const std::string kCrate = "E2003412DC03011945000777";

TagSettings TagOf(const std::string& epc, std::int8_t signal) {
    TagSettings settings;
    settings.epc = Hex(epc);
    settings.user = Hex("0001020304050607");
    settings.signal = signal;
    return settings;
}

class UhfCommands : public ::testing::Test {
  protected:
    // In a report of 64 bytes, as it comes.
    Bytes Do(const std::string& command) {
        Bytes report = Hex(command);
        report.resize(64);
        return engine_.Execute(report).value();
    }
    void Expect(const std::string& command, const std::string& reply) {
        EXPECT_EQ(HexText(Padded(reply)), HexText(Do(command))) << command;
    }
    // The user memory of the tag that a command without a selection reaches.
    std::string FirstUserWord() { return HexText(Do("37 09 03 00 00000000 01")).substr(8, 4); }

    UhfEngine engine_{UhfRadio{}};
};

TEST_F(UhfCommands, InventoryGivesTheTagsOfARoundAndThenNone) {
    engine_.Add(TagOf(kCarton, -48));
    engine_.Add(TagOf(kPallet, -55));
    engine_.Add(TagOf("1234", -100));
    Expect("43 03 01", "44 40 00 03 D0 000000 0E 3000" + kCarton);
    Expect("43 03 02", "44 40 00 02 C9 000000 0E 3000" + kPallet);
    Expect("43 03 02", "44 40 00 01 9C 000000 04 0800 1234");
    Expect("43 03 02", "44 40 00 00");
    Expect("43 03 02", "44 40 00 00");
    Expect("43 03 01", "44 40 00 03 D0 000000 0E 3000" + kCarton);
}

TEST_F(UhfCommands, InventoryOfAnEmptyFieldFindsNoTag) {
    Expect("43 03 01", "44 40 00 00");
    Expect("43 03 02", "44 40 00 00");
}

TEST_F(UhfCommands, ARoundIsWithoutTagsThatCameLaterAndThoseThatWentAway) {
    engine_.Add(TagOf(kCarton, -48));
    engine_.Add(TagOf(kPallet, -55));
    engine_.Add(TagOf(kCrate, -60));
    Expect("43 03 01", "44 40 00 03 D0 000000 0E 3000" + kCarton);
    EXPECT_TRUE(engine_.Remove(Hex(kPallet)));
    EXPECT_FALSE(engine_.Remove(Hex(kPallet)));
    engine_.Add(TagOf("1234", -50));
    Expect("43 03 02", "44 40 00 01 C4 000000 0E 3000" + kCrate);
    Expect("43 03 02", "44 40 00 00");
}

TEST_F(UhfCommands, ANextTagWithoutARoundIsNoTag) {
    engine_.Add(TagOf(kCarton, -48));
    Expect("43 03 02", "44 40 00 00");
    Expect("43 03 01", "44 40 00 01 D0 000000 0E 3000" + kCarton);
    engine_.Restart();
    Expect("43 03 02", "44 40 00 00");
}

TEST_F(UhfCommands, AnIdentifierIsCutToWhatTheReplyHolds) {
    TagSettings longest = TagOf("", -48);
    for (int i = 0; i < 62; ++i) {
        longest.epc.push_back(static_cast<std::uint8_t>(i));
    }
    engine_.Add(longest);
    const Bytes reply = Do("43 03 01");
    ASSERT_EQ(64u, reply.size());
    EXPECT_EQ(54, reply[8]);
    EXPECT_EQ(0xF8, reply[9]);
    EXPECT_EQ(51, reply[62]);
}

TEST_F(UhfCommands, ReadGivesWordsAndTheirNumber) {
    engine_.Add(TagOf(kCarton, -48));
    Expect("37 09 03 01 00000000 02", "38 40 00 02 02030405");
    Expect("37 09 01 01 00000000 07", "38 40 00 07 3000" + kCarton);
    Expect("37 09 00 00 00000000 04", "38 40 00 04 0000000000000000");
    Expect("37 09 03 01 00000000 00", "38 40 00 03 020304050607");
    Expect("37 09 03 03 00000000 02", "38 40 83");
    Expect("37 09 02 00 00000000 01", "38 40 83");
}

TEST_F(UhfCommands, ReadTakesAsManyWordsAsTheReplyHolds) {
    TagSettings settings = TagOf(kCarton, -48);
    settings.user.assign(80, 0xAB);
    engine_.Add(settings);
    Bytes reply = Do("37 09 03 00 00000000 1E");
    EXPECT_EQ(0, reply[2]);
    EXPECT_EQ(30, reply[3]);
    EXPECT_EQ(0xAB, reply[63]);
    Expect("37 09 03 00 00000000 1F", "38 40 0F");
    reply = Do("37 09 03 00 00000000 00");
    EXPECT_EQ(30, reply[3]);
}

TEST_F(UhfCommands, WriteChangesMemoryAndSaysHowManyWords) {
    engine_.Add(TagOf(kCarton, -48));
    Expect("35 0D 03 01 00000000 02 CAFEBABE", "36 04 00 02");
    Expect("37 09 03 00 00000000 04", "38 40 00 04 0001CAFEBABE0607");
    Expect("35 0D 03 03 00000000 02 CAFEBABE", "36 04 83 00");
    Expect("35 0B 02 00 00000000 01 0000", "36 04 83 00");
    Expect("35 0B 01 00 00000000 01 0000", "36 04 A0 00");
    Expect("35 09 03 00 00000000 00", "36 04 0F 00");
}

TEST_F(UhfCommands, WriteTakesTheLongestFrame) {
    TagSettings settings = TagOf(kCarton, -48);
    settings.user.resize(54);
    engine_.Add(settings);
    std::string data;
    for (int i = 0; i < 27; ++i) {
        data += "5AA5";
    }
    Expect("35 3F 03 00 00000000 1B" + data, "36 04 00 1B");
    EXPECT_EQ(data, HexText(engine_.Field()[0].tag.Memory(TagBank::kUser)));
}

TEST_F(UhfCommands, PasswordsAreMostSignificantByteFirst) {
    TagSettings settings = TagOf(kCarton, -48);
    settings.accessPassword = 0xBBAA0000;
    settings.Lock(LockArea::kUser) = LockState::kLocked;
    engine_.Add(settings);
    Expect("35 0B 03 00 BBAA0000 01 1111", "36 04 00 01");
    Expect("35 0B 03 00 0000AABB 01 2222", "36 04 02 00");
    Expect("35 0B 03 00 00000000 01 2222", "36 04 84 00");
    Expect("37 09 03 00 0000AABB 01", "38 40 02");
    EXPECT_EQ("1111", FirstUserWord());
}

TEST_F(UhfCommands, LockTakesAnAreaAndAState) {
    TagSettings settings = TagOf(kCarton, -48);
    settings.accessPassword = 0x11223344;
    engine_.Add(settings);
    Expect("3B 08 04 02 00000000", "3C 03 05");
    Expect("3B 08 04 02 11223345", "3C 03 02");
    Expect("3B 08 04 02 11223344", "3C 03 00");
    Expect("35 0B 03 00 00000000 01 1111", "36 04 84 00");
    Expect("35 0B 03 00 11223344 01 1111", "36 04 00 01");
    Expect("3B 08 04 03 11223344", "3C 03 00");
    Expect("35 0B 03 00 11223344 01 2222", "36 04 84 00");
    Expect("3B 08 04 00 11223344", "3C 03 84");
    Expect("3B 08 00 02 11223344", "3C 03 00");
    Expect("37 09 00 00 00000000 02", "38 40 84");
    Expect("37 09 00 00 11223344 02", "38 40 00 02 00000000");
    Expect("3B 08 05 02 11223344", "3C 03 0F");
    Expect("3B 08 04 04 11223344", "3C 03 0F");
}

TEST_F(UhfCommands, AKilledTagIsSilent) {
    TagSettings settings = TagOf(kCarton, -48);
    settings.killPassword = 0x0D15EA5E;
    settings.accessPassword = 7;
    engine_.Add(settings);
    Expect("3D 06 0D15EA5F", "3E 03 03");
    Expect("3D 06 0D15EA5E", "3E 03 00");
    Expect("43 03 01", "44 40 00 00");
    Expect("37 09 03 00 00000000 01", "38 40 04");
    Expect("35 0B 03 00 00000000 01 1111", "36 04 04 00");
    Expect("3B 08 04 02 00000000", "3C 03 04");
    Expect("3D 06 0D15EA5E", "3E 03 04");
    Expect("33 0F 0C" + kCarton, "34 03 09");
}

TEST_F(UhfCommands, WithoutASelectionTheStrongestTagIsMeant) {
    engine_.Add(TagOf(kCarton, -70));
    engine_.Add(TagOf(kPallet, -40));
    engine_.Add(TagOf(kCrate, -40));
    Expect("37 09 01 02 00000000 06", "38 40 00 06" + kPallet);
    EXPECT_TRUE(engine_.SetSignal(Hex(kCarton), -30));
    EXPECT_FALSE(engine_.SetSignal(Hex("0000"), -30));
    Expect("37 09 01 02 00000000 06", "38 40 00 06" + kCarton);
}

TEST_F(UhfCommands, SelectMakesEverythingElseMeanOneTag) {
    engine_.Add(TagOf(kPallet, -40));
    engine_.Add(TagOf(kCarton, -70));
    EXPECT_EQ(nullptr, engine_.Selected());
    Expect("33 0F 0C" + kCarton, "34 03 00");
    ASSERT_NE(nullptr, engine_.Selected());
    Expect("37 09 01 02 00000000 06", "38 40 00 06" + kCarton);
    Expect("35 0D 01 02 00000000 02 11112222", "36 04 00 02");
    Expect("35 0B 03 00 00000000 01 9999", "36 04 00 01");
    EXPECT_EQ("9999020304050607", HexText(engine_.Field()[1].tag.Memory(TagBank::kUser)));
    EXPECT_EQ("0001020304050607", HexText(engine_.Field()[0].tag.Memory(TagBank::kUser)));
    Expect("33 03 00", "34 03 00");
    EXPECT_EQ(nullptr, engine_.Selected());
    Expect("37 09 01 02 00000000 06", "38 40 00 06" + kPallet);
}

TEST_F(UhfCommands, SelectComparesTheBeginningOfTheEpc) {
    engine_.Add(TagOf(kPallet, -60));
    engine_.Add(TagOf(kCarton, -50));
    Expect("33 05 02 3034", "34 03 00");
    EXPECT_EQ(kCarton, HexText(engine_.Selected()->tag.Epc())) << "the strongest of those that fit";
    Expect("33 04 01 30", "34 03 00");
    Expect("33 04 01 31", "34 03 09");
    Expect("33 10 0D" + kCarton + "00", "34 03 09");
    EXPECT_EQ(kCarton, HexText(engine_.Selected()->tag.Epc())) << "a selection that fails leaves the last one";
}

TEST_F(UhfCommands, ASelectedTagThatGoesAwayAnswersNoMoreAndNobodyElseDoes) {
    engine_.Add(TagOf(kPallet, -60));
    engine_.Add(TagOf(kCarton, -50));
    Expect("33 0F 0C" + kCarton, "34 03 00");
    engine_.Remove(Hex(kCarton));
    EXPECT_EQ(nullptr, engine_.Selected());
    Expect("37 09 03 00 00000000 01", "38 40 04");
    engine_.Restart();
    Expect("37 09 01 02 00000000 06", "38 40 00 06" + kPallet);
}

TEST_F(UhfCommands, PowerIsKeptAndGivenBack) {
    Expect("C2 02", "C3 04 00 1B");
    Expect("C0 03 C8", "C1 03 00");
    Expect("C2 02", "C3 04 00 C8");
    engine_.SetPower(9);
    EXPECT_EQ(9, engine_.Power());
    engine_.Restart();
    Expect("C2 02", "C3 04 00 1B");
}

TEST(UhfPower, HasAMostThatTheReaderTakes) {
    UhfRadio radio;
    radio.mostPower = 30;
    UhfEngine engine(radio);
    EXPECT_EQ(Hex("C1 03 00"), engine.Execute(Hex("C0 03 1E")));
    EXPECT_EQ(Hex("C1 03 0F"), engine.Execute(Hex("C0 03 1F")));
    EXPECT_EQ(30, engine.Power());
}

TEST_F(UhfCommands, DistantTagsNeedPowerToAnswerAndMoreToBeWritten) {
    TagSettings settings = TagOf(kCarton, -48);
    settings.power = 20;
    settings.writePower = 25;
    engine_.Add(settings);
    engine_.SetPower(19);
    Expect("43 03 01", "44 40 00 00");
    Expect("37 09 03 00 00000000 01", "38 40 04");
    Expect("33 0F 0C" + kCarton, "34 03 09");
    engine_.SetPower(20);
    Expect("37 09 03 00 00000000 01", "38 40 00 01 0001");
    Expect("35 0B 03 00 00000000 01 1111", "36 04 8B 00");
    Expect("3B 08 04 02 00000000", "3C 03 8B");
    Expect("3D 06 00000001", "3E 03 8B");
    engine_.SetPower(25);
    Expect("35 0B 03 00 00000000 01 1111", "36 04 00 01");
}

TEST_F(UhfCommands, QueryParametersAreGivenBackOneByteFurtherOn) {
    Expect("59 0E 0000 0000 0000 0000 0000 0000", "5A 0F 00 00 09 00 02 00 00 00 00 00 04 00 BA");
    Expect("59 0E 010F 0000 0000 0000 0000 0000", "5A 0F 00 00 0F 00 02 00 00 00 00 00 04 00 BA");
    Expect("59 0E 0000 0103 0000 0000 0000 0000", "5A 0F 00 00 0F 00 03 00 00 00 00 00 04 00 BA");
    Expect("59 0E 0000 0000 0102 0000 0000 0000", "5A 0F 00 00 0F 00 03 00 02 00 00 00 04 00 BA");
    Expect("59 0E 0000 0000 0000 0000 010F 0000", "5A 0F 00 00 0F 00 03 00 02 00 00 00 0F 00 BA");
    Expect("59 0E 0000 0000 0000 0000 0000 01AA", "5A 0F 00 00 0F 00 03 00 02 00 00 00 0F 00 AA");
    EXPECT_EQ((UhfQuery{15, 3, 2, 15, -86}), engine_.Query());
    engine_.Restart();
    EXPECT_EQ(UhfQuery{}, engine_.Query());
}

TEST_F(UhfCommands, AQueryParameterOutOfRangeChangesNothing) {
    for (const char* const fields :
         {"0107 0000 0000 0000 0000 0000", "0000 0104 0000 0000 0000 0000", "0000 0000 0104 0000 0000 0000",
          "0000 0000 0000 0000 0110 0000", "0000 0000 0000 0000 0000 01CF", "0000 0000 0000 0000 0000 01A9",
          "0107 0101 0000 0000 0000 0000"}) {
        Expect(std::string("59 0E") + fields, "5A 0F 0F 00 09 00 02 00 00 00 00 00 04 00 BA");
    }
    Expect("59 0E 0000 0000 0000 0000 0000 01CE", "5A 0F 00 00 09 00 02 00 00 00 00 00 04 00 CE");
}

TEST_F(UhfCommands, AReaderMayHaveALinkFrequencyThatItDoesNotTake) {
    UhfQuery query;
    query.linkFrequency = 7;
    engine_.SetQuery(query);
    Expect("59 0E 0000 0000 0000 0000 0000 0000", "5A 0F 00 00 07 00 02 00 00 00 00 00 04 00 BA");
    Expect("59 0E 0000 0101 0000 0000 0000 0000", "5A 0F 00 00 07 00 01 00 00 00 00 00 04 00 BA");
}

struct WrongLength {
    const char* name;
    const char* command;
    const char* reply;
};

void PrintTo(const WrongLength& wrong, std::ostream* stream) {
    *stream << wrong.name;
}

class WrongCommandLength : public ::testing::TestWithParam<WrongLength> {};

TEST_P(WrongCommandLength, IsAnInvalidParameter) {
    UhfEngine engine{UhfRadio{}};
    engine.Add(TagOf(kCarton, -48));
    Bytes report = Hex(GetParam().command);
    report.resize(64);
    EXPECT_EQ(HexText(Padded(GetParam().reply)), HexText(engine.Execute(report).value()));
    EXPECT_EQ("0001020304050607", HexText(engine.Field()[0].tag.Memory(TagBank::kUser)));
}

INSTANTIATE_TEST_SUITE_P(Commands, WrongCommandLength,
                         ::testing::Values(WrongLength{"Select", "33 0E 0C 3034", "34 03 0F"},
                                           WrongLength{"SelectWithoutCount", "33 02", "34 03 0F"},
                                           WrongLength{"WriteTooShort", "35 0A 03 00 00000000 01 1111", "36 04 0F"},
                                           WrongLength{"WriteBeyondTheReport", "35 4B 03 00 00000000 21", "36 04 0F"},
                                           WrongLength{"Read", "37 08 03 00 00000000 01", "38 40 0F"},
                                           WrongLength{"Lock", "3B 09 04 02 00000000", "3C 03 0F"},
                                           WrongLength{"Kill", "3D 05 00000001", "3E 03 0F"},
                                           WrongLength{"Inventory", "43 02 01", "44 40 0F"},
                                           WrongLength{"Query", "59 0F", "5A 0F 0F"},
                                           WrongLength{"SetPower", "C0 04 05", "C1 03 0F"},
                                           WrongLength{"GetPower", "C2 00", "C3 04 0F"}),
                         [](const auto& test) { return test.param.name; });

TEST_F(UhfCommands, ValuesThatNoCommandHasAreInvalidParameters) {
    engine_.Add(TagOf(kCarton, -48));
    Expect("43 03 00", "44 40 0F");
    Expect("43 03 03", "44 40 0F");
    Expect("37 09 04 00 00000000 01", "38 40 0F");
    Expect("35 0B 04 00 00000000 01 1111", "36 04 0F");
}

TEST_F(UhfCommands, WhatIsNoCommandHasNoReply) {
    EXPECT_EQ(std::nullopt, engine_.Execute(Hex("34 03 00")));
    EXPECT_EQ(std::nullopt, engine_.Execute(Bytes()));
    EXPECT_EQ(Hex("C3 04 0F 00"), engine_.Execute(Hex("C2"))) << "a report of one byte";
}

TEST(UhfFrames, AreTheReportWithoutItsFilling) {
    EXPECT_EQ(Hex("43 03 01"), UhfFrameOf(Hex("43 03 01 00 00 00")));
    EXPECT_EQ(Hex("43 03 00"), UhfFrameOf(Hex("43 03 00 00 00 00"))) << "zeros within the frame belong to it";
    EXPECT_EQ(Hex("43 03 01 00 07"), UhfFrameOf(Hex("43 03 01 00 07 00"))) << "rubbish after it is not hidden";
    EXPECT_EQ(Hex("43 FF 01"), UhfFrameOf(Hex("43 FF 01")));
    EXPECT_EQ(Hex("43"), UhfFrameOf(Hex("43")));
    EXPECT_EQ(Bytes(), UhfFrameOf(Bytes()));
}

}  // namespace
}  // namespace quarlin::sim
