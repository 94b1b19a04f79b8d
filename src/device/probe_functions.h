// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/device.h>

#include <cstddef>
#include <cstdint>

namespace quarlin::device {

// What the device-check library says about one device.
struct ProbeDevice {
    std::uint32_t size = sizeof(ProbeDevice);
    std::uint32_t device = 0;
    std::uint32_t available = 0;
    std::uint32_t powerState = 0;
    std::uint32_t biosState = 0;
};
static_assert(sizeof(ProbeDevice) == 20);
static_assert(offsetof(ProbeDevice, device) == 4);
static_assert(offsetof(ProbeDevice, available) == 8);
static_assert(offsetof(ProbeDevice, powerState) == 12);
static_assert(offsetof(ProbeDevice, biosState) == 16);

// The functions of the device-check library. Each returns a status, see RequireProbeSuccess.
struct ProbeFunctions {
    std::int32_t (*initialize)() = nullptr;
    std::int32_t (*uninitialize)() = nullptr;
    std::int32_t (*getDeviceInfo)(std::int32_t device, std::uint32_t recordSize, ProbeDevice* record) = nullptr;
    std::int32_t (*getNumberOfDevices)(std::int32_t* count) = nullptr;
    std::int32_t (*getDeviceList)(std::uint32_t recordSize, ProbeDevice** records, std::int32_t count) = nullptr;
    std::int32_t (*getBatteryCurrentInfo)(std::int32_t battery, BatteryInfo* record) = nullptr;

    // Calls resolve(name, pointer) for each function, in the order in which they are looked for.
    template <typename Resolve>
    void ForEach(Resolve&& resolve) {
        resolve("HwProbe_Initialize", initialize);
        resolve("HwProbe_Uninitialize", uninitialize);
        resolve("HwProbe_GetDeviceInfo", getDeviceInfo);
        resolve("HwProbe_GetNumberOfDevices", getNumberOfDevices);
        resolve("HwProbe_GetDeviceList", getDeviceList);
        resolve("HwProbe_GetBatteryCurrentInfo", getBatteryCurrentInfo);
    }
};

}  // namespace quarlin::device
