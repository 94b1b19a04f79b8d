// SPDX-License-Identifier: Apache-2.0
#include "view/card_text.h"

#include "view/bank_card.h"
#include "view/hex.h"
#include "view/text.h"

#include <algorithm>
#include <span>

namespace quarlin::qlctl {
namespace {

const std::string kIndent(11, ' ');

std::string TextOf(const CardTrack& track) {
    return {track.data.begin(), track.data.end()};
}

std::string Sentence(std::string text, const std::string& part) {
    return text.append(text.empty() ? "" : ", ").append(part);
}

// The fields of a bank card; empty for another card.
std::string FieldsLine(int number, const CardTrack& track, bool clear, Privacy privacy) {
    const auto card = ParseBankCard(number, TextOf(track));
    if (!card) {
        return "";
    }
    const bool show = privacy == Privacy::kShow;
    std::string line = card->format.empty() ? "" : "format " + card->format;
    line = Sentence(line, "account " + (show ? card->account : MaskedAccount(card->account)));
    if (const auto passes = PassesLuhn(card->account); clear && passes) {
        line += *passes ? " (check digit correct)" : " (check digit does not fit)";
    }
    if (!card->name.empty()) {
        line = Sentence(line, "name " + Printable(show ? card->name : MaskedName(card->name)));
    }
    const auto month = ExpiryMonth(*card);
    line = Sentence(line, month ? "expires " + *month : "no expiry date");
    if (!card->service.empty()) {
        line = Sentence(line, "service code " + card->service);
    }
    return kIndent + line + '\n';
}

// A track whose text can be read: clear, or masked by the reader.
std::string ReadableTrack(int number, const CardTrack& track, bool clear, Privacy privacy) {
    const std::string text = TextOf(track);
    return Printable(privacy == Privacy::kShow ? text : MaskedTrack(number, text)) + '\n' +
           FieldsLine(number, track, clear, privacy);
}

// What hinders the display of a track; empty when nothing does.
std::string Obstacle(const CardTrack& track, std::uint8_t decodeStatus) {
    if (track.length != static_cast<int>(track.data.size())) {
        return "length " + std::to_string(track.length) + " is impossible\n";
    }
    if (!track.data.empty()) {
        return "";
    }
    return decodeStatus == 0 ? "empty\n" : "not decoded, status " + std::to_string(decodeStatus) + '\n';
}

std::string ClearTrack(int number, const CardTrack& track, std::uint8_t decodeStatus, Privacy privacy) {
    const std::string obstacle = Obstacle(track, decodeStatus);
    if (!obstacle.empty()) {
        return obstacle;
    }
    const std::string remark = decodeStatus == 0 ? "" : "not decoded, status " + std::to_string(decodeStatus) + ": ";
    return remark + ReadableTrack(number, track, true, privacy);
}

std::string EncryptedTrack(int number, const CardTrack& track, const CardTrack& masked, std::uint8_t decodeStatus,
                           Privacy privacy) {
    std::string text = Obstacle(track, decodeStatus);
    if (text.empty()) {
        text = "encrypted, " + std::to_string(track.data.size()) + " bytes\n";
        if (privacy == Privacy::kShow) {
            text += kIndent + Hex(track.data) + '\n';
        }
    }
    if (!masked.data.empty()) {
        text += kIndent + ReadableTrack(number, masked, false, privacy);
    }
    return text;
}

std::vector<size_t> ColumnWidths(const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths(rows.front().size());
    for (const std::vector<std::string>& row : rows) {
        for (size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    return widths;
}

}  // namespace

std::string CardReaderTable(const std::vector<CardReader>& readers) {
    if (readers.empty()) {
        return "no card reader is plugged in\n";
    }
    std::vector<std::vector<std::string>> rows{{"Index", "Name", "Serial number", "Software", "Encrypts"}};
    for (const CardReader& reader : readers) {
        rows.push_back({std::to_string(reader.index), Printable(reader.name), Printable(reader.serialNumber),
                        Printable(reader.softwareId), reader.encrypts ? "yes" : "no"});
    }
    const std::vector<size_t> widths = ColumnWidths(rows);
    std::string table;
    for (const std::vector<std::string>& row : rows) {
        for (size_t column = 0; column + 1 < row.size(); ++column) {
            table += PadRight(row[column], widths[column] + 2);
        }
        table += row.back() + '\n';
    }
    return table;
}

std::string SwipeText(const CardSwipe& swipe, int number, Privacy privacy) {
    std::string text = "Swipe " + std::to_string(number) + "  " + (swipe.isValid ? "valid" : "not valid") + ", " +
                       (swipe.isEncrypted ? "encrypted" : "not encrypted");
    text += swipe.readerSerial.empty() ? "\n" : ", reader " + Printable(swipe.readerSerial) + '\n';
    for (size_t at = 0; at < swipe.tracks.size(); ++at) {
        const int track = static_cast<int>(at) + 1;
        text += "  Track " + std::to_string(track) + "  ";
        text += swipe.isEncrypted
                    ? EncryptedTrack(track, swipe.tracks[at], swipe.maskedTracks[at], swipe.decodeStatus[at], privacy)
                    : ClearTrack(track, swipe.tracks[at], swipe.decodeStatus[at], privacy);
    }
    if (swipe.isEncrypted && privacy == Privacy::kShow) {
        text += "  Key      " + Hex(swipe.keySerialNumber) + '\n';
    }
    return text;
}

}  // namespace quarlin::qlctl
