// SPDX-License-Identifier: Apache-2.0
#include "msr/swipe_report.h"

#include <algorithm>
#include <cstring>

namespace quarlin::msr {

namespace {

using Report = std::span<const std::uint8_t, kSwipeReportSize>;
using TrackOffsets = std::array<std::size_t, kTrackCount>;

// Where a swipe report keeps what the record is made of.
constexpr TrackOffsets kDecodeStatusAt = {1, 2, 3};
constexpr TrackOffsets kLengthAt = {4, 5, 6};
constexpr TrackOffsets kDataAt = {8, 120, 232};
constexpr std::size_t kEncryptionStatusAt = 495;  // its second byte
constexpr TrackOffsets kMaskedLengthAt = {506, 507, 508};
constexpr TrackOffsets kMaskedDataAt = {509, 621, 733};

// Both have to be set: keys are loaded, and encryption is on.
constexpr std::uint8_t kEncryptionBits = 0x06;

static_assert(sizeof(MagTekExtras) == kSwipeReportSize - 1, "the report without its report ID");
static_assert(alignof(MagTekExtras) == 1);

MagStripeTrackData ReadTrack(Report report, std::size_t lengthAt, std::size_t dataAt,
                             std::array<std::uint8_t, kTrackSize>& bytes) {
    std::copy_n(report.begin() + static_cast<std::ptrdiff_t>(dataAt), kTrackSize, bytes.begin());
    return {
        .bufferSize = static_cast<std::int32_t>(kTrackSize),
        .length = static_cast<std::int8_t>(report[lengthAt]),
        .data = bytes.data(),
    };
}

bool AllZero(Report report, const TrackOffsets& offsets) {
    return std::ranges::all_of(offsets, [&](std::size_t at) { return report[at] == 0; });
}

// What a reader writes in place of a track that it could not read.
bool IsErrorTrack(Report report, std::size_t dataAt, char startSentinel) {
    return report[dataAt] == static_cast<std::uint8_t>(startSentinel) && report[dataAt + 1] == 'E';
}

bool IsValid(Report report) {
    return AllZero(report, kDecodeStatusAt) && !AllZero(report, kLengthAt) && !AllZero(report, kMaskedLengthAt) &&
           !IsErrorTrack(report, kDataAt[0], '%') && !IsErrorTrack(report, kDataAt[1], ';');
}

}  // namespace

SwipeRecord::SwipeRecord(Report report) : raw_(report.begin(), report.end()) {
    for (std::size_t track = 0; track < kTrackCount; ++track) {
        tracks_[track] = ReadTrack(report, kLengthAt[track], kDataAt[track], trackBytes_[track]);
        maskedTracks_[track] =
            ReadTrack(report, kMaskedLengthAt[track], kMaskedDataAt[track], maskedTrackBytes_[track]);
    }
    data_ = {
        .trackCount = static_cast<std::int32_t>(kTrackCount),
        .tracks = tracks_.data(),
        .maskedTrackCount = static_cast<std::int32_t>(kTrackCount),
        .maskedTracks = maskedTracks_.data(),
        .rawLength = raw_.size(),
        .raw = raw_.data(),
        .isEncrypted = (report[kEncryptionStatusAt] & kEncryptionBits) == kEncryptionBits,
        .isValid = IsValid(report),
    };
}

bool ReadMagTekExtras(const MagStripeData& record, MagTekExtras& extras) {
    if (record.rawLength != kSwipeReportSize || record.raw == nullptr) {
        return false;
    }
    // The fields stand in the report's order and are bytes throughout.
    std::memcpy(&extras, record.raw + 1, sizeof extras);
    return true;
}

}  // namespace quarlin::msr
