// SPDX-License-Identifier: Apache-2.0
// What a callback receives of a swipe, byte for byte.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "card/read_count_win.h"
#include "support/last_error.h"

namespace quarlin::test {
namespace {

using sim::magnesafe::Form;

constexpr std::array<std::size_t, 3> kLengthAt{4, 5, 6};
constexpr std::array<std::size_t, 3> kDataAt{8, 120, 232};
constexpr std::array<std::size_t, 3> kMaskedLengthAt{506, 507, 508};
constexpr std::array<std::size_t, 3> kMaskedDataAt{509, 621, 733};
constexpr std::size_t kTrackRoom = 112;
constexpr std::size_t kEncryptionAt = 495;

void ExpectTracks(const Report& report, const std::vector<LoggedTrack>& tracks, std::array<std::size_t, 3> lengthAt,
                  std::array<std::size_t, 3> dataAt) {
    ASSERT_EQ(tracks.size(), 3U);
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        SCOPED_TRACE("track " + std::to_string(i + 1));
        EXPECT_EQ(tracks[i].bufferSize, 112);
        EXPECT_EQ(tracks[i].length, static_cast<std::int8_t>(report[lengthAt[i]]));
        const auto data = report.begin() + static_cast<std::ptrdiff_t>(dataAt[i]);
        EXPECT_EQ(tracks[i].data, Report(data, data + kTrackRoom));
    }
}

// Everything in the record that is a copy of the report.
void ExpectCopyOf(const Report& report, const LoggedSwipe& swipe) {
    EXPECT_EQ(swipe.trackCount, 3);
    EXPECT_EQ(swipe.maskedTrackCount, 3);
    EXPECT_EQ(swipe.rawLength, 888U);
    EXPECT_EQ(swipe.raw, report);
    ExpectTracks(report, swipe.tracks, kLengthAt, kDataAt);
    ExpectTracks(report, swipe.maskedTracks, kMaskedLengthAt, kMaskedDataAt);
}

TEST(CardSwipe, IsACopyOfTheReadersReportInEachForm) {
    EnabledReader enabled;
    std::size_t count = 0;
    for (const Form form : {Form::kClear, Form::kMasked, Form::kEncrypted}) {
        SCOPED_TRACE(NameOf(form));
        SwipeOptions options;
        options.form = form;
        const Report report = enabled.Reader().Swipe(options);
        const LoggedSwipe swipe = enabled.Log().AwaitCount(++count);
        ExpectCopyOf(report, swipe);
        EXPECT_TRUE(swipe.isValid);
        EXPECT_EQ(swipe.isEncrypted, form == Form::kEncrypted);
    }
}

TEST(CardSwipe, OfAClearCardHoldsItsTracks) {
    EnabledReader enabled;
    SwipeOptions options;
    options.form = Form::kClear;
    enabled.Reader().Swipe(options);
    const LoggedSwipe swipe = enabled.Log().AwaitCount(1);
    const LoggedTrack& first = swipe.tracks.at(0);
    EXPECT_EQ(std::string(first.data.begin(), first.data.begin() + first.length),
              "%B4000001234562222^MUSTERMANN/ERIKA^28121010123456?");
    const LoggedTrack& second = swipe.tracks.at(1);
    EXPECT_EQ(std::string(second.data.begin(), second.data.begin() + second.length),
              ";4000001234562222=28121010123456?");
}

TEST(CardSwipe, OfAnyBytesArrivesUnchangedAndInOrder) {
    EnabledReader enabled;
    std::mt19937 random(7);
    std::vector<Report> reports;
    for (int i = 0; i < 200; ++i) {
        Report report(888);
        for (std::size_t at = 1; at < report.size(); ++at) {
            report[at] = static_cast<std::uint8_t>(random());
        }
        enabled.Reader().Send(report);
        reports.push_back(report);
        const LoggedSwipe swipe = enabled.Log().AwaitCount(reports.size());
        ExpectCopyOf(report, swipe);
    }
    EXPECT_EQ(enabled.Log().Count(), reports.size());
}

TEST(CardSwipe, HasLengthsFrom0x80OnAsNegativeNumbers) {
    EnabledReader enabled;
    Report report = GoodReport();
    report[kLengthAt[0]] = 0x7F;
    report[kLengthAt[1]] = 0x80;
    report[kLengthAt[2]] = 0xFF;
    report[kMaskedLengthAt[0]] = 0x80;
    report[kMaskedLengthAt[1]] = 0x81;
    report[kMaskedLengthAt[2]] = 0x00;
    enabled.Reader().Send(report);
    const LoggedSwipe swipe = enabled.Log().AwaitCount(1);
    EXPECT_EQ(swipe.tracks.at(0).length, 127);
    EXPECT_EQ(swipe.tracks.at(1).length, -128);
    EXPECT_EQ(swipe.tracks.at(2).length, -1);
    EXPECT_EQ(swipe.maskedTracks.at(0).length, -128);
    EXPECT_EQ(swipe.maskedTracks.at(1).length, -127);
    EXPECT_EQ(swipe.maskedTracks.at(2).length, 0);
}

// Bytes put over a good report, and the verdict on it.
struct Verdict {
    const char* what;
    std::vector<std::pair<std::size_t, std::uint8_t>> bytes;
    bool isValid;
};

const Verdict kVerdicts[] = {
    {"nothing wrong", {}, true},
    {"track 1 not decoded", {{1, 1}}, false},
    {"track 2 not decoded", {{2, 0x80}}, false},
    {"track 3 not decoded", {{3, 0xFF}}, false},
    {"no data at all", {{4, 0}, {5, 0}, {6, 0}}, false},
    {"data of track 1 alone", {{5, 0}, {6, 0}}, true},
    {"data of track 2 alone", {{4, 0}, {6, 0}}, true},
    {"data of track 3 alone", {{4, 0}, {5, 0}}, true},
    {"no masked data, but data", {{506, 0}, {507, 0}, {508, 0}}, false},
    {"masked data of track 1 alone", {{507, 0}, {508, 0}}, true},
    {"masked data of track 3 alone", {{506, 0}, {507, 0}}, true},
    {"track 1 begins with %E", {{8, '%'}, {9, 'E'}}, false},
    {"track 2 begins with ;E", {{120, ';'}, {121, 'E'}}, false},
    {"track 1 begins with %B", {{8, '%'}, {9, 'B'}}, true},
    {"track 1 begins with %e", {{8, '%'}, {9, 'e'}}, true},
    {"track 1 begins with ;E", {{8, ';'}, {9, 'E'}}, true},
    {"track 2 begins with %E", {{120, '%'}, {121, 'E'}}, true},
    {"track 3 begins with +E", {{232, '+'}, {233, 'E'}}, true},
    {"masked track 1 begins with %E", {{509, '%'}, {510, 'E'}}, true},
    {"not encrypted, no key", {{494, 0}, {495, 0}}, true},
};

TEST(CardSwipe, IsDeliveredWithAVerdict) {
    EnabledReader enabled;
    std::size_t count = 0;
    for (const Verdict& verdict : kVerdicts) {
        SCOPED_TRACE(verdict.what);
        Report report = GoodReport();
        for (const auto& [at, byte] : verdict.bytes) {
            report[at] = byte;
        }
        enabled.Reader().Send(report);
        const LoggedSwipe swipe = enabled.Log().AwaitCount(++count);
        EXPECT_EQ(swipe.isValid, verdict.isValid);
        EXPECT_EQ(swipe.raw, report);
    }
}

TEST(CardSwipe, OfACardThatCannotBeReadIsDeliveredAsNotValid) {
    EnabledReader enabled;
    SwipeOptions options;
    options.bad = {true, true, true};
    const Report report = enabled.Reader().Swipe(options);
    const LoggedSwipe swipe = enabled.Log().AwaitCount(1);
    EXPECT_FALSE(swipe.isValid);
    ExpectCopyOf(report, swipe);
}

TEST(CardSwipe, IsEncryptedWhenBothBitsAreSet) {
    EnabledReader enabled;
    std::size_t count = 0;
    for (int status = 0; status < 256; ++status) {
        Report report = GoodReport();
        report[kEncryptionAt] = static_cast<std::uint8_t>(status);
        enabled.Reader().Send(report);
        EXPECT_EQ(enabled.Log().AwaitCount(++count).isEncrypted, (status & 6) == 6) << status;
    }
}

TEST(CardSwipe, GivesItsExtrasInsideTheCallback) {
    EnabledReader enabled;
    MagTekExtras extras{};
    QLerr result = QLERR_IO_ERROR;
    enabled.Log().DoFirst([&](int, const MagStripeData* record) { result = QLMSR_GetMagTekExtras(record, &extras); });
    const Report report = enabled.Reader().Swipe();
    enabled.Log().AwaitCount(1);
    EXPECT_EQ(result, QLERR_OK);
    EXPECT_EQ(Report(reinterpret_cast<std::uint8_t*>(&extras), reinterpret_cast<std::uint8_t*>(&extras + 1)),
              Report(report.begin() + 1, report.end()));
}

// A device whose path is that of a reader, and whose reports are not.
class CardReportLength : public ::testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Wrong, CardReportLength, ::testing::Values(64, 887, 889),
                         [](const auto& test) { return std::to_string(test.param); });

TEST_P(CardReportLength, GivesNoCallback) {
    ReaderSettings settings;
    settings.inputReportLength = GetParam();
    const ReadCount reads;
    EnabledReader enabled(settings);
    for (int i = 1; i <= 3; ++i) {
        enabled.Reader().Send(GoodReport());
        reads.AwaitReads(i + 1);
    }
    EXPECT_TRUE(IsEnabled());
    Disable();
    EXPECT_EQ(enabled.Log().Count(), 0U);
}

}  // namespace
}  // namespace quarlin::test
