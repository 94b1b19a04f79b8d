// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/tag_reader.h"

#include "uhfrfid/result_text.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace quarlin::uhfrfid {
namespace {

constexpr int kByteValues = 256;
constexpr int kMaxWrittenWords = 27;
constexpr int kMaxPasswordLength = 4;
// An identifier begins with its protocol control word, which the reader does not want back.
constexpr unsigned int kProtocolControlSize = 2;
constexpr unsigned int kMaxSelectedLength = 33;

// The checks of the functions whose texts are the names of the codes.
void RequireArgument(bool condition) {
    Require(condition, QLERR_INVALID_ARGUMENT, CodeName);
}

// The checks of the inventory and of the query functions.
void RequireTextArgument(bool condition) {
    Require(condition, QLERR_INVALID_ARGUMENT, ReaderMessage);
}

// A caller's whole number, before anything is cut off it.
std::uint8_t RequireByte(unsigned int value) {
    RequireArgument(value < kByteValues);
    return static_cast<std::uint8_t>(value);
}

std::array<std::uint8_t, 4> RequirePassword(const unsigned char* password, int length) {
    RequireArgument(password != nullptr && length >= 1 && length <= kMaxPasswordLength);
    return PasswordField({password, static_cast<std::size_t>(length)});
}

// The parameters that reading and writing begin with.
CommandFrame MemoryCommand(const Command& command, unsigned int bank, unsigned int wordPointer,
                           const unsigned char* password, int passwordLength, int wordCount) {
    CommandFrame frame(command);
    frame.Add(RequireByte(bank));
    frame.Add(RequireByte(wordPointer));
    frame.Add(RequirePassword(password, passwordLength));
    frame.Add(static_cast<std::uint8_t>(wordCount));
    return frame;
}

// One parameter set to a value, or none.
CommandFrame QueryCommand(const QueryParameter& parameter, std::optional<std::uint8_t> value) {
    std::array<std::uint8_t, kQueryParametersSize> parameters{};
    if (value) {
        const std::size_t flag = parameter.flagOffset - kQueryParametersOffset;
        parameters[flag] = 1;
        parameters[flag + 1] = *value;
    }
    CommandFrame frame(kQuery);
    frame.Add(parameters);
    return frame;
}

template <typename Value>
Value QueryValue(const Reply& reply, const QueryParameter& parameter) {
    return static_cast<Value>(parameter.decode(reply.Byte(parameter.replyOffset)));
}

}  // namespace

void TagReader::FindTag(Inventory which, char* tagId, int* length, int* signal) {
    RequireTextArgument(tagId != nullptr && length != nullptr && signal != nullptr);
    const int capacity = *length;
    RequireTextArgument(capacity >= 0 && capacity < kByteValues);

    CommandFrame frame(kInventory);
    frame.Add(static_cast<std::uint8_t>(which));
    const Reply reply = Exchange(frame);

    constexpr std::size_t kFound = Reply::kData;
    constexpr std::size_t kSignal = 4;
    constexpr std::size_t kIdLength = 8;
    constexpr std::size_t kId = 9;
    Require(reply.Byte(kFound) != 0, QLERR_UHFRFID_NO_TAGS, ReaderMessage);
    const auto identifier = reply.Bytes(kId, reply.Byte(kIdLength));
    const int strength = SignedByte(reply.Byte(kSignal));
    if (!identifier.empty()) {
        Require(identifier.size() <= static_cast<std::size_t>(capacity), QLERR_UHFRFID_BUFFERTOOSMALL, ReaderMessage);
        std::memcpy(tagId, identifier.data(), identifier.size());
        *length = static_cast<int>(identifier.size());
    }
    *signal = strength;
}

void TagReader::Select(const unsigned char* tagId, unsigned int length) {
    RequireArgument(tagId != nullptr && length < kByteValues);
    Require(length > kProtocolControlSize, QLERR_UHFRFID_BUFFERTOOSMALL, CodeName);
    RequireArgument(length <= kMaxSelectedLength);

    const auto epc = std::span(tagId, length).subspan(kProtocolControlSize);
    CommandFrame frame(kSelect);
    frame.Add(static_cast<std::uint8_t>(epc.size()));
    frame.Add(epc);
    Exchange(frame);
}

void TagReader::ReadMemory(unsigned int bank, unsigned int wordPointer, const unsigned char* password,
                           int passwordLength, void* data, int wordCount) {
    RequireArgument(data != nullptr && wordCount >= 0 && wordCount < kByteValues);
    const Reply reply = Exchange(MemoryCommand(kRead, bank, wordPointer, password, passwordLength, wordCount));

    const std::size_t wordsRead = reply.Byte(Reply::kData);
    const auto words = reply.Bytes(Reply::kData + 1, 2 * wordsRead);
    Require(wordsRead <= static_cast<std::size_t>(wordCount), QLERR_UHFRFID_BUFFERTOOSMALL, ReaderMessage);
    std::memcpy(data, words.data(), words.size());
}

void TagReader::WriteMemory(unsigned int bank, unsigned int wordPointer, const unsigned char* password,
                            int passwordLength, const unsigned char* data, int wordCount) {
    RequireArgument(data != nullptr && wordCount >= 1 && wordCount <= kMaxWrittenWords);
    CommandFrame frame = MemoryCommand(kWrite, bank, wordPointer, password, passwordLength, wordCount);
    frame.Add({data, 2 * static_cast<std::size_t>(wordCount)});
    Exchange(frame);
}

void TagReader::Lock(unsigned int parameter1, unsigned int parameter2, const unsigned char* password,
                     int passwordLength) {
    CommandFrame frame(kLock);
    frame.Add(RequireByte(parameter1));
    frame.Add(RequireByte(parameter2));
    frame.Add(RequirePassword(password, passwordLength));
    Exchange(frame);
}

void TagReader::Kill(const unsigned char* password, int passwordLength) {
    CommandFrame frame(kKill);
    frame.Add(RequirePassword(password, passwordLength));
    Exchange(frame);
}

void TagReader::SetPower(unsigned int power) {
    CommandFrame frame(kSetPower);
    frame.Add(RequireByte(power));
    Exchange(frame);
}

void TagReader::GetPower(unsigned int* power) {
    RequireArgument(power != nullptr);
    *power = Exchange(CommandFrame(kGetPower)).Byte(Reply::kData);
}

template <typename Value>
void TagReader::SetQuery(const QueryParameter& parameter, Value* value) {
    RequireTextArgument(value != nullptr);
    const std::optional<std::uint8_t> carried = parameter.encode(*value);
    RequireTextArgument(carried.has_value());
    *value = QueryValue<Value>(Exchange(QueryCommand(parameter, carried)), parameter);
}

template <typename Value>
void TagReader::GetQuery(const QueryParameter& parameter, Value* value) {
    RequireTextArgument(value != nullptr);
    *value = QueryValue<Value>(Exchange(QueryCommand(parameter, std::nullopt)), parameter);
}

template void TagReader::SetQuery(const QueryParameter&, unsigned int*);
template void TagReader::SetQuery(const QueryParameter&, int*);
template void TagReader::GetQuery(const QueryParameter&, unsigned int*);
template void TagReader::GetQuery(const QueryParameter&, int*);

}  // namespace quarlin::uhfrfid
