// SPDX-License-Identifier: Apache-2.0
#include "view/rfid_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quarlin::qlctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

RfidTag Tag(Bytes identifier, int signal) {
    return {std::move(identifier), signal};
}

RfidTag SampleTag() {
    return Tag({0x30, 0x00, 0xE2, 0x80, 0x11, 0x60}, -47);
}

TEST(RfidTag, IsTwoBytesOfProtocolControlAndTheEpc) {
    const RfidTag tag = SampleTag();
    EXPECT_EQ(Bytes(tag.ProtocolControl().begin(), tag.ProtocolControl().end()), (Bytes{0x30, 0x00}));
    EXPECT_EQ(Bytes(tag.Epc().begin(), tag.Epc().end()), (Bytes{0xE2, 0x80, 0x11, 0x60}));
}

TEST(RfidTag, MayHaveAnIdentifierWithoutEpc) {
    EXPECT_TRUE(Tag({0x30, 0x00}, 0).Epc().empty());
    EXPECT_EQ(Tag({0x30}, 0).ProtocolControl().size(), 1U);
    EXPECT_TRUE(Tag({}, 0).ProtocolControl().empty());
    EXPECT_TRUE(Tag({}, 0).Epc().empty());
}

TEST(RoundText, ListsTags) {
    EXPECT_EQ(RoundText({SampleTag(), Tag({0x08, 0x00, 0xAB, 0xCD}, 3)}, 1, Heading::kNone),
              "EPC       Signal\n"
              "E2801160     -47\n"
              "ABCD           3\n"
              "2 tags\n");
}

TEST(RoundText, TellsTheRoundAndThatItIsEmpty) {
    EXPECT_EQ(RoundText({}, 7, Heading::kRound), "Round 7\nno tags\n");
    EXPECT_EQ(RoundText({Tag({0x00, 0x00}, -50)}, 7, Heading::kRound),
              "Round 7\n"
              "EPC       Signal\n"
              "(no EPC)     -50\n"
              "1 tag\n");
}

TEST(RoundJson, IsOneObject) {
    EXPECT_EQ(RoundJson({SampleTag()}, 2),
              "{\"round\":2,\"tags\":[{\"epc\":\"E2801160\",\"protocol_control\":\"3000\",\"signal\":-47}]}\n");
    EXPECT_EQ(RoundJson({}, 1), "{\"round\":1,\"tags\":[]}\n");
}

TEST(WordsText, HasEightWordsToALine) {
    Bytes words(20);
    for (size_t at = 0; at < words.size(); ++at) {
        words[at] = static_cast<std::uint8_t>(at);
    }
    EXPECT_EQ(WordsText({3, 4}, words),
              "user   4  0001 0203 0405 0607 0809 0A0B 0C0D 0E0F\n"
              "user  12  1011 1213\n");
    EXPECT_EQ(WordsText({0, 0}, Bytes{}), "no words\n");
}

TEST(WordsJson, NamesTagAndPlace) {
    EXPECT_EQ(WordsJson(SampleTag(), {2, 1}, Bytes{0xE2, 0x00}),
              "{\"epc\":\"E2801160\",\"bank\":\"tid\",\"word\":1,\"count\":1,\"data\":\"E200\"}\n");
}

TEST(BankName, NamesTheFourBanks) {
    EXPECT_STREQ(BankName(0), "reserved");
    EXPECT_STREQ(BankName(1), "epc");
    EXPECT_STREQ(BankName(2), "tid");
    EXPECT_STREQ(BankName(3), "user");
    EXPECT_STREQ(BankName(4), "unknown");
}

TEST(Done, NamesTheTag) {
    EXPECT_EQ(DoneText(SampleTag(), "killed"), "killed  E2801160\n");
    EXPECT_EQ(DoneJson(SampleTag(), "locked"), "{\"epc\":\"E2801160\",\"done\":\"locked\"}\n");
}

TEST(Power, IsANumber) {
    EXPECT_EQ(PowerText(200), "Power         200\n");
    EXPECT_EQ(PowerJson(200), "{\"power\":200}\n");
}

TEST(Query, ShowsAllParameters) {
    EXPECT_EQ(QueryText({256, 2, 1, 4, -70}),
              "Link          256 kHz\n"
              "Encoding      Miller 4\n"
              "Session       S1\n"
              "Q             4\n"
              "Sensitivity   -70 dBm\n");
    EXPECT_NE(QueryText({40, 9, 0, 0, 0}).find("Encoding      9 (unknown)\n"), std::string::npos);
    EXPECT_EQ(QueryJson({256, 2, 1, 4, -70}),
              "{\"link_frequency_khz\":256,\"miller\":2,\"session\":1,\"q\":4,\"sensitivity_dbm\":-70}\n");
}

}  // namespace
}  // namespace quarlin::qlctl
