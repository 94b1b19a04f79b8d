// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "magnesafe/card.h"

namespace quarlin::sim::magnesafe {

inline constexpr std::size_t kSwipeLength = 888;  // with the report ID

// The report of one swipe as Windows delivers it: the report ID 0 and 887 bytes.
using SwipeReport = std::array<std::uint8_t, kSwipeLength>;

enum class Form {
    kClear,      // the tracks as they are, in the data fields and in the masked ones
    kMasked,     // both masked, nothing encrypted
    kEncrypted,  // data fields that look encrypted, masked fields, MagnePrint, key serial number
};

struct SwipeOptions {
    Form form = Form::kEncrypted;
    std::array<bool, kTracks> tracks{true, true, true};  // those that the head meets; the others are empty
    std::array<bool, kTracks> bad{};                     // beside those that are bad on the card
    std::vector<Patch> patches{};                        // beside the card's
};

// What of a swipe comes from the reader.
struct SwipeSource {
    std::string serial;  // bytes
    // Of the key; its last 21 bits are replaced by the number of the swipe.
    std::array<std::uint8_t, 10> keySerial{};
    Masking masking;
    // 1 for the first: the encryption counter, three bytes with the highest first, whatever the form.
    std::uint32_t number = 1;
};

// Nothing is really encrypted: what looks like cipher bytes is drawn from a generator seeded with the key serial
// number, the swipe's number and the text, in blocks of 8 as a cipher would make them, so that a swipe repeats byte for
// byte. A raw card gives its bytes, cut or filled with zeros. Texts that are too long for their field are cut.
SwipeReport Build(const Card& card, const SwipeSource& source, const SwipeOptions& options);

// The number that Build was given.
std::uint32_t NumberOf(std::span<const std::uint8_t> report);

std::optional<Form> FormNamed(std::string_view name);
const char* NameOf(Form form);

}  // namespace quarlin::sim::magnesafe
