// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/card_text.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>

#include "hid/hex.h"
#include "magnesafe/swipe_report.h"

namespace quarlin::sim::magnesafe {
namespace {

constexpr std::size_t kLongestAccount = 19;
constexpr std::size_t kLongestName = 26;

enum EncodeType : std::uint8_t {
    kBankCard = 0,
    kBlankCard = 3,
    kOtherCard = 4,
};

bool AreDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string Digits(TableReader& table, const std::string& key, std::size_t least, std::size_t most) {
    std::string text = table.Text(key, "");
    if (!table.Has(key) || (AreDigits(text) && text.size() >= least && text.size() <= most)) {
        return text;
    }
    const std::string count =
        least == most ? std::to_string(least) : std::to_string(least) + " to " + std::to_string(most);
    table.Complain(key, "\"" + key + "\" has to be a text of " + count + " digits");
    return {};
}

void ReadBankData(TableReader& table, Card& card) {
    card.account = Digits(table, "account", 1, kLongestAccount);
    card.expiry = Digits(table, "expiry", 4, 4);
    card.serviceCode = Digits(table, "service_code", 3, 3);
    card.discretionary = Digits(table, "discretionary", 0, 60);
    const std::string name = table.Text("name", "");
    card.name = Latin1(name).value_or("");
    if (card.name.size() > kLongestName || card.name.find_first_of("^?%;") != std::string::npos ||
        (card.name.empty() && !name.empty())) {
        table.Complain("name", "\"name\" has to be up to 26 characters as on track 1, \"MUSTERMANN/ERIKA\"");
    }
    if (!table.Has("account")) {
        for (const std::string other : {"name", "expiry", "service_code", "discretionary"}) {
            if (table.Has(other)) {
                table.Complain(other, "\"" + other + "\" needs an \"account\" beside it");
            }
        }
    } else if (!table.Has("expiry") || !table.Has("service_code")) {
        table.Complain("account", "a card with an \"account\" needs \"expiry\" and \"service_code\"");
    }
}

void ReadTracks(TableReader& table, Card& card) {
    for (std::size_t track = 0; track < kTracks; ++track) {
        const std::string key = "track" + std::to_string(track + 1);
        const std::string text = table.Text(key, "");
        const auto bytes = Latin1(text);
        if (!bytes) {
            table.Complain(key, "\"" + key + "\" has a character that is no single byte (above U+00FF)");
        } else if (table.Has(key)) {
            card.tracks[track] = *bytes;
        }
    }
    const TrackTexts texts = TextsOf(card);
    for (std::size_t track = 0; track < kTracks; ++track) {
        if (texts[track].size() > kTrackRoom) {
            const std::string key = "track" + std::to_string(track + 1);
            table.Complain(table.Has(key) ? key : "account",
                           "track " + std::to_string(track + 1) + " has more than 112 characters");
        }
    }
    const auto bad = ParseTrackList(table.Text("bad_tracks", "none"));
    if (!bad) {
        table.Complain("bad_tracks", "\"bad_tracks\" has to be a text such as \"1,3\", \"all\" or \"none\"");
    }
    card.bad = bad.value_or(card.bad);
    const bool blank = std::all_of(texts.begin(), texts.end(), [](const std::string& text) { return text.empty(); });
    card.encodeType = static_cast<std::uint8_t>(table.Integer("encode_type",
                                                              blank                  ? kBlankCard
                                                              : card.account.empty() ? kOtherCard
                                                                                     : kBankCard,
                                                              0, 255));
}

Card ReadCard(TableReader& table) {
    Card card;
    card.id = table.Text("id");
    if (table.Has("id") && (card.id.empty() || card.id.find_first_of("/\\\" ") != std::string::npos)) {
        table.Complain("id", "a card's id has no blanks, slashes and quotes");
    }
    for (const char* const reserved : {"clear", "masked", "encrypted", "tracks", "bad", "with"}) {
        if (card.id == reserved) {
            table.Complain("id", "\"" + card.id + "\" is a word of the command \"swipe\" and cannot be a card's id");
        }
    }
    ReadBankData(table, card);
    ReadTracks(table, card);
    const auto raw = ParseHex(table.Text("raw", ""));
    if (!raw || raw->size() > kSwipeLength) {
        table.Complain("raw", "\"raw\" has to be up to 888 bytes in hexadecimal, with the report ID 00 in front");
    } else {
        card.raw = *raw;
    }
    for (const std::string& text : table.Texts("patches", {})) {
        if (const auto patch = ParsePatch(text)) {
            card.patches.push_back(*patch);
        } else {
            table.Complain("patches",
                           "\"" + text + "\" has to be a place from 0 to 887 and hexadecimal bytes: \"495=06\"");
        }
    }
    table.RefuseTheRest();
    return card;
}

}  // namespace

std::vector<Card> ReadCards(TableReader& table, const std::string& key) {
    std::vector<Card> cards;
    for (TableReader& entry : table.Tables(key, "a card")) {
        Card card = ReadCard(entry);
        const auto same = [&](const Card& other) { return other.id == card.id; };
        if (!card.id.empty() && std::any_of(cards.begin(), cards.end(), same)) {
            entry.Complain("id", "two cards have the id \"" + card.id + "\"");
        }
        cards.push_back(std::move(card));
    }
    return cards;
}

std::vector<Card> ParseCards(std::string_view text, const std::string& file) {
    TableReader root = TableReader::Parse(text, file);
    if (!root.Has("card")) {
        root.Complain("card", "the file has no card: add a [[card]] table");
    }
    std::vector<Card> cards = ReadCards(root, "card");
    root.RefuseTheRest();
    root.ThrowProblems();
    return cards;
}

std::vector<Card> LoadCards(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ScenarioError(file.generic_string(), {{{0, 0}, "the file cannot be read"}});
    }
    const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    return ParseCards(text, file.generic_string());
}

std::optional<std::array<bool, kTracks>> ParseTrackList(std::string_view text) {
    std::array<bool, kTracks> tracks{};
    if (text == "all") {
        tracks.fill(true);
        return tracks;
    }
    if (text == "none") {
        return tracks;
    }
    for (std::size_t at = 0; at < text.size(); at += 2) {
        const std::size_t track = static_cast<std::size_t>(text[at] - '1');
        if (track >= kTracks || (at + 1 < text.size() && (text[at + 1] != ',' || at + 2 == text.size()))) {
            return std::nullopt;
        }
        tracks[track] = true;
    }
    return text.empty() ? std::nullopt : std::optional(tracks);
}

std::optional<Patch> ParsePatch(std::string_view text) {
    Patch patch;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, patch.at);
    if (error != std::errc() || rest == end || *rest != '=') {
        return std::nullopt;
    }
    const auto bytes = ParseHex({rest + 1, end});
    if (!bytes || bytes->empty() || patch.at >= kSwipeLength || bytes->size() > kSwipeLength - patch.at) {
        return std::nullopt;
    }
    patch.bytes = *bytes;
    return patch;
}

std::optional<std::string> Latin1(std::string_view utf8) {
    std::string text;
    for (std::size_t at = 0; at < utf8.size(); ++at) {
        const auto byte = static_cast<unsigned char>(utf8[at]);
        if (byte < 0x80) {
            text += utf8[at];
        } else if ((byte == 0xC2 || byte == 0xC3) && at + 1 < utf8.size()) {
            text += static_cast<char>((byte << 6) | (static_cast<unsigned char>(utf8[++at]) & 0x3F));
        } else {
            return std::nullopt;
        }
    }
    return text;
}

}  // namespace quarlin::sim::magnesafe
