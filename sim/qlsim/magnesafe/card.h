// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarlin::sim::magnesafe {

inline constexpr std::size_t kTracks = 3;
inline constexpr std::size_t kTrackRoom = 112;  // bytes of a track in a report

// Bytes put over a finished report.
struct Patch {
    std::size_t at = 0;  // counted from the report ID, which is at 0
    std::vector<std::uint8_t> bytes;
};

// What is on a card, and what is wrong with it.
struct Card {
    std::string id;  // what commands call it

    // Of a bank card; without an account number the tracks are blank but for what is given literally.
    std::string name;           // as on track 1, "MUSTERMANN/ERIKA"
    std::string account;        // digits
    std::string expiry;         // YYMM
    std::string serviceCode;    // three digits
    std::string discretionary;  // digits

    // Whole texts of tracks, with their sentinels, instead of what follows from the above.
    std::array<std::optional<std::string>, kTracks> tracks;
    // Tracks that the reader's head cannot decode.
    std::array<bool, kTracks> bad{};
    std::uint8_t encodeType = 0;  // 0 a bank card, 1 a driver's licence, 3 blank, 4 another

    // The whole report instead of all this.
    std::vector<std::uint8_t> raw;
    std::vector<Patch> patches;
};

using TrackTexts = std::array<std::string, kTracks>;

// What the tracks hold. Nothing is cut: a literal text may be too long for a report.
TrackTexts TextsOf(const Card& card);

// How a reader hides what it may not show.
struct Masking {
    char fill = '0';  // or '*'
    std::size_t first = 4;
    std::size_t last = 4;
};

// Of a bank card's track the first and last digits of the account number, the name, the expiry date and the framing
// stay, of any other track the sentinels and separators; the rest is filled. An account number with no digits to hide
// between the first and the last is hidden wholly.
std::string MaskTrack(const std::string& text, const Masking& masking);

}  // namespace quarlin::sim::magnesafe
