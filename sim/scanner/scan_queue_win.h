// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>

#include "scanner/engine_record.h"

namespace quarlin::sim {

// Scans that wait in the program until it asks for them. No call of it leaves the process.
class ScanQueue {
  public:
    constexpr ScanQueue() = default;
    ScanQueue(const ScanQueue&) = delete;
    ScanQueue& operator=(const ScanQueue&) = delete;
    ~ScanQueue() = default;

    bool HasRoom() {
        const Alone alone(lock_);
        return added_ - taken_ < kRoom;
    }
    // By one thread at a time, which has seen that there is room.
    void Add(const ScanSlot& scan) {
        const Alone alone(lock_);
        std::memcpy(static_cast<void*>(&scans_[added_++ % kRoom]), &scan, offsetof(ScanSlot, bytes) + scan.length);
    }
    // Writes the oldest scan, cut to the room there is, and gives the length that it claims; false when there is none.
    // `wasFull`: somebody may be waiting for the room that it leaves.
    bool Take(std::uint8_t* to, std::uint32_t capacity, std::uint32_t& claimed, bool& wasFull) {
        const Alone alone(lock_);
        if (added_ == taken_) {
            return false;
        }
        wasFull = added_ - taken_ == kRoom;
        const ScanSlot& scan = scans_[taken_++ % kRoom];
        std::memcpy(to, &scan.bytes[0], scan.length < capacity ? scan.length : capacity);
        claimed = scan.claimed;
        return true;
    }
    std::uint64_t Size() {
        const Alone alone(lock_);
        return added_ - taken_;
    }
    void Clear() {
        const Alone alone(lock_);
        taken_ = added_;
    }

  private:
    static constexpr std::uint64_t kRoom = 128;

    class Alone {
      public:
        explicit Alone(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
        Alone(const Alone&) = delete;
        Alone& operator=(const Alone&) = delete;
        ~Alone() { ReleaseSRWLockExclusive(&lock_); }

      private:
        SRWLOCK& lock_;
    };

    SRWLOCK lock_ = SRWLOCK_INIT;
    std::uint64_t added_ = 0;
    std::uint64_t taken_ = 0;
    ScanSlot scans_[kRoom]{};
};

}  // namespace quarlin::sim
