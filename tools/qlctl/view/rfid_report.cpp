// SPDX-License-Identifier: Apache-2.0
#include "view/rfid_report.h"

#include "view/hex.h"
#include "view/json_line.h"
#include "view/text.h"

#include <algorithm>
#include <array>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::ordered_json;

constexpr size_t kBytesPerWord = 2;
constexpr size_t kWordsPerLine = 8;
constexpr std::array kBankNames{"reserved", "epc", "tid", "user"};
constexpr std::array kMillerNames{"FM0", "Miller 2", "Miller 4", "Miller 8"};

std::string EpcText(const RfidTag& tag) {
    return tag.Epc().empty() ? "(no EPC)" : Hex(tag.Epc());
}

std::string TagCount(size_t count) {
    return count == 0 ? "no tags" : std::to_string(count) + (count == 1 ? " tag" : " tags");
}

std::string MillerText(unsigned miller) {
    return miller < kMillerNames.size() ? kMillerNames[miller] : std::to_string(miller) + " (unknown)";
}

}  // namespace

std::span<const std::uint8_t> RfidTag::ProtocolControl() const {
    return std::span(identifier).first(std::min(identifier.size(), kProtocolControlBytes));
}

std::span<const std::uint8_t> RfidTag::Epc() const {
    return std::span(identifier).subspan(std::min(identifier.size(), kProtocolControlBytes));
}

std::string RoundText(const std::vector<RfidTag>& tags, int round, Heading heading) {
    std::string text = heading == Heading::kRound ? "Round " + std::to_string(round) + '\n' : "";
    size_t width = 0;
    for (const RfidTag& tag : tags) {
        width = std::max(width, EpcText(tag).size());
    }
    if (!tags.empty()) {
        text += PadRight("EPC", width) + "  Signal\n";
    }
    for (const RfidTag& tag : tags) {
        text += PadRight(EpcText(tag), width) + PadLeft(std::to_string(tag.signal), 8) + '\n';
    }
    return text + TagCount(tags.size()) + '\n';
}

std::string RoundJson(const std::vector<RfidTag>& tags, int round) {
    Json list = Json::array();
    for (const RfidTag& tag : tags) {
        list.push_back({
            {"epc", Hex(tag.Epc())},
            {"protocol_control", Hex(tag.ProtocolControl())},
            {"signal", tag.signal},
        });
    }
    return JsonLine({{"round", round}, {"tags", std::move(list)}});
}

const char* BankName(unsigned bank) {
    return bank < kBankNames.size() ? kBankNames[bank] : "unknown";
}

std::string WordsText(TagPlace place, std::span<const std::uint8_t> words) {
    std::string text;
    const size_t count = words.size() / kBytesPerWord;
    for (size_t word = 0; word < count; ++word) {
        if (word % kWordsPerLine == 0) {
            text.append(word == 0 ? "" : "\n").append(BankName(place.bank)).append(1, ' ');
            text.append(PadLeft(std::to_string(place.word + word), 3)).append(1, ' ');
        }
        text.append(1, ' ').append(Hex(words.subspan(word * kBytesPerWord, kBytesPerWord)));
    }
    return text.empty() ? "no words\n" : text + '\n';
}

std::string WordsJson(const RfidTag& tag, TagPlace place, std::span<const std::uint8_t> words) {
    return JsonLine({
        {"epc", Hex(tag.Epc())},
        {"bank", BankName(place.bank)},
        {"word", place.word},
        {"count", words.size() / kBytesPerWord},
        {"data", Hex(words)},
    });
}

std::string DoneText(const RfidTag& tag, const char* done) {
    return std::string(done) + "  " + EpcText(tag) + '\n';
}

std::string DoneJson(const RfidTag& tag, const char* done) {
    return JsonLine({{"epc", Hex(tag.Epc())}, {"done", done}});
}

std::string PowerText(unsigned power) {
    return Row("Power", std::to_string(power));
}

std::string PowerJson(unsigned power) {
    return JsonLine({{"power", power}});
}

std::string QueryText(const QueryParameters& parameters) {
    return Row("Link", std::to_string(parameters.linkFrequencyKhz) + " kHz") +
           Row("Encoding", MillerText(parameters.miller)) +
           Row("Session", std::string("S").append(std::to_string(parameters.session))) +
           Row("Q", std::to_string(parameters.q)) +
           Row("Sensitivity", std::to_string(parameters.sensitivityDbm) + " dBm");
}

std::string QueryJson(const QueryParameters& parameters) {
    return JsonLine({
        {"link_frequency_khz", parameters.linkFrequencyKhz},
        {"miller", parameters.miller},
        {"session", parameters.session},
        {"q", parameters.q},
        {"sensitivity_dbm", parameters.sensitivityDbm},
    });
}

}  // namespace quarlin::qlctl
