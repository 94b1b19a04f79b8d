// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/swipe_report.h"

#include <algorithm>
#include <utility>

#include "core/random.h"
#include "hid/hex.h"

namespace quarlin::sim::magnesafe {
namespace {

// Where the fields are, counted from the report ID.
constexpr std::array<std::size_t, kTracks> kDecodeStatus = {1, 2, 3};
constexpr std::array<std::size_t, kTracks> kLength = {4, 5, 6};
constexpr std::size_t kEncodeType = 7;
constexpr std::array<std::size_t, kTracks> kData = {8, 120, 232};
constexpr std::size_t kReserved1 = 344;
constexpr std::size_t kMagnePrintStatus = 345;
constexpr std::size_t kMagnePrintLength = 349;
constexpr std::size_t kMagnePrint = 350;
constexpr std::size_t kSerial = 478;
constexpr std::size_t kSerialRoom = 16;
constexpr std::size_t kEncryptionStatus = 494;
constexpr std::size_t kKeySerial = 496;
constexpr std::array<std::size_t, kTracks> kMaskedLength = {506, 507, 508};
constexpr std::array<std::size_t, kTracks> kMaskedData = {509, 621, 733};
constexpr std::size_t kSession = 845;
constexpr std::size_t kSessionLength = 8;
constexpr std::array<std::size_t, kTracks> kAbsoluteLength = {853, 854, 855};
constexpr std::size_t kMagnePrintAbsoluteLength = 856;
constexpr std::size_t kCounter = 857;
// The last three fields, of 8, 16 and 4 bytes, are the reader's own affair, like the byte at kReserved1.
constexpr std::size_t kReserved2 = 860;

// Of the second status byte.
constexpr std::uint8_t kKeyLoaded = 0x02;
constexpr std::uint8_t kEncrypting = 0x04;

constexpr std::size_t kBlock = 8;             // bytes of a cipher's block
constexpr std::size_t kMagnePrintBytes = 54;  // before encryption
constexpr std::array<std::uint8_t, 4> kMagnePrintGood = {0x00, 0x30, 0x40, 0x01};
constexpr std::array<const char*, kTracks> kBadTexts = {"%E?", ";E?", "+E?"};

using Bytes = std::vector<std::uint8_t>;

void Put(SwipeReport& report, std::size_t at, std::span<const std::uint8_t> bytes) {
    for (std::size_t i = 0; i < bytes.size() && at + i < report.size(); ++i) {
        report[at + i] = bytes[i];
    }
}

Bytes BytesOf(const std::string& text, std::size_t room) {
    return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), room))};
}

class Cipher {
  public:
    Cipher(std::span<const std::uint8_t> keySerial, std::uint32_t number)
        : key_(HexText(keySerial) + ":" + std::to_string(number)) {}

    // As many whole blocks as the text fills.
    Bytes Encrypt(const std::string& what, const std::string& text) const {
        Bytes bytes = Draw(what + ":" + text, (text.size() + kBlock - 1) / kBlock * kBlock);
        // By chance it could look like the text that stands for a bad track.
        if (bytes.size() > 1 && bytes[1] == 'E') {
            bytes[1] = 'e';
        }
        return bytes;
    }
    Bytes Draw(const std::string& what, std::size_t count) const {
        Random random(DeriveSeed(DeriveSeed(0, key_), what));
        Bytes bytes(count);
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(random.Next() >> 56);
        }
        return bytes;
    }

  private:
    std::string key_;
};

void PutTrack(SwipeReport& report, std::size_t track, const std::string& text, const Masking& masking, Form form,
              const Cipher& cipher) {
    const Bytes clear = BytesOf(text, kTrackRoom);
    const Bytes masked = BytesOf(MaskTrack(text, masking), kTrackRoom);
    Bytes data = form == Form::kClear ? clear : masked;
    if (form == Form::kEncrypted) {
        data = cipher.Encrypt("track " + std::to_string(track + 1), std::string(clear.begin(), clear.end()));
    }
    const Bytes& shown = form == Form::kClear ? clear : masked;
    report[kLength[track]] = static_cast<std::uint8_t>(data.size());
    Put(report, kData[track], data);
    report[kMaskedLength[track]] = static_cast<std::uint8_t>(shown.size());
    Put(report, kMaskedData[track], shown);
    report[kAbsoluteLength[track]] = static_cast<std::uint8_t>(clear.size());
}

void PutBadTrack(SwipeReport& report, std::size_t track) {
    const Bytes text = BytesOf(kBadTexts[track], kTrackRoom);
    report[kDecodeStatus[track]] = 1;
    report[kLength[track]] = static_cast<std::uint8_t>(text.size());
    Put(report, kData[track], text);
    report[kMaskedLength[track]] = static_cast<std::uint8_t>(text.size());
    Put(report, kMaskedData[track], text);
    report[kAbsoluteLength[track]] = static_cast<std::uint8_t>(text.size());
}

std::array<std::uint8_t, 10> NumberedKey(std::array<std::uint8_t, 10> key, std::uint32_t number) {
    key[7] = static_cast<std::uint8_t>((key[7] & 0xE0) | ((number >> 16) & 0x1F));
    key[8] = static_cast<std::uint8_t>(number >> 8);
    key[9] = static_cast<std::uint8_t>(number);
    return key;
}

void PutSecurity(SwipeReport& report, const SwipeSource& source, Form form, const Cipher& cipher) {
    if (form == Form::kClear) {
        return;
    }
    Put(report, kKeySerial, NumberedKey(source.keySerial, source.number));
    report[kEncryptionStatus + 1] = kKeyLoaded;
    if (form == Form::kEncrypted) {
        report[kEncryptionStatus + 1] |= kEncrypting;
        const Bytes print = cipher.Encrypt("MagnePrint", std::string(kMagnePrintBytes, '\0'));
        Put(report, kMagnePrintStatus, kMagnePrintGood);
        report[kMagnePrintLength] = static_cast<std::uint8_t>(print.size());
        Put(report, kMagnePrint, print);
        report[kMagnePrintAbsoluteLength] = static_cast<std::uint8_t>(kMagnePrintBytes);
        Put(report, kSession, cipher.Draw("session", kSessionLength));
    }
}

}  // namespace

SwipeReport Build(const Card& card, const SwipeSource& source, const SwipeOptions& options) {
    SwipeReport report{};
    if (!card.raw.empty()) {
        Put(report, 0, card.raw);
    } else {
        const Cipher cipher(source.keySerial, source.number);
        const TrackTexts texts = TextsOf(card);
        for (std::size_t track = 0; track < kTracks; ++track) {
            if (!options.tracks[track]) {
                continue;
            }
            if (card.bad[track] || options.bad[track]) {
                PutBadTrack(report, track);
            } else if (!texts[track].empty()) {
                PutTrack(report, track, texts[track], source.masking, options.form, cipher);
            }
        }
        report[kEncodeType] = card.encodeType;
        Put(report, kSerial, BytesOf(source.serial, kSerialRoom));
        PutSecurity(report, source, options.form, cipher);
        const std::array<std::uint8_t, 3> counter = {static_cast<std::uint8_t>(source.number >> 16),
                                                     static_cast<std::uint8_t>(source.number >> 8),
                                                     static_cast<std::uint8_t>(source.number)};
        Put(report, kCounter, counter);
        // Whoever copies reports field by field has something to copy.
        Put(report, kReserved1, cipher.Draw("reserved 1", 1));
        Put(report, kReserved2, cipher.Draw("reserved 2", kSwipeLength - kReserved2));
    }
    for (const auto* patches : {&card.patches, &options.patches}) {
        for (const Patch& patch : *patches) {
            Put(report, patch.at, patch.bytes);
        }
    }
    return report;
}

std::uint32_t NumberOf(std::span<const std::uint8_t> report) {
    if (report.size() < kCounter + 3) {
        return 0;
    }
    return std::uint32_t{report[kCounter]} << 16 | std::uint32_t{report[kCounter + 1]} << 8 | report[kCounter + 2];
}

constexpr std::array<std::pair<const char*, Form>, 3> kForms = {
    {{"clear", Form::kClear}, {"masked", Form::kMasked}, {"encrypted", Form::kEncrypted}}};

std::optional<Form> FormNamed(std::string_view name) {
    for (const auto& [known, form] : kForms) {
        if (name == known) {
            return form;
        }
    }
    return std::nullopt;
}

const char* NameOf(Form form) {
    for (const auto& [name, known] : kForms) {
        if (form == known) {
            return name;
        }
    }
    return "";
}

}  // namespace quarlin::sim::magnesafe
