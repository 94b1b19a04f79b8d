// SPDX-License-Identifier: Apache-2.0
#include "sdk/device_facts.h"

#include "sdk/check.h"

#include <algorithm>

namespace quarlin::qlctl {
namespace {

constexpr int kDevices = 15;
constexpr int kBatteries = 2;

class DeviceFamily {
  public:
    DeviceFamily() { Check(QLDEVICE_Initialize()); }
    ~DeviceFamily() { QLDEVICE_Uninitialize(); }
    DeviceFamily(const DeviceFamily&) = delete;
    DeviceFamily& operator=(const DeviceFamily&) = delete;
};

Reply<bool> Ask(QLerr (*question)(int, bool*), int device) {
    bool answer = false;
    const QLerr result = question(device, &answer);
    return result == QLERR_OK ? Reply<bool>(answer) : TakeError(result);
}

Reply<std::vector<DeviceStatusEntry>> AskForList() {
    int count = 0;
    QLerr result = QLDEVICE_GetDevices(nullptr, &count);
    // One at least: without an array the library would only count.
    std::vector<DeviceStatusEntry> entries(static_cast<size_t>(std::max(count, 1)));
    if (result == QLERR_OK) {
        result = QLDEVICE_GetDevices(entries.data(), &count);
    }
    if (result != QLERR_OK) {
        return TakeError(result);
    }
    entries.resize(static_cast<size_t>(count));
    return entries;
}

// A text that need not have a terminator.
template <size_t Size>
std::string TextOf(const wchar_t (&characters)[Size]) {
    return ToUtf8(std::wstring(characters, Size).c_str());
}

Reply<BatteryState> AskForBattery(int battery) {
    BatteryState state;
    const QLerr result = QLDEVICE_GetBatteryInfo(battery, &state.info);
    if (result != QLERR_OK) {
        return TakeError(result);
    }
    state.name = TextOf(state.info.BatteryName);
    state.id = TextOf(state.info.BatteryID);
    return state;
}

}  // namespace

DeviceReport GatherDevices() {
    const DeviceFamily family;
    DeviceReport report;
    for (int device = 1; device <= kDevices; ++device) {
        report.devices.push_back({device, Ask(QLDEVICE_GetDeviceAvailable, device),
                                  Ask(QLDEVICE_GetDevicePoweredOn, device),
                                  Ask(QLDEVICE_GetDeviceEnabledInBios, device)});
    }
    report.listed = AskForList();
    return report;
}

std::vector<BatteryReply> GatherBatteries() {
    const DeviceFamily family;
    std::vector<BatteryReply> batteries;
    for (int battery = 1; battery <= kBatteries; ++battery) {
        batteries.push_back({battery, AskForBattery(battery)});
    }
    return batteries;
}

}  // namespace quarlin::qlctl
