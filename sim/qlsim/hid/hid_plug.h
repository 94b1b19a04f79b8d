// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <span>
#include <string>

#include "core/device.h"
#include "hidbus/hid_device.h"

namespace quarlin::sim {

// A device's plug in its socket, with the words of its commands.
class HidPlug {
  public:
    // The function outlives the plug. Throws DeviceError when the machine has no bus.
    HidPlug(const Surroundings& surroundings, HidFunction& function);

    // What to say to "plug" and "unplug". Plug throws CommandError when the bus refuses.
    std::string Plug(const HidIdentity& identity);
    std::string Unplug();
    bool IsPlugged() const { return socket_->IsPlugged(); }
    // Throws CommandError when nothing is plugged in, or the bus does not take it.
    void Send(std::span<const std::uint8_t> report);
    void NeedPlug() const;

  private:
    std::unique_ptr<HidSocket> socket_;
    HidFunction& function_;
};

}  // namespace quarlin::sim
