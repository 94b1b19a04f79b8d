// SPDX-License-Identifier: Apache-2.0
// HwProbeLib.dll of the simulated machine: tells about built-in devices and batteries what the shared record says.
#include <windows.h>

#include "probe/probe_state.h"
#include "shared/shared_section_win.h"

namespace {

using namespace quarlin::sim;

struct DeviceRecord {
    std::uint32_t size;
    std::uint32_t device;
    std::uint32_t available;
    std::uint32_t powerState;
    std::uint32_t biosState;
};

enum Status : std::int32_t {
    kGood = 0,
    kNoMachine = -2,
    kNotInitialized = -10,
    kBadParameter = -11,
};

// Opened by the first call and closed when the program lets this library go.
SharedState<ProbeState> shared;

// Initialisations of this program.
LONG started = 0;

std::int64_t Given(const void* pointer) {
    return pointer != nullptr ? 1 : 0;
}

bool IsGood(std::int32_t status) {
    return status == 0 || status == 1;
}

// One call: what it finds to do, unless it is told to fail; what it is told to answer, unless that is nothing.
template <typename Work>
std::int32_t Answer(ProbeFunction function, std::int64_t first, std::int64_t second, std::int64_t third, Work&& work) {
    const SharedState<ProbeState>::Access state(shared);
    if (!state) {
        return kNoMachine;
    }
    const std::int32_t told = state->answers[static_cast<std::size_t>(function)];
    const std::int32_t found = IsGood(told) || state->workWhenFailing != 0 ? work(*state) : kGood;
    const std::int32_t status = told != kGood && IsGood(found) ? told : found;
    state->log.Add({static_cast<std::uint32_t>(function), GetCurrentProcessId(), {first, second, third}, status, 0});
    return status;
}

std::int32_t Fill(const ProbeState& state, std::uint32_t device, DeviceRecord* record) {
    if (record == nullptr || record->size != sizeof(DeviceRecord)) {
        return kBadParameter;
    }
    const ProbeDeviceState& known = state.devices[device - 1];
    *record = {sizeof(DeviceRecord), device, known.available, known.power, known.bios};
    return kGood;
}

}  // namespace

extern "C" {

std::int32_t HwProbe_Initialize() {
    return Answer(ProbeFunction::kInitialize, 0, 0, 0, [](ProbeState& state) {
        ++started;
        ++state.started;
        return kGood;
    });
}

std::int32_t HwProbe_Uninitialize() {
    return Answer(ProbeFunction::kUninitialize, 0, 0, 0, [](ProbeState& state) -> std::int32_t {
        if (started == 0) {
            return kNotInitialized;
        }
        --started;
        --state.started;
        return kGood;
    });
}

std::int32_t HwProbe_GetDeviceInfo(std::int32_t device, std::uint32_t recordSize, DeviceRecord* record) {
    return Answer(ProbeFunction::kGetDeviceInfo, device, recordSize, Given(record),
                  [&](const ProbeState& state) -> std::int32_t {
                      if (started == 0) {
                          return kNotInitialized;
                      }
                      if (device < 1 || device > static_cast<std::int32_t>(ProbeState::kDevices) ||
                          recordSize != sizeof(DeviceRecord)) {
                          return kBadParameter;
                      }
                      return Fill(state, static_cast<std::uint32_t>(device), record);
                  });
}

std::int32_t HwProbe_GetNumberOfDevices(std::int32_t* count) {
    return Answer(ProbeFunction::kGetNumberOfDevices, Given(count), 0, 0, [&](const ProbeState& state) -> std::int32_t {
        if (started == 0) {
            return kNotInitialized;
        }
        if (count == nullptr) {
            return kBadParameter;
        }
        *count = state.listed;
        return kGood;
    });
}

std::int32_t HwProbe_GetDeviceList(std::uint32_t recordSize, DeviceRecord** records, std::int32_t count) {
    return Answer(ProbeFunction::kGetDeviceList, recordSize, Given(records), count,
                  [&](const ProbeState& state) -> std::int32_t {
                      if (started == 0) {
                          return kNotInitialized;
                      }
                      if (recordSize != sizeof(DeviceRecord) || records == nullptr) {
                          return kBadParameter;
                      }
                      for (std::int32_t i = 0; i < count && i < static_cast<std::int32_t>(ProbeState::kDevices); ++i) {
                          if (Fill(state, static_cast<std::uint32_t>(i) + 1, records[i]) != kGood) {
                              return kBadParameter;
                          }
                      }
                      return kGood;
                  });
}

std::int32_t HwProbe_GetBatteryCurrentInfo(std::int32_t battery, ProbeBatteryRecord* record) {
    return Answer(
        ProbeFunction::kGetBatteryCurrentInfo, battery, Given(record), 0, [&](const ProbeState& state) -> std::int32_t {
            if (started == 0) {
                return kNotInitialized;
            }
            if (battery < 1 || battery > static_cast<std::int32_t>(ProbeState::kBatteries) || record == nullptr) {
                return kBadParameter;
            }
            *record = state.batteries[battery - 1];
            return kGood;
        });
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_DETACH) {
        shared.Close();
    }
    return TRUE;
}

}  // extern "C"
