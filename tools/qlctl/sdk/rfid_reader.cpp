// SPDX-License-Identifier: Apache-2.0
#include "sdk/rfid_reader.h"

#include "sdk/check.h"
#include "view/words_received.h"

#include <algorithm>
#include <array>
#include <memory>

namespace quarlin::qlctl {
namespace {

// The most that the library takes, and more than an identifier has: a length that stays as it was means that the reader
// gave no identifier.
constexpr int kIdentifierRoom = 255;
constexpr size_t kBytesPerWord = 2;
// Words in one reply of the reader.
constexpr int kMostWordsAtOnce = 30;
// Two marks for words that the library did not write: data that looks like one does not look like the other.
constexpr std::uint8_t kFill = 0x5A;
constexpr std::uint8_t kOtherFill = 0xA5;

// A call that is left behind goes on writing to its buffers: each has its own, which lives as long as the call.
template <typename Value>
std::shared_ptr<Value> Shared(Value value) {
    return std::make_shared<Value>(std::move(value));
}

}  // namespace

RfidReader::RfidReader(const Patience& patience) : patience_(patience) {
    const auto handle = Shared<Handle>(nullptr);
    Call([handle](Handle) { return QLUHFRFID_OpenReader(handle.get()); });
    handle_ = *handle;
}

RfidReader::~RfidReader() {
    if (!isAbandoned_) {
        QLUHFRFID_CloseReader(handle_);
    }
}

std::optional<LibraryError> RfidReader::Try(std::function<QLerr(Handle)> call) {
    const auto error = Shared(std::optional<LibraryError>());
    try {
        patience_.Await([call = std::move(call), error, handle = handle_] {
            const QLerr result = call(handle);
            if (result != QLERR_OK) {
                *error = TakeError(result);
            }
        });
    } catch (const AbandonedCall&) {
        isAbandoned_ = true;
        throw;
    }
    return *error;
}

void RfidReader::Call(std::function<QLerr(Handle)> call) {
    if (const auto error = Try(std::move(call))) {
        throw Failure(*error);
    }
}

template <typename Value>
Value RfidReader::Get(QLerr (*getter)(Handle, Value*)) {
    const auto value = Shared(Value{});
    Call([getter, value](Handle handle) { return getter(handle, value.get()); });
    return *value;
}

template <typename Value>
void RfidReader::Set(QLerr (*setter)(Handle, Value*), const std::optional<Value>& value) {
    if (value) {
        Call([setter, given = Shared(*value)](Handle handle) { return setter(handle, given.get()); });
    }
}

std::optional<RfidTag> RfidReader::Tag(QLerr (*next)(Handle, char*, int*, int*)) {
    struct Record {
        std::array<char, kIdentifierRoom> identifier{};
        int length = kIdentifierRoom;
        int signal = 0;
    };
    const auto record = Shared(Record{});
    const auto error = Try([next, record](Handle handle) {
        return next(handle, record->identifier.data(), &record->length, &record->signal);
    });
    if (error && error->code == QLERR_UHFRFID_NO_TAGS) {
        return std::nullopt;
    }
    if (error) {
        throw Failure(*error);
    }
    const int length = record->length == kIdentifierRoom ? 0 : record->length;
    return RfidTag{{record->identifier.begin(), record->identifier.begin() + length}, record->signal};
}

std::vector<RfidTag> RfidReader::Inventory() {
    const Patience::Clock::time_point begin = Patience::Clock::now();
    std::vector<RfidTag> tags;
    for (auto tag = Tag(QLUHFRFID_GetFirstTag); tag; tag = Tag(QLUHFRFID_GetNextTag)) {
        tags.push_back(std::move(*tag));
        if (patience_.WantsToStop()) {
            break;
        }
        if (patience_.IsExhausted(begin)) {
            throw Failure(ExitStatus::kTimedOut, "the reader did not end its round within " + patience_.Span());
        }
    }
    return tags;
}

void RfidReader::Select(std::span<const std::uint8_t> epc) {
    // The library skips what stands before the EPC.
    std::vector<unsigned char> identifier(RfidTag::kProtocolControlBytes);
    identifier.insert(identifier.end(), epc.begin(), epc.end());
    Call([id = Shared(std::move(identifier))](Handle handle) {
        return QLUHFRFID_SelectTag(handle, id->data(), static_cast<unsigned>(id->size()));
    });
}

std::vector<std::uint8_t> RfidReader::ReadInto(std::uint8_t fill, TagPlace place, int count,
                                               const TagPassword& password) {
    const auto words = Shared(std::vector<std::uint8_t>(static_cast<size_t>(count) * kBytesPerWord, fill));
    Call([words, place, count, secret = Shared(password)](Handle handle) {
        return QLUHFRFID_ReadTag(handle, place.bank, place.word, secret->data(), static_cast<int>(secret->size()),
                                 words->data(), count);
    });
    return *words;
}

// The library does not tell how many words came. A last word that looks untouched is read once more over another mark.
std::vector<std::uint8_t> RfidReader::Read(TagPlace place, int count, const TagPassword& password) {
    std::vector<std::uint8_t> words;
    while (count > 0) {
        const int piece = std::min(count, kMostWordsAtOnce);
        std::vector<std::uint8_t> read = ReadInto(kFill, place, piece, password);
        if (WordsWithout(kFill, read) < static_cast<size_t>(piece)) {
            const std::vector<std::uint8_t> again = ReadInto(kOtherFill, place, piece, password);
            read.resize(kBytesPerWord * std::max(WordsWithout(kFill, read), WordsWithout(kOtherFill, again)));
        }
        words.insert(words.end(), read.begin(), read.end());
        if (read.size() < static_cast<size_t>(piece) * kBytesPerWord) {
            break;
        }
        place.word += static_cast<unsigned>(piece);
        count -= piece;
    }
    return words;
}

void RfidReader::Write(TagPlace place, const std::vector<std::uint8_t>& words, const TagPassword& password) {
    Call([place, data = Shared(words), secret = Shared(password)](Handle handle) {
        return QLUHFRFID_WriteTag(handle, place.bank, place.word, secret->data(), static_cast<int>(secret->size()),
                                  data->data(), static_cast<int>(data->size() / kBytesPerWord));
    });
}

void RfidReader::Lock(unsigned parameter1, unsigned parameter2, const TagPassword& password) {
    Call([parameter1, parameter2, secret = Shared(password)](Handle handle) {
        return QLUHFRFID_LockTag(handle, parameter1, parameter2, secret->data(), static_cast<int>(secret->size()));
    });
}

void RfidReader::Kill(const TagPassword& password) {
    Call([secret = Shared(password)](Handle handle) {
        return QLUHFRFID_KillTag(handle, secret->data(), static_cast<int>(secret->size()));
    });
}

void RfidReader::SetPower(unsigned power) {
    Call([power](Handle handle) { return QLUHFRFID_SetPower(handle, power); });
}

unsigned RfidReader::Power() {
    return Get(QLUHFRFID_GetPower);
}

void RfidReader::Change(const QueryChange& change) {
    Set(QLUHFRFID_SetLinkFreqForQuery, change.linkFrequencyKhz);
    Set(QLUHFRFID_SetMillerForQuery, change.miller);
    Set(QLUHFRFID_SetSessionForQuery, change.session);
    Set(QLUHFRFID_SetQBeginForQuery, change.q);
    Set(QLUHFRFID_SetSensitivityForQuery, change.sensitivityDbm);
}

QueryParameters RfidReader::Query() {
    QueryParameters parameters;
    parameters.linkFrequencyKhz = Get(QLUHFRFID_GetLinkFreqForQuery);
    parameters.miller = Get(QLUHFRFID_GetMillerForQuery);
    parameters.session = Get(QLUHFRFID_GetSessionForQuery);
    parameters.q = Get(QLUHFRFID_GetQBeginForQuery);
    parameters.sensitivityDbm = Get(QLUHFRFID_GetSensitivityForQuery);
    return parameters;
}

}  // namespace quarlin::qlctl
