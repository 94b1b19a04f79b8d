// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/gps.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace quarlin::gps {

inline constexpr std::int32_t kGpsCapacity = 50;
inline constexpr std::int32_t kGlonassCapacity = 100;
inline constexpr std::int32_t kInViewLimit = kGpsCapacity + kGlonassCapacity;

// The satellites in view of one system: a working table that GSV sentences fill, and the table that was last published.
template <std::int32_t Capacity>
class SatelliteTable {
  public:
    std::int32_t Count() const { return count_; }
    std::int32_t PublishedCount() const { return publishedCount_; }

    // The place of a message's blocks is 4 * (message - 1), also when earlier messages were missed or the last number
    // was reset.
    void BeginMessage(std::int32_t message) {
        if (message == 1 || cycleDone_) {
            count_ = 0;
        }
        cycleDone_ = false;
        // Hostile numbers are held within the range instead of overflowing.
        if (const std::int64_t missed = std::int64_t{message} - lastMessage_ - 1; missed != 0) {
            count_ = static_cast<std::int32_t>(
                std::clamp<std::int64_t>(count_ + missed * 4, 0, std::numeric_limits<std::int32_t>::max()));
        }
        lastMessage_ = message;
    }

    void EndMessage() {
        cycleDone_ = true;
        lastMessage_ = 0;
    }

    // A record beyond the capacity is dropped, and the count then stands one above the capacity.
    void Store(const GpsGlonassSatellite& satellite) {
        if (count_ >= Capacity) {
            count_ = Capacity + 1;
        } else {
            working_[static_cast<std::size_t>(count_)] = satellite;
            ++count_;
        }
    }

    void Clear() { count_ = 0; }

    void Publish() {
        publishedCount_ = count_;
        std::copy_n(working_.begin(), std::min(count_, Capacity), published_.begin());
    }

    // Returns the place behind the last record written.
    GpsGlonassSatellite* CopyPublished(GpsGlonassSatellite* records) const {
        return std::copy_n(published_.begin(), std::min(publishedCount_, Capacity), records);
    }

  private:
    std::int32_t count_ = 0;
    std::int32_t publishedCount_ = 0;
    std::int32_t lastMessage_ = 0;
    bool cycleDone_ = false;
    std::array<GpsGlonassSatellite, Capacity> working_{};
    std::array<GpsGlonassSatellite, Capacity> published_{};
};

}  // namespace quarlin::gps
