// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarlin::qlctl {

// What track 1 or 2 of a bank card says. A reader that masks a track leaves '*' or zeros where digits were.
struct BankCard {
    // The format code of track 1, mostly "B"; track 2 has none.
    std::string format;
    std::string account;
    // Track 1 alone, as it is there: "DOE/JANE".
    std::string name;
    // Year and month as they are there: "2704". Empty when the track has none.
    std::string expiry;
    std::string service;
    // What the issuer put behind it: verification values among others.
    std::string discretionary;
};

// Reads a whole track from its start sentinel to its end sentinel. Nothing when it is not a bank card's.
std::optional<BankCard> ParseBankCard(int track, std::string_view text);

// Whether the last digit is the check digit of those before it; nothing when not all of them are known. A number whose
// digits the reader has replaced by zeros fails, like a number that was read wrongly.
std::optional<bool> PassesLuhn(std::string_view account);

// "2027-04" of "2704"; nothing when that is no month.
std::optional<std::string> ExpiryMonth(const BankCard& card);

// The first six and the last four digits, of a short number less; '*' for the others.
std::string MaskedAccount(std::string_view account);

// Initials: "D**/J***".
std::string MaskedName(std::string_view name);

// A track with everything hidden that could serve a thief: account, name and the issuer's data of a bank card;
// everything but the separators of any other track.
std::string MaskedTrack(int track, std::string_view text);

}  // namespace quarlin::qlctl
