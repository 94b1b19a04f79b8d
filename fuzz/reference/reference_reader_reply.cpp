// SPDX-License-Identifier: Apache-2.0
#include "reference/reference_reader_reply.h"

#include <map>

namespace quarlin::reference {
namespace {

// "CODE LENGTH" that a reply to a question begins with.
std::vector<std::uint8_t> HeadOf(Question question) {
    switch (question) {
        case Question::kInventory:
            return {0x44, 64};
        case Question::kSelect:
            return {0x34, 3};
        case Question::kRead:
            return {0x38, 64};
        case Question::kWrite:
            return {0x36, 4};
        case Question::kLock:
            return {0x3C, 3};
        case Question::kKill:
            return {0x3E, 3};
        case Question::kSetPower:
            return {0xC1, 3};
        case Question::kGetPower:
            return {0xC3, 4};
        default:
            return {0x5A, 15};
    }
}

std::string StatusText(int status) {
    static const std::map<int, std::string> kTexts{
        {0x02, "ACCESS"},
        {0x03, "KILL"},
        {0x04, "NOREPLY"},
        {0x05, "LOCK"},
        {0x06, "WRITE"},
        {0x07, "ERASE"},
        {0x08, "READ "},
        {0x09, "SELECT"},
        {0x0A, "CHANNEL_TIMEOUT"},
        {0x0F, "INVALID_PARAMETER2"},
        {0x20, "EASCODE"},
        {0x80, "OTHER "},
        {0x83, "MEMORY_OVERRUN"},
        {0x84, "MEMORY_LOCKED"},
        {0x8B, "INSUFFICIENT_POWER"},
        {0x8F, "NONSPECIFIC"},
        {0xA0, "READONLY_ADDRESS"},
        {0xB0, "PCIE_RADIO_DISABLED"},
        {0xFE, "SECURITY_FAILURE"},
        {0xFF, "HW_FAILURE"},
    };
    const auto text = kTexts.find(status);
    return text == kTexts.end() ? "Unknown Error" : "QLERR_UHFRFID_" + text->second;
}

Expectation Failure(std::int32_t code, const std::string& message) {
    Expectation failure;
    failure.code = code;
    failure.message = message;
    return failure;
}

Expectation Unclassified() {
    return Failure(65804, "QLERR_UHFRFID_UNCLASSIFIED");
}

Expectation TooSmall() {
    return Failure(65799, "QLERR_UHFRFID_BUFFERTOOSMALL");
}

int Signed(int byte) {
    return byte > 127 ? byte - 256 : byte;
}

Expectation Number(const std::vector<std::uint8_t>& reply, std::size_t place) {
    if (reply.size() < place + 1) {
        return Unclassified();
    }
    Expectation expected;
    expected.number = reply[place];
    return expected;
}

Expectation Identifier(int room, const std::vector<std::uint8_t>& reply) {
    if (reply.size() < 4) {
        return Unclassified();
    }
    if (reply[3] == 0) {
        return Failure(65796, "QLERR_UHFRFID_NO_TAGS");
    }
    if (reply.size() < 9 || reply.size() < std::size_t{9} + reply[8]) {
        return Unclassified();
    }
    if (room < reply[8]) {
        return TooSmall();
    }
    Expectation expected;
    expected.number = Signed(reply[4]);
    for (int i = 0; i < reply[8]; ++i) {
        expected.bytes.push_back(reply[static_cast<std::size_t>(9 + i)]);
    }
    return expected;
}

Expectation Words(int room, const std::vector<std::uint8_t>& reply) {
    if (reply.size() < 4 || reply.size() < 4 + std::size_t{2} * reply[3]) {
        return Unclassified();
    }
    if (room < reply[3]) {
        return TooSmall();
    }
    Expectation expected;
    for (int i = 0; i < 2 * reply[3]; ++i) {
        expected.bytes.push_back(reply[static_cast<std::size_t>(4 + i)]);
    }
    return expected;
}

int Frequency(int code) {
    return code == 0 ? 40 : code == 8 ? 213 : code == 9 ? 256 : code == 12 ? 320 : code == 15 ? 640 : 160;
}

}  // namespace

Expectation ExpectedOf(Question question, int room, const std::vector<std::uint8_t>& reply) {
    const std::vector<std::uint8_t> head = HeadOf(question);
    if (reply.size() < 3 || reply[0] != head[0] || reply[1] != head[1]) {
        return Unclassified();
    }
    if (reply[2] != 0) {
        return Failure(65536 + reply[2], StatusText(reply[2]));
    }
    Expectation expected;
    switch (question) {
        case Question::kInventory:
            return Identifier(room, reply);
        case Question::kRead:
            return Words(room, reply);
        case Question::kGetPower:
            return Number(reply, 3);
        case Question::kLinkFrequency:
            expected = Number(reply, 4);
            if (expected.number) {
                expected.number = Frequency(*expected.number);
            }
            return expected;
        case Question::kMiller:
            return Number(reply, 6);
        case Question::kSession:
            return Number(reply, 8);
        case Question::kQBegin:
            return Number(reply, 12);
        case Question::kSensitivity:
            expected = Number(reply, 14);
            if (expected.number) {
                expected.number = Signed(*expected.number);
            }
            return expected;
        default:
            return expected;
    }
}

}  // namespace quarlin::reference
