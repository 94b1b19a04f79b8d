// SPDX-License-Identifier: Apache-2.0
#include "bcr/scanner_names.h"

#include <algorithm>
#include <limits>

namespace quarlin::bcr {

namespace {

constexpr std::wstring_view kPortPrefix = L"(COM";

// Identifiers in a path are ASCII: a letter that only some language's rules would fold is a different letter.
constexpr wchar_t ToUpper(wchar_t character) {
    return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A') : character;
}

// `part` is in upper case.
bool HoldsInAnyCase(std::wstring_view text, std::wstring_view part) {
    const auto same = [](wchar_t left, wchar_t right) { return ToUpper(left) == right; };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

// The digits that the text begins with; nothing when there are none or their number is none of 32 bits.
std::optional<std::int32_t> LeadingNumber(std::wstring_view text) {
    std::optional<std::int32_t> number;
    for (const wchar_t character : text) {
        if (character < L'0' || character > L'9') {
            break;
        }
        const std::int64_t next = std::int64_t{number.value_or(0)} * 10 + (character - L'0');
        if (next > std::numeric_limits<std::int32_t>::max()) {
            return std::nullopt;
        }
        number = static_cast<std::int32_t>(next);
    }
    return number;
}

}  // namespace

BarcodeEngineKind EngineOfHidPath(std::wstring_view path) {
    if (HoldsInAnyCase(path, L"VID_067E&PID_0801&COL02")) {
        return BarcodeEngineKind::kIntermecUsb0801;
    }
    if (HoldsInAnyCase(path, L"VID_067E&PID_0809")) {
        return BarcodeEngineKind::kIntermecUsb0809;
    }
    return BarcodeEngineKind::kNone;
}

std::optional<std::int32_t> ScannerPortNumber(std::wstring_view portName) {
    if (portName.find(L"VID_067") == std::wstring_view::npos) {
        return std::nullopt;
    }
    std::size_t found = portName.find(kPortPrefix);
    while (found != std::wstring_view::npos) {
        const std::size_t digits = found + kPortPrefix.size();
        if (const std::optional<std::int32_t> number = LeadingNumber(portName.substr(digits))) {
            return number;
        }
        // A product's name may hold the same letters: "(COMPACT)".
        found = portName.find(kPortPrefix, digits);
    }
    return std::nullopt;
}

}  // namespace quarlin::bcr
