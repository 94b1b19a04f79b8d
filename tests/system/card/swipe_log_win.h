// SPDX-License-Identifier: Apache-2.0
// Callbacks that keep what they receive.
#pragma once

#include <quarlin/card_reader.h>

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace quarlin::test {

struct LoggedTrack {
    std::int32_t bufferSize = 0;
    std::int32_t length = 0;
    std::vector<std::uint8_t> data;
};

// A swipe as one callback received it, with copies of all that it points to.
struct LoggedSwipe {
    int callback = 0;
    DWORD thread = 0;
    std::int32_t trackCount = 0;
    std::vector<LoggedTrack> tracks;
    std::int32_t maskedTrackCount = 0;
    std::vector<LoggedTrack> maskedTracks;
    std::uint64_t rawLength = 0;
    std::vector<std::uint8_t> raw;
    bool isEncrypted = false;
    bool isValid = false;
};

// The swipes that callbacks 0 to 3 received, in order. One log at a time; it has to outlive the callbacks' part in it,
// so make it before the library is initialised.
class SwipeLog {
  public:
    static constexpr int kCallbacks = 4;

    SwipeLog();
    SwipeLog(const SwipeLog&) = delete;
    SwipeLog& operator=(const SwipeLog&) = delete;
    ~SwipeLog();

    static QLMSR_Callback Callback(int number);

    // Called in each callback before the swipe is logged.
    void DoFirst(std::function<void(int callback, const MagStripeData* record)> action);

    // Forgets the swipes.
    void Clear();
    std::size_t Count() const;
    std::vector<LoggedSwipe> Swipes() const;
    // Which callbacks were called, in order.
    std::vector<int> Callbacks() const;
    // Waits until so many have come; throws std::runtime_error when they do not. Gives the last of them.
    LoggedSwipe AwaitCount(std::size_t count) const;
    // How many callbacks ran at the same moment, at most.
    int MostAtOnce() const { return mostAtOnce_; }

  private:
    template <int number>
    static void Receive(const MagStripeData* record);
    void Take(int callback, const MagStripeData* record);

    mutable std::mutex lock_;
    std::function<void(int, const MagStripeData*)> first_;
    std::vector<LoggedSwipe> swipes_;
    std::atomic<int> running_ = 0;
    std::atomic<int> mostAtOnce_ = 0;
};

}  // namespace quarlin::test
