// SPDX-License-Identifier: Apache-2.0
// What a card reader may report as a swipe. The input is the report; it is cut or filled up with zeros where only a
// report's own size reaches the product.
#include "msr/swipe_report.h"
#include "reference/reference_card_reader.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

using reference::ReportBytes;

constexpr std::size_t kReportSize = 888;
constexpr std::uint8_t kUntouched = 0x5A;

void Check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "the report was not taken as it is: %s\n", what);
        std::abort();
    }
}

template <std::size_t size>
bool Same(const std::uint8_t (&field)[size], const ReportBytes& expected) {
    return std::ranges::equal(field, expected);
}

bool Same(std::uint8_t field, const ReportBytes& expected) {
    return expected == ReportBytes{field};
}

void CheckTracks(const MagStripeTrackData* tracks, const ReportBytes& lengths,
                 const std::array<ReportBytes, 3>& expected) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const MagStripeTrackData& track = tracks[i];
        Check(track.bufferSize == 112, "size of a track's buffer");
        Check(track.length == reference::SignedLength(lengths[i]), "length of a track");
        Check(std::equal(expected[i].begin(), expected[i].end(), track.data, track.data + 112), "data of a track");
    }
}

void CheckRecord(const MagStripeData& record, const ReportBytes& report) {
    const reference::Swipe expected = reference::ReadSwipe(report);
    Check(record.trackCount == 3 && record.maskedTrackCount == 3, "number of tracks");
    CheckTracks(record.tracks, expected.length, expected.data);
    CheckTracks(record.maskedTracks, expected.maskedLength, expected.maskedData);
    Check(record.rawLength == kReportSize, "length of the report");
    Check(std::equal(report.begin(), report.end(), record.raw, record.raw + kReportSize), "copy of the report");
    Check(record.isEncrypted == expected.IsEncrypted(), "encryption");
    Check(record.isValid == expected.IsValid(), "verdict");
}

void CheckExtras(const MagTekExtras& extras, const ReportBytes& report) {
    const reference::Swipe expected = reference::ReadSwipe(report);
    Check(Same(extras.decodeStatus, expected.decodeStatus), "decode status");
    Check(Same(extras.length, expected.length), "lengths");
    Check(Same(extras.cardEncodeType, expected.cardEncodeType), "encode type");
    for (std::size_t i = 0; i < 3; ++i) {
        Check(Same(extras.data[i], expected.data[i]), "track data");
        Check(Same(extras.maskedData[i], expected.maskedData[i]), "masked track data");
    }
    Check(Same(extras.reserved1, expected.reserved1), "first reader field");
    Check(Same(extras.magnePrintStatus, expected.magnePrintStatus), "MagnePrint status");
    Check(Same(extras.magnePrintLength, expected.magnePrintLength), "MagnePrint length");
    Check(Same(extras.magnePrint, expected.magnePrint), "MagnePrint data");
    Check(Same(extras.deviceSerialNumber, expected.deviceSerialNumber), "serial number");
    Check(Same(extras.encryptionStatus, expected.encryptionStatus), "encryption status");
    Check(Same(extras.keySerialNumber, expected.keySerialNumber), "key serial number");
    Check(Same(extras.maskedLength, expected.maskedLength), "masked lengths");
    Check(Same(extras.encryptedSessionId, expected.encryptedSessionId), "session");
    Check(Same(extras.absoluteLength, expected.absoluteLength), "absolute lengths");
    Check(Same(extras.encryptionCounter, expected.encryptionCounter), "encryption counter");
    Check(Same(extras.reserved2, expected.reserved2), "second reader field");
    Check(Same(extras.reserved3, expected.reserved3), "third reader field");
    Check(Same(extras.reserved4, expected.reserved4), "fourth reader field");
}

// Fields of a record that an application may have made up. They lie on the heap: a byte written beside them is noticed.
void CheckExtrasOf(const MagStripeData& record, bool accepted, const ReportBytes& report) {
    const auto extras = std::make_unique<MagTekExtras>();
    std::memset(extras.get(), kUntouched, sizeof *extras);
    Check(msr::ReadMagTekExtras(record, *extras) == accepted, "whether the record is accepted");
    if (accepted) {
        CheckExtras(*extras, report);
        return;
    }
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(extras.get());
    Check(std::all_of(bytes, bytes + sizeof *extras, [](std::uint8_t byte) { return byte == kUntouched; }),
          "refused, and yet written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Exactly as long as they are, so that a byte read behind them is noticed.
    ReportBytes given(data, data + size);
    ReportBytes report = given;
    report.resize(kReportSize);
    report.shrink_to_fit();

    auto swipe = std::make_unique<ReportBytes>(report);
    const msr::SwipeRecord record(std::span<const std::uint8_t, kReportSize>(swipe->data(), swipe->size()));
    // The record stands alone.
    swipe.reset();
    CheckRecord(record.Data(), report);
    CheckExtrasOf(record.Data(), true, report);

    MagStripeData made{};
    made.rawLength = given.size();
    made.raw = given.data();
    CheckExtrasOf(made, size == kReportSize, report);
    made.rawLength = std::uint64_t{kReportSize} + ((std::uint64_t{size} + 1) << 32);
    CheckExtrasOf(made, false, report);
    made.rawLength = kReportSize;
    made.raw = nullptr;
    CheckExtrasOf(made, false, report);
    return 0;
}
