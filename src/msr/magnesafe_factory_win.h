// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "msr/msr_dev.h"

namespace quarlin::msr {

// Finds the MagneSafe V5 readers among the HID devices.
class CMSRDevFactoryMagtekSfV5 final : public IMSRDevFactory {
  public:
    bool CreateDevices(MSRDevs& readers) override;
};

}  // namespace quarlin::msr
