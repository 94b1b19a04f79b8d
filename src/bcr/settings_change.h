// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/scanner_device.h"
#include "core/quarlin_exception.h"

#include <memory>
#include <string>
#include <utility>

namespace quarlin::bcr {

// Changes a device's settings for all scans that are taken up from now on. Called by one thread at a time.
template <typename Change>
void ChangeSettings(ScannerDevice& device, Change&& change) {
    auto settings = std::make_shared<DeliverySettings>(*device.settings.load());
    std::forward<Change>(change)(*settings);
    device.settings.store(std::move(settings));
}

// The settings that an engine begins with. The callback stays.
inline void ResetSettings(ScannerDevice& device, std::wstring soundFile) {
    ChangeSettings(device, [&](DeliverySettings& settings) {
        settings = {{}, false, std::move(soundFile), settings.callback};
    });
}

inline void RequireCallback(const ScannerDevice& device) {
    Require(device.settings.load()->callback != nullptr, QLERR_INVALID_STATE, "CallBack is not set.");
}

}  // namespace quarlin::bcr
