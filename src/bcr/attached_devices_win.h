// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/engine_system.h"

namespace quarlin::bcr {

// What the system's device manager lists.
class SystemDevices final : public AttachedDevices {
  public:
    std::vector<std::wstring> HidPaths(std::uint32_t most) override;
    std::vector<std::wstring> PortNames() override;
};

}  // namespace quarlin::bcr
