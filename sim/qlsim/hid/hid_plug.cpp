// SPDX-License-Identifier: Apache-2.0
#include "hid/hid_plug.h"

namespace quarlin::sim {

HidPlug::HidPlug(const Surroundings& surroundings, HidFunction& function) : function_(function) {
    try {
        socket_ = surroundings.makeHidSocket();
    } catch (const HidBusError& error) {
        throw DeviceError(surroundings.name + ": " + error.what());
    }
}

std::string HidPlug::Plug(const HidIdentity& identity) {
    if (socket_->IsPlugged()) {
        return "plugged in already";
    }
    try {
        socket_->Unplug();  // what is left of a device that vanished in a transfer
        socket_->Plug(identity, function_);
    } catch (const HidBusError& error) {
        throw CommandError(error.what());
    }
    return "plugged in";
}

std::string HidPlug::Unplug() {
    const bool plugged = socket_->IsPlugged();
    socket_->Unplug();
    return plugged ? "unplugged" : "unplugged already";
}

void HidPlug::Send(std::span<const std::uint8_t> report) {
    NeedPlug();
    try {
        if (!socket_->SendInput(report)) {
            throw CommandError("the device has been unplugged meanwhile");
        }
    } catch (const HidBusError& error) {
        throw CommandError(error.what());
    }
}

void HidPlug::NeedPlug() const {
    if (!socket_->IsPlugged()) {
        throw CommandError("the device is unplugged");
    }
}

}  // namespace quarlin::sim
