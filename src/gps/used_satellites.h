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
        const auto number = static_cast<std::uint32_t>(prn);
        if (number < kUsualNumbers) {
            return (usual_[number / kWordBits] >> number % kWordBits & 1) != 0;
        }
        for (std::int32_t i = 0; i < count_; ++i) {
            if (prns_[static_cast<std::size_t>(i)] == prn) {
                return true;
            }
        }
        return false;
    }

    void Clear() {
        count_ = 0;
        usual_ = {};
    }

    // A satellite that is there already, or that finds no room, changes nothing.
    void Add(std::int32_t prn) {
        if (!IsFull() && !Contains(prn)) {
            prns_[static_cast<std::size_t>(count_)] = prn;
            ++count_;
            const auto number = static_cast<std::uint32_t>(prn);
            if (number < kUsualNumbers) {
                usual_[number / kWordBits] |= std::uint64_t{1} << number % kWordBits;
            }
        }
    }

  private:
    // Every satellite in view is looked up here: the numbers that systems give, at once; others by searching.
    static constexpr std::uint32_t kUsualNumbers = 256;
    static constexpr std::uint32_t kWordBits = 64;

    std::int32_t count_ = 0;
    std::array<std::uint64_t, kUsualNumbers / kWordBits> usual_{};
    std::array<std::int32_t, kCapacity> prns_{};
};

}  // namespace quarlin::gps
