// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/scanner_device.h"

namespace quarlin::bcr {

class ReadSound {
  public:
    // Returns at once.
    virtual void Play(const std::wstring& file) = 0;

  protected:
    constexpr ReadSound() = default;
    constexpr ~ReadSound() = default;
};

// Hands a scan to the application: the sound, then the callback. Nothing happens for a scan without any text.
void DeliverScan(const QLBCR_DEVICE_INFO& device, const ReceivedScan& scan, const DeliverySettings& settings,
                 ReadSound& sound);

}  // namespace quarlin::bcr
