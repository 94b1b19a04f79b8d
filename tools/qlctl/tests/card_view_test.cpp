// SPDX-License-Identifier: Apache-2.0
#include "view/card_json.h"
#include "view/card_text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;

constexpr const char* kAccount = "5412345678901232";
constexpr const char* kTrack1 = "%B5412345678901232^DOE/JANE^27041011234567890?";
constexpr const char* kTrack2 = ";5412345678901232=27041011234567890?";
constexpr const char* kMasked1 = "%B5412000000001232^DOE/JANE^27040000000000000?";
constexpr const char* kMasked2 = ";5412000000001232=27040000000000000?";

CardTrack Track(const std::string& text) {
    return {static_cast<int>(text.size()), {text.begin(), text.end()}};
}

// As the whole report holds the tracks, so does this one.
std::vector<std::uint8_t> Raw() {
    const std::string tracks = std::string("\0", 1) + kTrack1 + kTrack2;
    return {tracks.begin(), tracks.end()};
}

CardSwipe ClearSwipe() {
    CardSwipe swipe;
    swipe.isValid = true;
    swipe.tracks = {Track(kTrack1), Track(kTrack2), Track("")};
    swipe.maskedTracks = {Track(kMasked1), Track(kMasked2), Track("")};
    swipe.readerSerial = "B000123";
    swipe.raw = Raw();
    return swipe;
}

CardSwipe EncryptedSwipe() {
    CardSwipe swipe = ClearSwipe();
    swipe.isEncrypted = true;
    swipe.tracks = {Track("\x8F\xC2\x10"), Track("\x77"), Track("")};
    swipe.keySerialNumber = {0xFF, 0xFF, 0x98, 0x76};
    return swipe;
}

TEST(CardReaderTable, ListsReaders) {
    EXPECT_EQ(CardReaderTable({{0, "MAGTEK(USB)", "B000123", "21042840G01", true, 0},
                               {12, "MAGTEK(USB)", "B7", "2104\x1b", false, 0}}),
              "Index  Name         Serial number  Software     Encrypts\n"
              "0      MAGTEK(USB)  B000123        21042840G01  yes\n"
              "12     MAGTEK(USB)  B7             2104.        no\n");
}

TEST(CardReaderTable, SaysWhenThereIsNone) {
    EXPECT_EQ(CardReaderTable({}), "no card reader is plugged in\n");
}

TEST(CardReadersJson, IsOneObject) {
    EXPECT_EQ(CardReadersJson({{1, "MAGTEK(USB)", "B1", "S", true, 0}}),
              "{\"readers\":[{\"index\":1,\"name\":\"MAGTEK(USB)\",\"serial_number\":\"B1\",\"software_id\":\"S\","
              "\"encrypts\":true,\"vendor\":0}]}\n");
    EXPECT_EQ(CardReadersJson({}), "{\"readers\":[]}\n");
}

TEST(SwipeText, ShowsAClearCardMasked) {
    EXPECT_EQ(SwipeText(ClearSwipe(), 3, Privacy::kMask),
              "Swipe 3  valid, not encrypted, reader B000123\n"
              "  Track 1  %B541234******1232^D**/J***^2704101**********?\n"
              "           format B, account 541234******1232 (check digit correct), name D**/J***, expires 2027-04, "
              "service code 101\n"
              "  Track 2  ;541234******1232=2704101**********?\n"
              "           account 541234******1232 (check digit correct), expires 2027-04, service code 101\n"
              "  Track 3  empty\n");
}

TEST(SwipeText, ShowsAClearCardWhollyWhenToldTo) {
    EXPECT_EQ(SwipeText(ClearSwipe(), 1, Privacy::kShow),
              "Swipe 1  valid, not encrypted, reader B000123\n"
              "  Track 1  %B5412345678901232^DOE/JANE^27041011234567890?\n"
              "           format B, account 5412345678901232 (check digit correct), name DOE/JANE, expires 2027-04, "
              "service code 101\n"
              "  Track 2  ;5412345678901232=27041011234567890?\n"
              "           account 5412345678901232 (check digit correct), expires 2027-04, service code 101\n"
              "  Track 3  empty\n");
}

TEST(SwipeText, ShowsWhatTheReaderLetsSeeOfAnEncryptedCard) {
    EXPECT_EQ(SwipeText(EncryptedSwipe(), 1, Privacy::kMask),
              "Swipe 1  valid, encrypted, reader B000123\n"
              "  Track 1  encrypted, 3 bytes\n"
              "           %B541200******1232^D**/J***^2704000**********?\n"
              "           format B, account 541200******1232, name D**/J***, expires 2027-04, service code 000\n"
              "  Track 2  encrypted, 1 bytes\n"
              "           ;541200******1232=2704000**********?\n"
              "           account 541200******1232, expires 2027-04, service code 000\n"
              "  Track 3  empty\n");
}

TEST(SwipeText, ShowsTheBytesOfAnEncryptedCardWhenToldTo) {
    const std::string text = SwipeText(EncryptedSwipe(), 1, Privacy::kShow);
    EXPECT_NE(text.find("  Track 1  encrypted, 3 bytes\n           8FC210\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  Key      FFFF9876\n"), std::string::npos) << text;
}

TEST(SwipeText, TellsWhatIsWrongWithATrack) {
    CardSwipe swipe = ClearSwipe();
    swipe.isValid = false;
    swipe.readerSerial.clear();
    swipe.tracks = {CardTrack{-3, {}}, CardTrack{0, {}}, CardTrack{113, {}}};
    swipe.decodeStatus = {0, 2, 0};
    EXPECT_EQ(SwipeText(swipe, 1, Privacy::kMask),
              "Swipe 1  not valid, not encrypted\n"
              "  Track 1  length -3 is impossible\n"
              "  Track 2  not decoded, status 2\n"
              "  Track 3  length 113 is impossible\n");
    swipe.tracks[1] = Track(";E?");
    EXPECT_NE(SwipeText(swipe, 1, Privacy::kShow).find("  Track 2  not decoded, status 2: ;E?\n"), std::string::npos);
}

TEST(SwipeText, SaysWhenTheCheckDigitDoesNotFit) {
    CardSwipe swipe = ClearSwipe();
    swipe.tracks[1] = Track(";5412345678901239=2704101?");
    EXPECT_NE(SwipeText(swipe, 1, Privacy::kMask).find("541234******1239 (check digit does not fit)"),
              std::string::npos);
}

TEST(SwipeJson, ShowsAClearCardMasked) {
    const Json swipe = Json::parse(SwipeJson(ClearSwipe(), 3, Privacy::kMask));
    EXPECT_EQ(swipe["swipe"], 3);
    EXPECT_EQ(swipe["valid"], true);
    EXPECT_EQ(swipe["encrypted"], false);
    EXPECT_EQ(swipe["reader_serial"], "B000123");
    EXPECT_EQ(swipe["tracks"][0], Json::parse(R"({"track": 1, "length": 46, "decode_status": 0,
        "text": "%B541234******1232^D**/J***^2704101**********?",
        "card": {"format": "B", "account": "541234******1232", "check_digit_correct": true, "name": "D**/J***",
                 "expiry": "2027-04", "service_code": "101"}})"));
    EXPECT_EQ(swipe["tracks"][2],
              Json::parse(R"({"track": 3, "length": 0, "decode_status": 0, "text": null, "card": null})"));
    EXPECT_EQ(swipe["masked_tracks"][1]["card"]["check_digit_correct"], nullptr);
    EXPECT_EQ(swipe["masked_tracks"][1]["text"], ";541200******1232=2704000**********?");
    EXPECT_EQ(swipe.count("raw_hex"), 0U);
    EXPECT_EQ(swipe.count("key_serial_number"), 0U);
}

TEST(SwipeJson, AddsTheBytesWhenToldTo) {
    const Json swipe = Json::parse(SwipeJson(EncryptedSwipe(), 1, Privacy::kShow));
    EXPECT_EQ(swipe["tracks"][0]["data_hex"], "8FC210");
    EXPECT_EQ(swipe["tracks"][0]["text"], nullptr);
    EXPECT_EQ(swipe["masked_tracks"][1]["text"], kMasked2);
    EXPECT_EQ(swipe["masked_tracks"][1]["card"]["discretionary"], "0000000000");
    EXPECT_EQ(swipe["key_serial_number"], "FFFF9876");
    EXPECT_EQ(swipe["raw_hex"].get<std::string>().substr(0, 6), "002542");
}

// Every way of showing a swipe, against every place where a reader may put an account number or a name.
TEST(MaskedSwipe, ShowsNoAccountAndNoNameAnywhere) {
    constexpr const char* kAccountHex = "35343132333435363738393031323332";
    CardSwipe withGarbage = ClearSwipe();
    withGarbage.tracks[0] = Track(std::string(kTrack1) + kAccount);
    withGarbage.tracks[2] = Track(kAccount);
    CardSwipe maskedNothing = EncryptedSwipe();
    maskedNothing.tracks = maskedNothing.maskedTracks = {Track(kTrack1), Track(kTrack2), Track(kAccount)};
    CardSwipe notDecoded = ClearSwipe();
    notDecoded.decodeStatus = {1, 1, 1};
    for (const CardSwipe& swipe : {ClearSwipe(), EncryptedSwipe(), withGarbage, maskedNothing, notDecoded}) {
        for (const std::string& shown : {SwipeText(swipe, 1, Privacy::kMask), SwipeJson(swipe, 1, Privacy::kMask)}) {
            for (const char* const secret : {kAccount, kAccountHex, "56789012", "DOE", "JANE", "1234567890", "_hex"}) {
                EXPECT_EQ(shown.find(secret), std::string::npos) << secret << " in " << shown;
            }
        }
        EXPECT_NE((SwipeJson(swipe, 1, Privacy::kShow)).find(kAccountHex), std::string::npos) << "the test looks well";
    }
}

}  // namespace
}  // namespace quarlin::qlctl
