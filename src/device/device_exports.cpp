// SPDX-License-Identifier: Apache-2.0
#include "core/export_frame.h"
#include "device/device_family.h"
#include "device/device_queries.h"

#include <quarlin/device.h>

#include <algorithm>
#include <cstddef>

using namespace quarlin;
using namespace quarlin::device;

static_assert(sizeof(DeviceStatusEntry) == 16);
// The device-check library fills the caller's own record.
static_assert(sizeof(BatteryInfo) == 96 && offsetof(BatteryInfo, Chemistry) == 24 &&
              offsetof(BatteryInfo, BatteryID) == 64 && offsetof(BatteryInfo, LastRecalibrationDate) == 88);

namespace {

// Both questions that a bool answers about a device's state speak of its being enabled.
constexpr const char* kEnabledNull = "The argument enabled cannot be NULL.";
constexpr const char* kBatteryInvalid = "The argument device is invalid.";

// The answer is false before it is known, and stays so when the device-check library fails.
QLerr Ask(bool (*question)(const ProbeFunctions&, std::int32_t), std::int32_t device, bool* answer,
          const char* nullMessage) {
    return Export([&] {
        const ProbeFunctions& probe = deviceFamily.Probe();
        Require(device >= kFirstDevice && device <= kLastDevice, QLERR_INVALID_ARGUMENT,
                "The argument device is invalid. Unknown device.");
        Require(answer != nullptr, QLERR_INVALID_ARGUMENT, nullMessage);
        *answer = false;
        *answer = question(probe, device);
    });
}

}  // namespace

QLerr QLDEVICE_Initialize() {
    return Export([] { deviceFamily.Initialize(); });
}

QLerr QLDEVICE_Uninitialize() {
    return Export([] { deviceFamily.Uninitialize(); });
}

QLerr QLDEVICE_GetDeviceAvailable(int device, bool* available) {
    return Ask(IsDeviceAvailable, device, available, "The argument available cannot be NULL.");
}

QLerr QLDEVICE_GetDevicePoweredOn(int device, bool* poweredOn) {
    return Ask(IsDevicePoweredOn, device, poweredOn, kEnabledNull);
}

QLerr QLDEVICE_GetDeviceEnabledInBios(int device, bool* enabled) {
    return Ask(IsDeviceEnabledInBios, device, enabled, kEnabledNull);
}

QLerr QLDEVICE_GetDevices(DeviceStatusEntry* entries, int* count) {
    return Export([&] {
        const ProbeFunctions& probe = deviceFamily.Probe();
        Require(count != nullptr, QLERR_INVALID_ARGUMENT, "The argument count cannot be NULL.");
        if (entries == nullptr) {
            *count = CountDevices(probe);
            return;
        }
        *count = std::min<std::int32_t>(*count, ListDevices(probe, entries, *count));
    });
}

QLerr QLDEVICE_GetBatteryInfo(int battery, BatteryInfo* info) {
    return Export([&] {
        const ProbeFunctions& probe = deviceFamily.Probe();
        Require(battery >= kFirstBattery && battery <= kLastBattery, QLERR_INVALID_ARGUMENT, kBatteryInvalid);
        Require(info != nullptr, QLERR_INVALID_ARGUMENT, kBatteryInvalid);
        ReadBattery(probe, battery, info);
    });
}
