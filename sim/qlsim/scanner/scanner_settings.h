// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

#include "scanner/symbology.h"

namespace quarlin::sim::scanner {

using SymbologySet = std::bitset<kSymbologies>;

// What a scenario says about an engine of either family.
struct EngineSettings {
    bool plugged = true;
    bool hardwareTrigger = true;
    std::string firmware;
    SymbologySet symbologies;
};

// How an Intermec engine is connected to the computer, which decides how programs find it.
enum class Link {
    kBuiltIn,  // nothing to be seen of it
    kUsb,      // a device on the HID bus
    kSerial,   // a port in the list of devices
};

struct IntermecSettings : EngineSettings {
    Link link = Link::kBuiltIn;
    std::uint16_t product = 0;  // usb
    std::string instance;       // usb
    std::string portName;       // serial: the name that people see
    std::uint8_t dataMode = 1;
};

struct HoneywellSettings : EngineSettings {
    std::vector<std::string> devices;
};

}  // namespace quarlin::sim::scanner
