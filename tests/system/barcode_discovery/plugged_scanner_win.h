// SPDX-License-Identifier: Apache-2.0
// A USB scanner as far as looking for it goes: a HID device of that identity, which is asked nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "hid/report_descriptor.h"
#include "hidbus/hid_device.h"
#include "hidbus/hid_socket_win.h"

namespace quarlin::test {

inline constexpr std::uint16_t kIntermecVendor = 0x067E;

class PluggedScanner : private sim::HidFunction {
  public:
    // `collection`: which of the device's collections it is; 0: it has one only.
    PluggedScanner(std::uint16_t vendor, std::uint16_t product, std::uint16_t collection = 0)
        : socket_(sim::MakeHidSocket()) {
        sim::HidIdentity identity;
        identity.vendor = vendor;
        identity.product = product;
        identity.collection = collection;
        identity.reportDescriptor =
            sim::VendorReportDescriptor({{sim::HidReportKind::kInput, 0, 63}, {sim::HidReportKind::kOutput, 0, 63}});
        socket_->Plug(identity, *this);
    }

  private:
    sim::HidAnswer SetFeature(std::span<const std::uint8_t>) override { return sim::HidAnswer::kRefuse; }
    sim::HidAnswer GetFeature(std::span<std::uint8_t>) override { return sim::HidAnswer::kRefuse; }
    sim::HidAnswer SetOutput(std::span<const std::uint8_t>) override { return sim::HidAnswer::kRefuse; }

    std::unique_ptr<sim::HidSocket> socket_;
};

}  // namespace quarlin::test
