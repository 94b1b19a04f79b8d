// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/table_reader.h"
#include "magnesafe/card_text.h"

namespace quarlin::sim::magnesafe {
namespace {

const std::string kWallet = std::string(QLSIM_SCENARIO_DIR) + "/wallet.toml";

Card BankCard() {
    Card card;
    card.name = "MUSTERMANN/ERIKA";
    card.account = "4111111111111111";
    card.expiry = "2812";
    card.serviceCode = "101";
    card.discretionary = "42";
    return card;
}

TEST(Card, ABankCardFillsTwoTracks) {
    const TrackTexts texts = TextsOf(BankCard());
    EXPECT_EQ("%B4111111111111111^MUSTERMANN/ERIKA^281210142?", texts[0]);
    EXPECT_EQ(";4111111111111111=281210142?", texts[1]);
    EXPECT_EQ("", texts[2]);
}

TEST(Card, ALiteralTextReplacesItsTrackAlsoWithNothing) {
    Card card = BankCard();
    card.tracks[0] = "";
    card.tracks[2] = "+0123?";
    EXPECT_EQ((TrackTexts{"", ";4111111111111111=281210142?", "+0123?"}), TextsOf(card));
    EXPECT_EQ((TrackTexts{"", "", ""}), TextsOf(Card{}));
}

struct MaskCase {
    const char* name;
    const char* text;
    Masking masking;
    const char* masked;
};

class Mask : public ::testing::TestWithParam<MaskCase> {};

TEST_P(Mask, HidesWhatItShould) {
    EXPECT_EQ(GetParam().masked, MaskTrack(GetParam().text, GetParam().masking));
}

INSTANTIATE_TEST_SUITE_P(
    Tracks, Mask,
    ::testing::Values(
        MaskCase{"Track1KeepsNameAndExpiry",
                 "%B4111111111111111^MUSTERMANN/ERIKA^281210142?",
                 {},
                 "%B4111000000001111^MUSTERMANN/ERIKA^281200000?"},
        MaskCase{"Track2KeepsExpiry", ";4111111111111111=281210142?", {'*', 6, 4}, ";411111******1111=2812*****?"},
        MaskCase{"BlanksInTheAccountStay", "%B3782 822463 10005^A^2812101?", {}, "%B3782 000000 00005^A^2812000?"},
        MaskCase{"AShortAccountIsHiddenWholly", ";12345678=2812?", {}, ";00000000=2812?"},
        MaskCase{"NineDigitsHideOne", ";123456789=2812?", {}, ";123406789=2812?"},
        MaskCase{"NothingAfterTheAccount", ";123456789=?", {}, ";123406789=?"},
        MaskCase{"AnEmptyNameStaysEmpty", "%B123456789^^2812101?", {}, "%B123406789^^2812000?"},
        MaskCase{
            "AnotherTrackKeepsItsFraming", "%CAFRESNO^SAMPLE$J^1 OAK^?", {'*', 4, 4}, "%********^********^*****^?"},
        MaskCase{"NoEndSentinel", ";123456789=2812101", {}, ";123406789=2812000"},
        MaskCase{"NoAccountIsNoBankTrack", ";=2812?", {}, ";=0000?"},
        MaskCase{"LettersAreNoAccount", ";12A4=28?", {}, ";0000=00?"}, MaskCase{"OneCharacter", ";", {}, ";"},
        MaskCase{"Nothing", "", {}, ""}, MaskCase{"SentinelsAlone", "%?", {}, "%?"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(CardText, TheWalletIsReadWhole) {
    const std::vector<Card> cards = LoadCards(kWallet);
    ASSERT_EQ(9u, cards.size());
    EXPECT_EQ("visa", cards[0].id);
    EXPECT_EQ(0, cards[0].encodeType);
    EXPECT_EQ("%B4111111111111111^MUSTERMANN/ERIKA^2812101000012345678?", TextsOf(cards[0])[0]);
    EXPECT_EQ(";015555555555554444==1=0000000000000000000000?", TextsOf(cards[1])[2]);
    EXPECT_EQ(1, cards[2].encodeType);
    EXPECT_EQ(4, cards[3].encodeType) << "tracks of one's own are no bank card";
    EXPECT_EQ((std::array<bool, 3>{true, false, false}), cards[4].bad);
    EXPECT_EQ((std::array<bool, 3>{true, true, true}), cards[5].bad);
    EXPECT_EQ(3, cards[6].encodeType) << "blank";
    ASSERT_EQ(1u, cards[7].patches.size());
    EXPECT_EQ(4u, cards[7].patches[0].at);
    EXPECT_EQ((std::vector<std::uint8_t>{0x80}), cards[7].patches[0].bytes);
    EXPECT_EQ((std::vector<std::uint8_t>{0, 1, 1, 1, 0, 0, 0, 3}), cards[8].raw);
}

TEST(CardText, CharactersUpToTwoHundredFiftyFiveAreSingleBytes) {
    const auto cards = ParseCards("[[card]]\nid = \"a\"\ntrack1 = \"%B\u00FF\u0080?\"\n", "cards.toml");
    EXPECT_EQ("%B\xFF\x80?", TextsOf(cards.at(0))[0]);
    EXPECT_FALSE(Latin1("\u0100"));
    EXPECT_FALSE(Latin1("\xC3"));
}

struct BadCase {
    const char* name;
    const char* keys;
    const char* sentence;
};

class BadCard : public ::testing::TestWithParam<BadCase> {};

TEST_P(BadCard, IsReported) {
    try {
        ParseCards(std::string("[[card]]\nid = \"a\"\n") + GetParam().keys, "cards.toml");
        FAIL() << "accepted";
    } catch (const ScenarioError& error) {
        EXPECT_NE(std::string::npos, std::string(error.what()).find(GetParam().sentence)) << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, BadCard,
    ::testing::Values(BadCase{"Account", "account = \"41x\"\nexpiry = \"2812\"\nservice_code = \"101\"",
                              "cards.toml:3:11: \"account\" has to be a text of 1 to 19 digits"},
                      BadCase{"Expiry", "account = \"41\"\nexpiry = \"282\"\nservice_code = \"101\"",
                              "4:10: \"expiry\" has to be a text of 4 digits"},
                      BadCase{"ExpiryMissing", "account = \"41\"\nservice_code = \"101\"",
                              "needs \"expiry\" and \"service_code\""},
                      BadCase{"NameAlone", "name = \"A\"", "\"name\" needs an \"account\" beside it"},
                      BadCase{"Name", "account = \"41\"\nexpiry = \"2812\"\nservice_code = \"101\"\nname = \"A^B\"",
                              "\"name\" has to be up to 26 characters"},
                      BadCase{"Character", "track1 = \"\u0100\"", "no single byte"},
                      BadCase{"BadTracks", "bad_tracks = \"4\"", "3:14: \"bad_tracks\" has to be"},
                      BadCase{"Raw", "raw = \"0\"", "\"raw\" has to be up to 888 bytes"},
                      BadCase{"Patch", "patches = [\"888=00\"]", "\"888=00\" has to be a place from 0 to 887"},
                      BadCase{"Key", "tack1 = \"%B?\"", "a card has no key \"tack1\"; did you mean \"track1\"?"},
                      BadCase{"Id", "[[card]]\nid = \"masked\"", "\"masked\" is a word of the command \"swipe\""},
                      BadCase{"TwoOfAKind", "[[card]]\nid = \"a\"", "two cards have the id \"a\""}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(CardText, ATrackThatIsTooLongIsReported) {
    const std::string text = "[[card]]\nid = \"a\"\ntrack2 = \";" + std::string(112, '1') + "\"\n";
    EXPECT_THROW(ParseCards(text, "cards.toml"), ScenarioError);
    EXPECT_THROW(LoadCards("no-such-wallet.toml"), ScenarioError);
    EXPECT_THROW(ParseCards("", "cards.toml"), ScenarioError);
}

TEST(CardText, TrackListsAndPatches) {
    EXPECT_EQ((std::array<bool, 3>{true, false, true}), ParseTrackList("1,3"));
    EXPECT_EQ((std::array<bool, 3>{false, true, false}), ParseTrackList("2"));
    EXPECT_EQ((std::array<bool, 3>{}), ParseTrackList("none"));
    EXPECT_EQ((std::array<bool, 3>{true, true, true}), ParseTrackList("all"));
    for (const char* const wrong : {"", "0", "4", "1,", ",1", "12", "1;2"}) {
        EXPECT_FALSE(ParseTrackList(wrong)) << wrong;
    }
    const auto patch = ParsePatch("886=00ff");
    ASSERT_TRUE(patch);
    EXPECT_EQ(886u, patch->at);
    for (const char* const wrong : {"", "1", "1=", "=00", "1=0", "887=0000", "888=00", "x=00", "-1=00"}) {
        EXPECT_FALSE(ParsePatch(wrong)) << wrong;
    }
}

}  // namespace
}  // namespace quarlin::sim::magnesafe
