// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/swipe_report.h"

#include <gtest/gtest.h>

#include <set>

#include "hid/hex.h"

namespace quarlin::sim::magnesafe {
namespace {

const std::string kTrack1 = "%B4111111111111111^MUSTERMANN/ERIKA^2812101?";
const std::string kTrack2 = ";4111111111111111=2812101?";
const std::string kMasked1 = "%B4111000000001111^MUSTERMANN/ERIKA^2812000?";
const std::string kMasked2 = ";4111000000001111=2812000?";

Card BankCard() {
    Card card;
    card.id = "visa";
    card.tracks = {kTrack1, kTrack2, std::nullopt};
    return card;
}

SwipeSource Source(std::uint32_t number = 1) {
    SwipeSource source;
    source.serial = "B30A5C7";
    source.keySerial = {0x90, 0x10, 0x01, 0x0B, 0x30, 0xA5, 0xC7, 0xE0, 0, 0};
    source.number = number;
    return source;
}

SwipeReport Swipe(Form form, const Card& card = BankCard(), std::uint32_t number = 1) {
    SwipeOptions options;
    options.form = form;
    return Build(card, Source(number), options);
}

std::string TextAt(const SwipeReport& report, std::size_t at, std::size_t length) {
    return {report.begin() + static_cast<std::ptrdiff_t>(at),
            report.begin() + static_cast<std::ptrdiff_t>(at + length)};
}

std::string HexAt(const SwipeReport& report, std::size_t at, std::size_t length) {
    return HexText(std::span(report).subspan(at, length));
}

TEST(SwipeReport, AClearSwipeShowsTheTracksTwice) {
    const SwipeReport report = Swipe(Form::kClear);
    EXPECT_EQ("00000000", HexAt(report, 0, 4)) << "report ID and decode status";
    EXPECT_EQ(kTrack1.size(), report[4]);
    EXPECT_EQ(kTrack2.size(), report[5]);
    EXPECT_EQ(0, report[6]);
    EXPECT_EQ(kTrack1 + std::string(112 - kTrack1.size(), '\0'), TextAt(report, 8, 112));
    EXPECT_EQ(kTrack2 + std::string(112 - kTrack2.size(), '\0'), TextAt(report, 120, 112));
    EXPECT_EQ(std::string(112, '\0'), TextAt(report, 232, 112));
    EXPECT_EQ(kTrack1.size(), report[506]);
    EXPECT_EQ(kTrack2.size(), report[507]);
    EXPECT_EQ(kTrack1, TextAt(report, 509, kTrack1.size()));
    EXPECT_EQ(kTrack2, TextAt(report, 621, kTrack2.size()));
    EXPECT_EQ(0, report[495]) << "no key, no encryption";
    EXPECT_EQ(std::string(20, '0'), HexAt(report, 496, 10)) << "key serial number";
    EXPECT_EQ(std::string("B30A5C7") + std::string(9, '\0'), TextAt(report, 478, 16));
    EXPECT_EQ("000001", HexAt(report, 857, 3));
}

TEST(SwipeReport, AMaskedSwipeShowsNoAccountNumber) {
    const SwipeReport report = Swipe(Form::kMasked);
    EXPECT_EQ(kMasked1, TextAt(report, 8, report[4]));
    EXPECT_EQ(kMasked2, TextAt(report, 120, report[5]));
    EXPECT_EQ(kMasked1, TextAt(report, 509, report[506]));
    EXPECT_EQ(kMasked2, TextAt(report, 621, report[507]));
    EXPECT_EQ(0x02, report[495]) << "a key, no encryption";
}

TEST(SwipeReport, AnEncryptedSwipeFillsEveryField) {
    const SwipeReport report = Swipe(Form::kEncrypted);
    EXPECT_EQ(48, report[4]) << "44 characters in blocks of 8";
    EXPECT_EQ(32, report[5]);
    EXPECT_EQ(0, report[6]);
    EXPECT_EQ(kMasked1, TextAt(report, 509, report[506]));
    EXPECT_EQ(kMasked2, TextAt(report, 621, report[507]));
    EXPECT_EQ(std::string::npos, TextAt(report, 0, report.size()).find("41111111"));
    EXPECT_EQ(std::string(64, '\0'), TextAt(report, 8 + 48, 64)) << "behind the cipher bytes";
    EXPECT_EQ("00304001", HexAt(report, 345, 4)) << "MagnePrint status";
    EXPECT_EQ(56, report[349]);
    EXPECT_NE(std::string(112, '0'), HexAt(report, 350, 56));
    EXPECT_EQ(std::string(144, '0'), HexAt(report, 406, 72));
    EXPECT_EQ(0x06, report[495]);
    EXPECT_EQ("9010010B30A5C7E00001", HexAt(report, 496, 10)) << "the swipe counts in the last 21 bits";
    EXPECT_NE(std::string(16, '0'), HexAt(report, 845, 8)) << "session";
    EXPECT_EQ(kTrack1.size(), report[853]) << "before encryption";
    EXPECT_EQ(kTrack2.size(), report[854]);
    EXPECT_EQ(0, report[855]);
    EXPECT_EQ(54, report[856]);
}

TEST(SwipeReport, RepeatsByteForByteAndTellsSwipesApart) {
    EXPECT_EQ(Swipe(Form::kEncrypted), Swipe(Form::kEncrypted));
    const SwipeReport first = Swipe(Form::kEncrypted);
    const SwipeReport second = Swipe(Form::kEncrypted, BankCard(), 0x123456);
    EXPECT_NE(TextAt(first, 8, 48), TextAt(second, 8, 48)) << "another key each time";
    EXPECT_EQ("123456", HexAt(second, 857, 3));
    EXPECT_EQ(0x123456u, NumberOf(second));
    EXPECT_EQ("9010010B30A5C7F23456", HexAt(second, 496, 10));
    EXPECT_EQ(0u, NumberOf(std::span(second).first(859))) << "too short to have a number";
    EXPECT_EQ(TextAt(first, 509, 336), TextAt(second, 509, 336)) << "the same card";
}

TEST(SwipeReport, CipherBytesNeverLookLikeABadTrack) {
    Card card = BankCard();
    std::set<std::uint8_t> firsts;
    for (std::uint32_t number = 1; number <= 20000; ++number) {
        const SwipeReport report = Swipe(Form::kEncrypted, card, number);
        ASSERT_NE('E', report[9]) << number;
        ASSERT_NE('E', report[121]) << number;
        firsts.insert(report[9]);
    }
    EXPECT_EQ(255u, firsts.size()) << "every other byte comes up";
}

class BadTracks : public ::testing::TestWithParam<Form> {};

TEST_P(BadTracks, SayEInEveryForm) {
    Card card = BankCard();
    card.bad[0] = true;
    SwipeOptions options;
    options.form = GetParam();
    options.bad[2] = true;
    const SwipeReport report = Build(card, Source(), options);
    EXPECT_EQ("010001", HexAt(report, 1, 3));
    EXPECT_EQ("%E?", TextAt(report, 8, report[4]));
    EXPECT_EQ("%E?", TextAt(report, 509, report[506]));
    EXPECT_EQ("+E?", TextAt(report, 232, report[6]));
    EXPECT_EQ("+E?", TextAt(report, 733, report[508]));
    EXPECT_GE(report[5], kTrack2.size());

    options.bad = {false, true, false};
    EXPECT_EQ(";E?", TextAt(Build(card, Source(), options), 120, 3));
}

INSTANTIATE_TEST_SUITE_P(Forms, BadTracks, ::testing::Values(Form::kClear, Form::kMasked, Form::kEncrypted),
                         [](const auto& tested) { return std::string(NameOf(tested.param)); });

TEST(SwipeReport, TracksThatTheHeadDoesNotMeetAreEmpty) {
    SwipeOptions options;
    options.tracks = {false, true, false};
    options.bad = {true, false, false};
    const SwipeReport report = Build(BankCard(), Source(), options);
    EXPECT_EQ("000000", HexAt(report, 1, 3));
    EXPECT_EQ(0, report[4]);
    EXPECT_EQ(0, report[506]);
    EXPECT_EQ(std::string(224, '0'), HexAt(report, 8, 112));
    EXPECT_EQ(32, report[5]);
    options.tracks = {};
    EXPECT_EQ("000000000000", HexAt(Build(BankCard(), Source(), options), 1, 6));
}

TEST(SwipeReport, ALongTextFillsItsFieldAndNoMore) {
    for (const Form form : {Form::kClear, Form::kMasked, Form::kEncrypted}) {
        Card card;
        card.tracks[0] = "%B" + std::string(200, 'x');
        card.tracks[1] = ";1=1?";
        const SwipeReport report = Swipe(form, card);
        EXPECT_EQ(112, report[4]) << NameOf(form);
        EXPECT_EQ(112, report[506]);
        EXPECT_EQ(112, report[853]);
        EXPECT_EQ(form == Form::kEncrypted ? 8 : 5, report[5]);
    }
}

TEST(SwipeReport, PatchesComeLastAndTheSwipersLater) {
    Card card = BankCard();
    card.patches = {{4, {0x80, 0x81}}, {887, {0xAA, 0xBB}}};
    SwipeOptions options;
    options.patches = {{5, {0xFF}}};
    const SwipeReport report = Build(card, Source(), options);
    EXPECT_EQ("80FF00", HexAt(report, 4, 3));
    EXPECT_EQ(0xAA, report[887]) << "what goes beyond the report is left out";
}

TEST(SwipeReport, ARawCardIsItsBytes) {
    Card card;
    card.raw = {0, 1, 2, 3};
    card.patches = {{2, {9}}};
    const SwipeReport report = Swipe(Form::kEncrypted, card);
    EXPECT_EQ("00010903", HexAt(report, 0, 4));
    EXPECT_EQ(std::string(2 * 884, '0'), HexAt(report, 4, 884));
}

TEST(SwipeReport, ALongSerialNumberIsCut) {
    SwipeSource source = Source();
    source.serial = "0123456789ABCDEFGHIJ";
    const SwipeReport report =
        Build(BankCard(), source, {.form = Form::kClear, .tracks = {}, .bad = {}, .patches = {}});
    EXPECT_EQ("0123456789ABCDEF", TextAt(report, 478, 16));
    EXPECT_EQ(0, report[494]);
}

TEST(SwipeReport, TheMakersFieldsAreNotZero) {
    const SwipeReport report = Swipe(Form::kClear);
    EXPECT_NE(std::string(16, '0'), HexAt(report, 860, 8));
    EXPECT_NE(std::string(32, '0'), HexAt(report, 868, 16));
    EXPECT_NE(std::string(8, '0'), HexAt(report, 884, 4));
}

TEST(Form, NamesGoBothWays) {
    for (const Form form : {Form::kClear, Form::kMasked, Form::kEncrypted}) {
        EXPECT_EQ(form, FormNamed(NameOf(form)));
    }
    EXPECT_FALSE(FormNamed("plain"));
}

}  // namespace
}  // namespace quarlin::sim::magnesafe
