// SPDX-License-Identifier: Apache-2.0
#include "view/card_json.h"

#include "view/bank_card.h"
#include "view/hex.h"
#include "view/json_line.h"
#include "view/text.h"

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::ordered_json;

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json CardJson(const BankCard& card, bool clear, Privacy privacy) {
    const bool show = privacy == Privacy::kShow;
    const auto month = ExpiryMonth(card);
    // Of a number that the reader has masked, the check digit says nothing.
    const auto passes = clear ? PassesLuhn(card.account) : std::nullopt;
    Json object{
        {"format", TextOrNull(card.format)},
        {"account", show ? card.account : MaskedAccount(card.account)},
        {"check_digit_correct", passes ? Json(*passes) : Json(nullptr)},
        {"name", TextOrNull(Printable(show ? card.name : MaskedName(card.name)))},
        {"expiry", month ? Json(*month) : Json(nullptr)},
        {"service_code", TextOrNull(card.service)},
    };
    if (show) {
        object["discretionary"] = Printable(card.discretionary);
    }
    return object;
}

enum class Content {
    kClear,
    kMaskedByReader,
    kEncrypted,
};

Json TrackJson(int number, const CardTrack& track, Content content, Privacy privacy) {
    Json object{{"track", number}, {"length", track.length}, {"text", nullptr}, {"card", nullptr}};
    const std::string text(track.data.begin(), track.data.end());
    if (!text.empty() && content != Content::kEncrypted) {
        const auto card = ParseBankCard(number, text);
        object["text"] = Printable(privacy == Privacy::kShow ? text : MaskedTrack(number, text));
        object["card"] = card ? CardJson(*card, content == Content::kClear, privacy) : Json(nullptr);
    }
    if (privacy == Privacy::kShow) {
        object["data_hex"] = Hex(track.data);
    }
    return object;
}

}  // namespace

std::string CardReadersJson(const std::vector<CardReader>& readers) {
    Json list = Json::array();
    for (const CardReader& reader : readers) {
        list.push_back({
            {"index", reader.index},
            {"name", reader.name},
            {"serial_number", reader.serialNumber},
            {"software_id", reader.softwareId},
            {"encrypts", reader.encrypts},
            {"vendor", reader.vendor},
        });
    }
    return JsonLine({{"readers", std::move(list)}});
}

std::string SwipeJson(const CardSwipe& swipe, int number, Privacy privacy) {
    Json tracks = Json::array();
    Json maskedTracks = Json::array();
    for (size_t at = 0; at < swipe.tracks.size(); ++at) {
        const int track = static_cast<int>(at) + 1;
        const Content content = swipe.isEncrypted ? Content::kEncrypted : Content::kClear;
        tracks.push_back(TrackJson(track, swipe.tracks[at], content, privacy));
        tracks.back()["decode_status"] = swipe.decodeStatus[at];
        maskedTracks.push_back(TrackJson(track, swipe.maskedTracks[at], Content::kMaskedByReader, privacy));
    }
    Json object{
        {"swipe", number},
        {"valid", swipe.isValid},
        {"encrypted", swipe.isEncrypted},
        {"reader_serial", Printable(swipe.readerSerial)},
        {"encode_type", swipe.encodeType},
        {"tracks", std::move(tracks)},
        {"masked_tracks", std::move(maskedTracks)},
    };
    if (privacy == Privacy::kShow) {
        object["key_serial_number"] = Hex(swipe.keySerialNumber);
        object["raw_hex"] = Hex(swipe.raw);
    }
    return JsonLine(object);
}

}  // namespace quarlin::qlctl
