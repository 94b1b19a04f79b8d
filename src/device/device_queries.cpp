// SPDX-License-Identifier: Apache-2.0
#include "device/device_queries.h"

#include "device/probe_status.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace quarlin::device {
namespace {

constexpr std::uint32_t kPoweredOn = 1;

// No computer has that many. What is above it is no number of devices, and nothing is allocated for it.
constexpr std::int32_t kMostDevices = 1024;

ProbeDevice ReadDevice(const ProbeFunctions& probe, std::int32_t device) {
    ProbeDevice record;
    RequireProbeSuccess(probe.getDeviceInfo(device, sizeof(record), &record));
    return record;
}

DeviceStatusEntry EntryOf(const ProbeDevice& record) {
    return {sizeof(DeviceStatusEntry), record.device, record.powerState, record.biosState};
}

}  // namespace

bool IsDeviceAvailable(const ProbeFunctions& probe, std::int32_t device) {
    return ReadDevice(probe, device).available != 0;
}

bool IsDevicePoweredOn(const ProbeFunctions& probe, std::int32_t device) {
    return ReadDevice(probe, device).powerState == kPoweredOn;
}

bool IsDeviceEnabledInBios(const ProbeFunctions& probe, std::int32_t device) {
    const ProbeDevice record = ReadDevice(probe, device);
    return (record.biosState == 1 || record.biosState == 2) && record.powerState == kPoweredOn;
}

std::int32_t CountDevices(const ProbeFunctions& probe) {
    std::int32_t count = 0;
    RequireProbeSuccess(probe.getNumberOfDevices(&count));
    if (count < 0 || count > kMostDevices) {
        FailUnknownProbeError();
    }
    return count;
}

std::int32_t ListDevices(const ProbeFunctions& probe, DeviceStatusEntry* entries, std::int32_t capacity) {
    const std::int32_t count = CountDevices(probe);
    std::vector<ProbeDevice> records(static_cast<std::size_t>(count));
    // One place more than there are devices, so that the array is one even when there is none.
    std::vector<ProbeDevice*> places(records.size() + 1, nullptr);
    std::transform(records.begin(), records.end(), places.begin(), [](ProbeDevice& record) { return &record; });
    RequireProbeSuccess(probe.getDeviceList(sizeof(ProbeDevice), places.data(), count));
    const std::int32_t copied = std::clamp(capacity, 0, count);
    std::transform(records.begin(), records.begin() + copied, entries, EntryOf);
    return count;
}

void ReadBattery(const ProbeFunctions& probe, std::int32_t battery, BatteryInfo* record) {
    RequireProbeSuccess(probe.getBatteryCurrentInfo(battery, record));
}

}  // namespace quarlin::device
