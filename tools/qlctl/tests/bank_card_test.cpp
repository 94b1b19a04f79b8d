// SPDX-License-Identifier: Apache-2.0
#include "view/bank_card.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

constexpr const char* kTrack1 = "%B5412345678901232^DOE/JANE Q^27041011234567890?";
constexpr const char* kTrack2 = ";5412345678901232=27041011234567890?";

TEST(BankCard, IsReadFromTrack1) {
    const auto card = ParseBankCard(1, kTrack1);
    ASSERT_TRUE(card);
    EXPECT_EQ(card->format, "B");
    EXPECT_EQ(card->account, "5412345678901232");
    EXPECT_EQ(card->name, "DOE/JANE Q");
    EXPECT_EQ(card->expiry, "2704");
    EXPECT_EQ(card->service, "101");
    EXPECT_EQ(card->discretionary, "1234567890");
}

TEST(BankCard, IsReadFromTrack2) {
    const auto card = ParseBankCard(2, kTrack2);
    ASSERT_TRUE(card);
    EXPECT_EQ(card->format, "");
    EXPECT_EQ(card->account, "5412345678901232");
    EXPECT_EQ(card->name, "");
    EXPECT_EQ(card->expiry, "2704");
    EXPECT_EQ(card->service, "101");
    EXPECT_EQ(card->discretionary, "1234567890");
}

TEST(BankCard, MayLackExpiryAndServiceCode) {
    const auto card = ParseBankCard(2, ";5412345678901232==77?");
    EXPECT_EQ(card, std::nullopt) << "a separator stands for each of them";
    const auto bare = ParseBankCard(2, ";5412345678901232===77?");
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->expiry, "");
    EXPECT_EQ(bare->service, "");
    EXPECT_EQ(bare->discretionary, "77");
}

TEST(BankCard, MayBeMaskedByTheReader) {
    const auto card = ParseBankCard(1, "%B5412********1232^DOE/JANE^*******0000?");
    ASSERT_TRUE(card);
    EXPECT_EQ(card->account, "5412********1232");
    EXPECT_EQ(card->expiry, "****");
}

struct OtherTrack {
    int track;
    const char* text;
};

void PrintTo(const OtherTrack& other, std::ostream* stream) {
    *stream << other.track << " " << other.text;
}

class NoBankCard : public testing::TestWithParam<OtherTrack> {};

TEST_P(NoBankCard, IsNotTakenForOne) {
    EXPECT_FALSE(ParseBankCard(GetParam().track, GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Tracks, NoBankCard,
                         testing::Values(OtherTrack{1, ""}, OtherTrack{2, ""}, OtherTrack{1, "%"}, OtherTrack{2, ";"},
                                         OtherTrack{1, kTrack2}, OtherTrack{2, kTrack1}, OtherTrack{3, kTrack2},
                                         OtherTrack{0, kTrack1}, OtherTrack{1, "%E?"}, OtherTrack{2, ";E?"},
                                         OtherTrack{1, "%5412345678901232^DOE^2704101?"},       // no format code
                                         OtherTrack{1, "%B^DOE^2704101?"},                      // no account
                                         OtherTrack{1, "%B54123456789012321111^DOE^2704101?"},  // 20 digits
                                         OtherTrack{1, "%B5412A^DOE^2704101?"},            // a letter in the account
                                         OtherTrack{1, "%B5412345678901232^DOE?"},         // ends after the name
                                         OtherTrack{1, "%B5412345678901232^DOE^270410?"},  // half a service code
                                         OtherTrack{2, ";5412345678901232=2704101"},       // no end sentinel
                                         OtherTrack{
                                             2, ";5412345678901232=2704101?5412345678901232"}));  // something behind it

TEST(Luhn, TellsARightCheckDigit) {
    EXPECT_EQ(PassesLuhn("5412345678901232"), true);
    EXPECT_EQ(PassesLuhn("79927398713"), true);
    EXPECT_EQ(PassesLuhn("5412345678901233"), false);
}

TEST(Luhn, SaysNothingAboutANumberThatIsNotKnown) {
    EXPECT_EQ(PassesLuhn("541234******1232"), std::nullopt);
    EXPECT_EQ(PassesLuhn(""), std::nullopt);
}

TEST(ExpiryMonth, IsReadWhenItIsAMonth) {
    BankCard card;
    card.expiry = "2704";
    EXPECT_EQ(ExpiryMonth(card), "2027-04");
    card.expiry = "3012";
    EXPECT_EQ(ExpiryMonth(card), "2030-12");
    for (const char* const none : {"", "2700", "2713", "****", "2*04"}) {
        card.expiry = none;
        EXPECT_EQ(ExpiryMonth(card), std::nullopt) << none;
    }
}

TEST(MaskedAccount, KeepsSixAndFourDigitsAndLessOfAShortNumber) {
    EXPECT_EQ(MaskedAccount("5412345678901232"), "541234******1232");
    EXPECT_EQ(MaskedAccount("5412345678901232111"), "541234*********2111");
    EXPECT_EQ(MaskedAccount("1234567890123"), "123456***0123");
    EXPECT_EQ(MaskedAccount("123456789012"), "********9012");
    EXPECT_EQ(MaskedAccount("12345678"), "********");
    EXPECT_EQ(MaskedAccount(""), "");
}

TEST(MaskedName, KeepsTheInitials) {
    EXPECT_EQ(MaskedName("DOE/JANE Q.DR"), "D**/J*** Q.D*");
    EXPECT_EQ(MaskedName("5412345678901232"), "****************") << "whatever stands in the name's place";
    EXPECT_EQ(MaskedName(""), "");
}

TEST(MaskedTrack, HidesWhatCouldServeAThief) {
    EXPECT_EQ(MaskedTrack(1, kTrack1), "%B541234******1232^D**/J*** Q^2704101**********?");
    EXPECT_EQ(MaskedTrack(2, kTrack2), ";541234******1232=2704101**********?");
    EXPECT_EQ(MaskedTrack(2, ";5412345678901232===77?"), ";541234******1232===**?");
}

TEST(MaskedTrack, KeepsNothingButSeparatorsOfAnotherTrack) {
    EXPECT_EQ(MaskedTrack(3, ";011234567890=724724?"), ";************=******?");
    EXPECT_EQ(MaskedTrack(1, kTrack2), ";****************=*****************?");
    EXPECT_EQ(MaskedTrack(1, "%B5412 3456 7890 1232^DOE^2704101?"), "%***** **** **** ****^***^*******?");
    EXPECT_EQ(MaskedTrack(2, ";5412345678901232=9999101?x"), ";****************=*******?*");
    EXPECT_EQ(MaskedTrack(2, ";5412345678901232=9999101?"), ";541234******1232=****101?") << "no month";
    EXPECT_EQ(MaskedTrack(1, "\xE9\x01"), "**");
}

}  // namespace
}  // namespace quarlin::qlctl
