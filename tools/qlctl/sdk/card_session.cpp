// SPDX-License-Identifier: Apache-2.0
#include "sdk/card_session.h"

#include "quarlin/card_reader.h"
#include "sdk/check.h"

#include <algorithm>
#include <deque>
#include <mutex>

namespace quarlin::qlctl {
namespace {

constexpr int kMostReaders = 64;

// From the readers' threads to the main thread. Process-wide, because the callback gets no argument.
class SwipeQueue {
  public:
    void Put(CardSwipe swipe) {
        const std::lock_guard lock(mutex_);
        swipes_.push_back(std::move(swipe));
    }
    std::optional<CardSwipe> Take() {
        const std::lock_guard lock(mutex_);
        if (swipes_.empty()) {
            return std::nullopt;
        }
        CardSwipe swipe = std::move(swipes_.front());
        swipes_.pop_front();
        return swipe;
    }

  private:
    std::mutex mutex_;
    std::deque<CardSwipe> swipes_;
};

SwipeQueue swipeQueue;

CardTrack CopyOf(const MagStripeTrackData& track) {
    CardTrack copy;
    copy.length = track.length;
    if (track.length > 0 && track.length <= track.bufferSize) {
        copy.data.assign(track.data, track.data + track.length);
    }
    return copy;
}

void CopyTracks(const MagStripeTrackData* tracks, int32_t count, std::array<CardTrack, 3>& copies) {
    for (size_t at = 0; at < copies.size() && at < static_cast<size_t>(count); ++at) {
        copies[at] = CopyOf(tracks[at]);
    }
}

// On the reader's thread: copies, and asks the library nothing.
void OnSwipe(const MagStripeData* record) noexcept {
    CardSwipe swipe;
    swipe.isValid = record->isValid;
    swipe.isEncrypted = record->isEncrypted;
    CopyTracks(record->tracks, record->trackCount, swipe.tracks);
    CopyTracks(record->maskedTracks, record->maskedTrackCount, swipe.maskedTracks);
    swipe.raw.assign(record->raw, record->raw + record->rawLength);
    swipeQueue.Put(std::move(swipe));
}

// What is in the report alone, asked for on the main thread.
void AddExtras(CardSwipe& swipe) {
    MagStripeData record{};
    record.raw = swipe.raw.data();
    record.rawLength = swipe.raw.size();
    MagTekExtras extras{};
    Check(QLMSR_GetMagTekExtras(&record, &extras));
    std::copy(std::begin(extras.decodeStatus), std::end(extras.decodeStatus), swipe.decodeStatus.begin());
    swipe.encodeType = extras.cardEncodeType;
    const std::uint8_t* const serial = extras.deviceSerialNumber;
    swipe.readerSerial.assign(serial, std::find(serial, serial + sizeof(extras.deviceSerialNumber), 0));
    swipe.keySerialNumber.assign(std::begin(extras.keySerialNumber), std::end(extras.keySerialNumber));
}

}  // namespace

CardSession::CardSession() {
    Check(QLMSR_Initialize());
    unsigned int id = 0;
    const QLerr result = QLMSR_AddCallback(OnSwipe, &id);
    if (result != QLERR_OK) {
        const LibraryError error = TakeError(result);
        QLMSR_Uninitialize();
        throw Failure(error);
    }
}

CardSession::~CardSession() {
    QLMSR_Uninitialize();
}

std::vector<CardReader> CardSession::FindReaders() {
    std::vector<MagStripeReaderInfo> infos(kMostReaders);
    int count = kMostReaders;
    Check(QLMSR_GetMagStripeDevices(infos.data(), &count));
    std::vector<CardReader> readers;
    for (int at = 0; at < count; ++at) {
        const MagStripeReaderInfo& info = infos[static_cast<size_t>(at)];
        readers.push_back({info.index, ToUtf8(info.name), ToUtf8(info.serialNumber), ToUtf8(info.softwareId),
                           info.encryptionEnabled != 0, static_cast<int>(info.vendor)});
    }
    return readers;
}

void CardSession::Enable(int index) {
    Check(QLMSR_SelectDevice(index));
    Check(QLMSR_Enable());
}

bool CardSession::IsEnabled(int index) {
    Check(QLMSR_SelectDevice(index));
    bool enabled = false;
    Check(QLMSR_IsEnabled(&enabled));
    return enabled;
}

std::optional<CardSwipe> CardSession::TakeSwipe() {
    std::optional<CardSwipe> swipe = swipeQueue.Take();
    if (swipe) {
        AddExtras(*swipe);
    }
    return swipe;
}

}  // namespace quarlin::qlctl
