// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/card.h"

#include <algorithm>
#include <string_view>

namespace quarlin::sim::magnesafe {
namespace {

constexpr std::size_t kExpiryDigits = 4;

bool IsSeparator(char c) {
    return c == '^' || c == '=';
}

std::string Filled(std::string_view text, char fill) {
    std::string filled(text);
    std::replace_if(
        filled.begin(), filled.end(), [](char c) { return !IsSeparator(c); }, fill);
    return filled;
}

// Blanks in an account number stay, as some cards have them on track 1.
std::string MaskAccount(std::string_view account, const Masking& masking) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto digits = static_cast<std::size_t>(std::count_if(account.begin(), account.end(), isDigit));
    const bool whole = digits <= masking.first + masking.last;
    std::string masked(account);
    std::size_t digit = 0;
    for (char& c : masked) {
        if (!isDigit(c)) {
            continue;
        }
        const bool shown = !whole && (digit < masking.first || digit >= digits - masking.last);
        c = shown ? c : masking.fill;
        ++digit;
    }
    return masked;
}

// Start sentinel and format code of a bank card's track, or nothing.
std::string_view BankStart(std::string_view text) {
    if (text.starts_with("%B") && std::count(text.begin(), text.end(), '^') >= 2) {
        return text.substr(0, 2);
    }
    if (text.starts_with(";") && text.size() > 1 && text.find('=') != std::string_view::npos) {
        const std::string_view account = text.substr(1, text.find('=') - 1);
        if (!account.empty() &&
            std::all_of(account.begin(), account.end(), [](char c) { return c >= '0' && c <= '9'; })) {
            return text.substr(0, 1);
        }
    }
    return {};
}

}  // namespace

TrackTexts TextsOf(const Card& card) {
    TrackTexts texts;
    if (!card.account.empty()) {
        const std::string rest = card.expiry + card.serviceCode + card.discretionary + "?";
        texts[0] = "%B" + card.account + "^" + card.name + "^" + rest;
        texts[1] = ";" + card.account + "=" + rest;
    }
    for (std::size_t track = 0; track < kTracks; ++track) {
        texts[track] = card.tracks[track].value_or(texts[track]);
    }
    return texts;
}

std::string MaskTrack(const std::string& text, const Masking& masking) {
    if (text.size() < 2) {
        return text;
    }
    const std::string_view end = text.back() == '?' ? "?" : "";
    std::string_view start = BankStart(text);
    const bool bank = !start.empty();
    if (!bank) {
        start = std::string_view(text).substr(0, 1);
    }
    const std::string_view middle =
        std::string_view(text).substr(start.size(), text.size() - start.size() - end.size());
    std::string masked(start);
    if (!bank) {
        masked += Filled(middle, masking.fill);
    } else {
        const std::size_t account = std::min(middle.find_first_of("^="), middle.size());
        // On track 1 the name follows the account number.
        const std::size_t name = middle[account] == '^' ? middle.find('^', account + 1) : account;
        const std::size_t hidden = std::min(name + 1 + kExpiryDigits, middle.size());
        masked += MaskAccount(middle.substr(0, account), masking);
        masked += middle.substr(account, hidden - account);
        masked += Filled(middle.substr(hidden), masking.fill);
    }
    masked += end;
    return masked;
}

}  // namespace quarlin::sim::magnesafe
