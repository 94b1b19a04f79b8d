// SPDX-License-Identifier: Apache-2.0
// When a swipe counts as valid.
#include "card_report.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <set>
#include <string>
#include <utility>

namespace quarlin::test {
namespace {

bool IsValid(const CardReport& report) {
    return Parse(report).Data().isValid;
}

TEST(CardVerdict, OfAGoodSwipeIsValid) {
    EXPECT_TRUE(IsValid(GoodReport()));
}

TEST(CardVerdict, OfAnEmptyReportIsInvalid) {
    EXPECT_FALSE(IsValid(EmptyReport()));
}

TEST(CardVerdict, NeedsEachTrackToBeDecoded) {
    for (const std::size_t at : {1, 2, 3}) {
        for (int status = 0; status < 256; ++status) {
            CardReport report = GoodReport();
            report[at] = static_cast<std::uint8_t>(status);
            ASSERT_EQ(IsValid(report), status == 0) << at << ' ' << status;
        }
    }
}

struct LengthsRow {
    const char* name;
    std::size_t firstLengthAt;
};

void PrintTo(const LengthsRow& row, std::ostream* stream) {
    *stream << row.name;
}

class CardVerdictOnLengths : public testing::TestWithParam<LengthsRow> {};

TEST_P(CardVerdictOnLengths, NeedsOneTrackThatHoldsSomething) {
    for (int given = 0; given < 8; ++given) {
        for (const int length : {1, 0x7F, 0x80, 0xFF}) {
            CardReport report = GoodReport();
            for (std::size_t track = 0; track < 3; ++track) {
                const bool holdsSomething = (given >> track & 1) != 0;
                report[GetParam().firstLengthAt + track] = static_cast<std::uint8_t>(holdsSomething ? length : 0);
            }
            ASSERT_EQ(IsValid(report), given != 0) << given << ' ' << length;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, CardVerdictOnLengths,
                         testing::Values(LengthsRow{"Tracks", 4}, LengthsRow{"MaskedTracks", 506}),
                         [](const auto& test) { return test.param.name; });

struct FieldRow {
    const char* name;
    std::size_t dataAt;
    // How a field begins that stands for a track in error; none for a field whose beginning says nothing.
    const char* error;
};

void PrintTo(const FieldRow& row, std::ostream* stream) {
    *stream << row.name;
}

constexpr std::array kFieldRows{
    FieldRow{"Track1", 8, "%E"},       FieldRow{"Track2", 120, ";E"},     FieldRow{"Track3", 232, ""},
    FieldRow{"MaskedTrack1", 509, ""}, FieldRow{"MaskedTrack2", 621, ""}, FieldRow{"MaskedTrack3", 733, ""},
};

class CardVerdictOnData : public testing::TestWithParam<FieldRow> {};

// Every second byte behind each first byte that means something to one of the tracks, and the other way round.
TEST_P(CardVerdictOnData, IsInvalidForAnErrorTrackAlone) {
    std::set<std::pair<int, int>> beginnings;
    for (int byte = 0; byte < 256; ++byte) {
        for (const char sentinel : {'%', ';', '+', '?', 'E', '\0'}) {
            beginnings.emplace(sentinel, byte);
        }
        for (const char second : {'E', 'e', 'B', '%', ';', '\0'}) {
            beginnings.emplace(byte, second);
        }
    }
    for (const auto& [first, second] : beginnings) {
        CardReport report = GoodReport();
        report[GetParam().dataAt] = static_cast<std::uint8_t>(first);
        report[GetParam().dataAt + 1] = static_cast<std::uint8_t>(second);
        const bool isError = std::string{static_cast<char>(first), static_cast<char>(second)} == GetParam().error;
        ASSERT_EQ(IsValid(report), !isError) << first << ' ' << second;
    }
}

TEST_P(CardVerdictOnData, DoesNotLookAtThePlacesBeside) {
    for (const char* error : {"%E", ";E"}) {
        for (const std::size_t place : {1, 2, 110}) {
            CardReport report = GoodReport();
            Put(report, GetParam().dataAt + place, error);
            ASSERT_TRUE(IsValid(report)) << error << ' ' << place;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, CardVerdictOnData, testing::ValuesIn(kFieldRows),
                         [](const auto& test) { return test.param.name; });

// A length of 0 does not hide what the field begins with.
TEST(CardVerdict, LooksAtTheDataWhateverTheLength) {
    CardReport report = GoodReport();
    report[4] = 0;
    EXPECT_TRUE(IsValid(report));
    Put(report, 8, "%E?");
    EXPECT_FALSE(IsValid(report));
}

// All but the status bytes, the lengths and the beginnings of tracks 1 and 2 may hold anything.
TEST(CardVerdict, DependsOnNoOtherByte) {
    const std::set<std::size_t> statuses{1, 2, 3};
    const std::set<std::size_t> secondCharacters{9, 121};
    for (std::size_t at = 0; at < 888; ++at) {
        for (const int byte : {0x00, 0x01, 0x06, 0x45, 0x80, 0xFF}) {
            CardReport report = GoodReport();
            report[at] = static_cast<std::uint8_t>(byte);
            const bool spoils = (statuses.contains(at) && byte != 0) || (secondCharacters.contains(at) && byte == 0x45);
            ASSERT_EQ(IsValid(report), !spoils) << at << ' ' << byte;
        }
    }
}

TEST(CardVerdict, IsTheSameForEncryptedTracks) {
    CardReport report = GoodReport();
    report[495] = 0x06;
    for (std::size_t at = 8; at < 344; ++at) {
        report[at] = static_cast<std::uint8_t>(at * 37);
    }
    EXPECT_TRUE(IsValid(report));
    EXPECT_TRUE(Parse(report).Data().isEncrypted);
    report[506] = report[507] = report[508] = 0;
    EXPECT_FALSE(IsValid(report));
    EXPECT_TRUE(Parse(report).Data().isEncrypted);
}

}  // namespace
}  // namespace quarlin::test
