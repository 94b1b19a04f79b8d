// SPDX-License-Identifier: Apache-2.0
#include "card/swipe_log_win.h"

#include <array>
#include <utility>

#include "support/wait_win.h"

namespace quarlin::test {
namespace {

std::atomic<SwipeLog*> theLog = nullptr;

std::vector<LoggedTrack> CopyTracks(const MagStripeTrackData* tracks, std::int32_t count) {
    std::vector<LoggedTrack> copies;
    for (std::int32_t i = 0; i < count; ++i) {
        const MagStripeTrackData& track = tracks[i];
        copies.push_back({track.bufferSize, track.length, {track.data, track.data + track.bufferSize}});
    }
    return copies;
}

}  // namespace

SwipeLog::SwipeLog() {
    theLog = this;
}

SwipeLog::~SwipeLog() {
    theLog = nullptr;
}

QLMSR_Callback SwipeLog::Callback(int number) {
    static constexpr std::array<QLMSR_Callback, kCallbacks> kFunctions{&Receive<0>, &Receive<1>, &Receive<2>,
                                                                       &Receive<3>};
    return kFunctions.at(static_cast<std::size_t>(number));
}

void SwipeLog::DoFirst(std::function<void(int, const MagStripeData*)> action) {
    const std::lock_guard held(lock_);
    first_ = std::move(action);
}

void SwipeLog::Clear() {
    const std::lock_guard held(lock_);
    swipes_ = {};
}

std::size_t SwipeLog::Count() const {
    const std::lock_guard held(lock_);
    return swipes_.size();
}

std::vector<LoggedSwipe> SwipeLog::Swipes() const {
    const std::lock_guard held(lock_);
    return swipes_;
}

std::vector<int> SwipeLog::Callbacks() const {
    const std::lock_guard held(lock_);
    std::vector<int> callbacks;
    for (const LoggedSwipe& swipe : swipes_) {
        callbacks.push_back(swipe.callback);
    }
    return callbacks;
}

LoggedSwipe SwipeLog::AwaitCount(std::size_t count) const {
    Await("swipes at the callback", [&] { return Count() >= count; });
    const std::lock_guard held(lock_);
    return swipes_.at(count - 1);
}

template <int number>
void SwipeLog::Receive(const MagStripeData* record) {
    if (SwipeLog* const log = theLog) {
        log->Take(number, record);
    }
}

void SwipeLog::Take(int callback, const MagStripeData* record) {
    const int running = ++running_;
    int most = mostAtOnce_;
    while (running > most && !mostAtOnce_.compare_exchange_weak(most, running)) {
    }
    std::function<void(int, const MagStripeData*)> first;
    {
        const std::lock_guard held(lock_);
        first = first_;
    }
    if (first) {
        first(callback, record);
    }
    LoggedSwipe swipe;
    swipe.callback = callback;
    swipe.thread = GetCurrentThreadId();
    swipe.trackCount = record->trackCount;
    swipe.tracks = CopyTracks(record->tracks, record->trackCount);
    swipe.maskedTrackCount = record->maskedTrackCount;
    swipe.maskedTracks = CopyTracks(record->maskedTracks, record->maskedTrackCount);
    swipe.rawLength = record->rawLength;
    swipe.raw.assign(record->raw, record->raw + record->rawLength);
    swipe.isEncrypted = record->isEncrypted;
    swipe.isValid = record->isValid;
    --running_;
    const std::lock_guard held(lock_);
    swipes_.push_back(std::move(swipe));
}

}  // namespace quarlin::test
