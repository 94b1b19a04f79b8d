// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/card_reader.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quarlin::msr {

// A swipe as the reader reports it. Offsets count from the report ID.
inline constexpr std::size_t kSwipeReportSize = 888;
inline constexpr std::size_t kTrackSize = 112;
inline constexpr std::size_t kTrackCount = 3;

// The record of one swipe, with everything that its pointers point to.
class SwipeRecord {
  public:
    // The report has kSwipeReportSize bytes. Throws std::bad_alloc.
    explicit SwipeRecord(std::span<const std::uint8_t, kSwipeReportSize> report);
    SwipeRecord(const SwipeRecord&) = delete;
    SwipeRecord& operator=(const SwipeRecord&) = delete;

    const MagStripeData& Data() const { return data_; }

  private:
    std::vector<std::uint8_t> raw_;
    // Copies of their own: what a callback does to a track leaves the report as it was.
    std::array<std::array<std::uint8_t, kTrackSize>, kTrackCount> trackBytes_{};
    std::array<std::array<std::uint8_t, kTrackSize>, kTrackCount> maskedTrackBytes_{};
    std::array<MagStripeTrackData, kTrackCount> tracks_{};
    std::array<MagStripeTrackData, kTrackCount> maskedTracks_{};
    MagStripeData data_{};
};

// False, with nothing written, when the record holds no swipe report.
bool ReadMagTekExtras(const MagStripeData& record, MagTekExtras& extras);

}  // namespace quarlin::msr
