// SPDX-License-Identifier: Apache-2.0
#include "bcr/scan_delivery.h"

#include <limits>

namespace quarlin::bcr {

void DeliverScan(const QLBCR_DEVICE_INFO& device, const ReceivedScan& scan, const DeliverySettings& settings,
                 ReadSound& sound) {
    // A text of two gigabytes comes of an edit rule that went wrong; no record can tell its length.
    if (scan.text.empty() || scan.text.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        return;
    }
    if (settings.soundEnabled) {
        sound.Play(settings.soundFile);
    }
    if (settings.callback == nullptr) {
        return;
    }
    const bool identified = !scan.symbologyId.empty();
    const QLBCR_BARCODE_DATA record{
        device.index,
        identified ? reinterpret_cast<const std::uint8_t*>(scan.symbologyId.data()) : nullptr,
        static_cast<std::int32_t>(scan.symbologyId.size()),
        reinterpret_cast<const std::uint8_t*>(scan.text.data()),
        static_cast<std::int32_t>(scan.text.size()),
    };
    try {
        settings.callback(&record);
    } catch (...) {
        // The application's affair: the next scan comes all the same.
    }
}

}  // namespace quarlin::bcr
