// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>

namespace quarlin::gps {

// The satellites used for the fix, from consecutive GSA sentences.
class UsedSatellites {
  public:
    static constexpr std::int32_t kCapacity = 24;

    std::int32_t Count() const { return count_; }
    bool IsFull() const { return count_ == kCapacity; }

    bool Contains(std::int32_t prn) const {
        for (std::int32_t i = 0; i < count_; ++i) {
            if (prns_[static_cast<std::size_t>(i)] == prn) {
                return true;
            }
        }
        return false;
    }

    void Clear() { count_ = 0; }

    // A satellite that is there already, or that finds no room, changes nothing.
    void Add(std::int32_t prn) {
        if (!IsFull() && !Contains(prn)) {
            prns_[static_cast<std::size_t>(count_)] = prn;
            ++count_;
        }
    }

  private:
    std::int32_t count_ = 0;
    std::array<std::int32_t, kCapacity> prns_{};
};

}  // namespace quarlin::gps
