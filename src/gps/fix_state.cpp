// SPDX-License-Identifier: Apache-2.0
#include "gps/fix_state.h"

#include "core/quarlin_exception.h"

namespace quarlin::gps {

std::string FixState::TimeStamp() const {
    return std::string(timeText.data()) + dateText.data();
}

std::int32_t FixState::MappedFixQuality() const {
    constexpr std::int32_t kOther = 3;
    return fixQuality >= 0 && fixQuality < kOther ? fixQuality : kOther;
}

void FixState::CopySatellites(GpsGlonassSatellite* records, std::int32_t capacity) const {
    Require(records != nullptr, QLERR_INVALID_ARGUMENT, "Buffer pointer is NULL");
    Require(publishedTotal <= capacity, QLERR_BUFFER_OVERFLOW, "Buffer size too small");
    glonass.CopyPublished(gps.CopyPublished(records));
}

}  // namespace quarlin::gps
