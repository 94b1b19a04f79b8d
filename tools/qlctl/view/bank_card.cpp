// SPDX-License-Identifier: Apache-2.0
#include "view/bank_card.h"

#include <algorithm>

namespace quarlin::qlctl {
namespace {

constexpr size_t kLongestAccount = 19;
constexpr size_t kLongestName = 40;
constexpr size_t kExpiryDigits = 4;
constexpr size_t kServiceDigits = 3;
constexpr char kEndSentinel = '?';

// Not isdigit and isalpha, which ask the process locale.
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool IsDigitOrMask(char c) {
    return IsDigit(c) || c == '*';
}

// Takes a track apart from front to back.
class TrackText {
  public:
    explicit TrackText(std::string_view text) : rest_(text) {}

    bool Skip(char c) {
        const bool found = rest_.starts_with(c);
        rest_.remove_prefix(found ? 1 : 0);
        return found;
    }
    // Everything before the separator, which is skipped; nothing when there is none.
    std::optional<std::string> Until(char separator) {
        const size_t end = rest_.find(separator);
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        std::string part(rest_.substr(0, end));
        rest_.remove_prefix(end + 1);
        return part;
    }
    // So many digits, or the separator that stands for a missing field.
    std::optional<std::string> Digits(size_t count, char separator) {
        if (Skip(separator)) {
            return "";
        }
        const std::string_view part = rest_.substr(0, count);
        if (part.size() < count || !std::all_of(part.begin(), part.end(), IsDigitOrMask)) {
            return std::nullopt;
        }
        rest_.remove_prefix(count);
        return std::string(part);
    }
    bool AtEnd() const { return rest_.empty(); }

  private:
    std::string_view rest_;
};

bool IsAccount(const std::optional<std::string>& text) {
    return text && !text->empty() && text->size() <= kLongestAccount &&
           std::all_of(text->begin(), text->end(), IsDigitOrMask);
}

// Expiry, service code and the issuer's data are the same on both tracks.
bool ReadTail(TrackText& text, char separator, BankCard& card) {
    const auto expiry = text.Digits(kExpiryDigits, separator);
    const auto service = expiry ? text.Digits(kServiceDigits, separator) : std::nullopt;
    const auto discretionary = service ? text.Until(kEndSentinel) : std::nullopt;
    if (!discretionary || !text.AtEnd()) {
        return false;
    }
    card.expiry = *expiry;
    card.service = *service;
    card.discretionary = *discretionary;
    return true;
}

std::optional<BankCard> ParseTrack1(TrackText text) {
    if (!text.Skip('%')) {
        return std::nullopt;
    }
    const auto account = text.Until('^');
    const auto name = account ? text.Until('^') : std::nullopt;
    if (!name || name->size() > kLongestName || account->empty() || !IsLetter(account->front()) ||
        !IsAccount(account->substr(1))) {
        return std::nullopt;
    }
    BankCard card;
    card.format = account->substr(0, 1);
    card.account = account->substr(1);
    card.name = *name;
    return ReadTail(text, '^', card) ? std::optional(card) : std::nullopt;
}

std::optional<BankCard> ParseTrack2(TrackText text) {
    const auto account = text.Skip(';') ? text.Until('=') : std::nullopt;
    if (!IsAccount(account)) {
        return std::nullopt;
    }
    BankCard card;
    card.account = *account;
    return ReadTail(text, '=', card) ? std::optional(card) : std::nullopt;
}

std::string Hidden(std::string_view text) {
    return std::string(text.size(), '*');
}

// A missing field keeps the separator that stands for it.
std::string FieldOr(const std::string& field, char separator) {
    return field.empty() ? std::string(1, separator) : field;
}

std::string HideAllButSeparators(std::string_view text) {
    constexpr std::string_view kSeparators = "%;+^=?/ ";
    std::string hidden(text);
    for (char& c : hidden) {
        c = kSeparators.find(c) == std::string_view::npos ? '*' : c;
    }
    return hidden;
}

}  // namespace

std::optional<BankCard> ParseBankCard(int track, std::string_view text) {
    switch (track) {
        case 1:
            return ParseTrack1(TrackText(text));
        case 2:
            return ParseTrack2(TrackText(text));
        default:
            return std::nullopt;
    }
}

std::optional<bool> PassesLuhn(std::string_view account) {
    int sum = 0;
    bool twice = false;
    for (auto c = account.rbegin(); c != account.rend(); ++c, twice = !twice) {
        if (!IsDigit(*c)) {
            return std::nullopt;
        }
        const int digit = (*c - '0') * (twice ? 2 : 1);
        sum += digit > 9 ? digit - 9 : digit;
    }
    return account.empty() ? std::nullopt : std::optional(sum % 10 == 0);
}

std::optional<std::string> ExpiryMonth(const BankCard& card) {
    if (card.expiry.size() != kExpiryDigits || !std::all_of(card.expiry.begin(), card.expiry.end(), IsDigit)) {
        return std::nullopt;
    }
    const std::string month = card.expiry.substr(2);
    if (month < "01" || month > "12") {
        return std::nullopt;
    }
    return "20" + card.expiry.substr(0, 2) + '-' + month;
}

std::string MaskedAccount(std::string_view account) {
    constexpr size_t kShortestWithFront = 13;
    constexpr size_t kShortestWithBack = 9;
    const size_t front = account.size() >= kShortestWithFront ? 6 : 0;
    const size_t back = account.size() >= kShortestWithBack ? 4 : 0;
    std::string masked(account);
    std::fill(masked.begin() + static_cast<ptrdiff_t>(front), masked.end() - static_cast<ptrdiff_t>(back), '*');
    return masked;
}

std::string MaskedName(std::string_view name) {
    constexpr std::string_view kBetweenWords = " /.-";
    std::string masked;
    bool wordBegins = true;
    for (const char c : name) {
        const bool isBetween = kBetweenWords.find(c) != std::string_view::npos;
        masked += isBetween || (wordBegins && IsLetter(c)) ? c : '*';
        wordBegins = isBetween;
    }
    return masked;
}

std::string MaskedTrack(int track, std::string_view text) {
    const auto card = ParseBankCard(track, text);
    if (!card) {
        return HideAllButSeparators(text);
    }
    const char separator = track == 1 ? '^' : '=';
    std::string masked = track == 1 ? "%" : ";";
    masked.append(card->format).append(MaskedAccount(card->account)).append(1, separator);
    if (track == 1) {
        masked.append(MaskedName(card->name)).append(1, separator);
    }
    masked += FieldOr(ExpiryMonth(*card) ? card->expiry : Hidden(card->expiry), separator);
    masked += FieldOr(card->service, separator);
    return masked.append(Hidden(card->discretionary)).append(1, kEndSentinel);
}

}  // namespace quarlin::qlctl
