// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quarlin::qlctl {

// A tag as the reader reports it in an inventory round: two bytes of protocol control and the EPC.
struct RfidTag {
    static constexpr size_t kProtocolControlBytes = 2;

    std::vector<std::uint8_t> identifier;
    int signal = 0;

    std::span<const std::uint8_t> ProtocolControl() const;
    std::span<const std::uint8_t> Epc() const;
};

// One round of an inventory. The text has a heading when there are several rounds.
enum class Heading {
    kNone,
    kRound,
};
std::string RoundText(const std::vector<RfidTag>& tags, int round, Heading heading);
std::string RoundJson(const std::vector<RfidTag>& tags, int round);

// The place of words in a tag's memory.
struct TagPlace {
    unsigned bank = 0;
    unsigned word = 0;
};

// "reserved", "epc", "tid", "user".
const char* BankName(unsigned bank);

// Words that were read, 8 to a line with their word addresses.
std::string WordsText(TagPlace place, std::span<const std::uint8_t> words);
std::string WordsJson(const RfidTag& tag, TagPlace place, std::span<const std::uint8_t> words);

// That something was done to a tag: "written", "locked", "killed".
std::string DoneText(const RfidTag& tag, const char* done);
std::string DoneJson(const RfidTag& tag, const char* done);

std::string PowerText(unsigned power);
std::string PowerJson(unsigned power);

// The parameters of the reader's inventory.
struct QueryParameters {
    unsigned linkFrequencyKhz = 0;
    unsigned miller = 0;
    unsigned session = 0;
    unsigned q = 0;
    int sensitivityDbm = 0;
};

std::string QueryText(const QueryParameters& parameters);
std::string QueryJson(const QueryParameters& parameters);

}  // namespace quarlin::qlctl
