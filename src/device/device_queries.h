// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "device/probe_functions.h"

#include <cstdint>

namespace quarlin::device {

// What can be asked of a device-check library that has been started. A status that is none of the good ones is raised.

constexpr std::int32_t kFirstDevice = 1;
constexpr std::int32_t kLastDevice = 15;
constexpr std::int32_t kFirstBattery = 1;
constexpr std::int32_t kLastBattery = 2;

bool IsDeviceAvailable(const ProbeFunctions& probe, std::int32_t device);
bool IsDevicePoweredOn(const ProbeFunctions& probe, std::int32_t device);
// A device without power is not enabled, whatever the BIOS says.
bool IsDeviceEnabledInBios(const ProbeFunctions& probe, std::int32_t device);

std::int32_t CountDevices(const ProbeFunctions& probe);
// Fills at most `capacity` entries, none when it is negative; returns the number of devices.
std::int32_t ListDevices(const ProbeFunctions& probe, DeviceStatusEntry* entries, std::int32_t capacity);

void ReadBattery(const ProbeFunctions& probe, std::int32_t battery, BatteryInfo* record);

}  // namespace quarlin::device
