// SPDX-License-Identifier: Apache-2.0
// What the stand-in HwProbeLib.dll knows and has been asked: one record for the whole machine. The stand-in in each
// program, qlsim and tests open the same one (shared/shared_section_win.h); without anybody who has changed it, it
// describes the computer of SetDefaults. A test that changes it holds the mutex of kTestMutex meanwhile.
#pragma once

#include <cstddef>
#include <cstdint>

#include "shared/call_log.h"

namespace quarlin::sim {

enum class ProbeFunction : std::uint32_t {
    kInitialize,
    kUninitialize,
    kGetDeviceInfo,
    kGetNumberOfDevices,
    kGetDeviceList,
    kGetBatteryCurrentInfo
};

inline constexpr std::size_t kProbeFunctionCount = 6;
inline constexpr const char* kProbeFunctionNames[kProbeFunctionCount] = {
    "HwProbe_Initialize",         "HwProbe_Uninitialize",  "HwProbe_GetDeviceInfo",
    "HwProbe_GetNumberOfDevices", "HwProbe_GetDeviceList", "HwProbe_GetBatteryCurrentInfo"};

struct ProbeDeviceState {
    std::uint32_t available;
    std::uint32_t power;  // 1: on
    std::uint32_t bios;   // 1 or 2: enabled
};

// As it goes to the caller.
struct ProbeBatteryRecord {
    char16_t name[12];  // no terminator when all are used
    std::int32_t chemistry;
    std::int32_t powerState;
    std::int32_t remainingCapacity;
    std::int32_t fullChargedCapacity;
    std::int32_t designedCapacity;
    std::int32_t voltage;
    std::int32_t rate;
    std::int32_t totalChargeIndex;
    std::int32_t temperature;
    std::int32_t batteryHealth;
    char16_t id[12];
    std::int32_t lastRecalibrationDate;
    std::int32_t environmentStatus;
};
static_assert(sizeof(ProbeBatteryRecord) == 96);

struct ProbeState {
    static constexpr wchar_t kSection[] = L"Global\\QlsimProbe";
    static constexpr wchar_t kTestMutex[] = L"Global\\QuarlinTestProbe";
    static constexpr std::size_t kDevices = 15;
    static constexpr std::size_t kBatteries = 2;

    // What each function answers; 0: what it finds. A call that is told to answer neither 0 nor 1 does nothing else,
    // unless workWhenFailing is set.
    std::int32_t answers[kProbeFunctionCount];
    std::uint32_t workWhenFailing;
    // What HwProbe_GetNumberOfDevices gives. HwProbe_GetDeviceList fills that many records or fewer: it knows 15
    // devices.
    std::int32_t listed;
    // Initialisations of all programs that have not been undone.
    std::int32_t started;
    ProbeDeviceState devices[kDevices];        // device n is at n - 1
    ProbeBatteryRecord batteries[kBatteries];  // likewise
    CallLog log;

    // A computer with twelve devices, one of them switched off and one disabled, and two batteries.
    void SetDefaults();
};

inline void ProbeState::SetDefaults() {
    *this = {};
    listed = kDevices;
    for (std::size_t i = 0; i < kDevices; ++i) {
        devices[i] = {1, 1, 1};
    }
    devices[3] = {1, 0, 1};
    devices[6] = {1, 1, 2};
    devices[8] = {1, 1, 0};
    // A computer has one barcode engine at most: device 1, rather than 14 or 15.
    devices[11] = {0, 0, 0};
    devices[13] = {0, 0, 0};
    devices[14] = {0, 0, 0};
    batteries[0] = {{u'M', u'A', u'I', u'N', u'-', u'6', u'C', u'E', u'L', u'L', u'-', u'A'},
                    4,  // lithium-ion
                    2,
                    4180,
                    5120,
                    5200,
                    11418,
                    -962,
                    137,
                    304,
                    98,
                    {u'0', u'0', u'2', u'7', u'1', u'8', u'2', u'8', u'1', u'8'},
                    20260311,
                    0};
    batteries[1] = {{u'B', u'R', u'I', u'D', u'G', u'E'},
                    4,
                    1,
                    310,
                    330,
                    350,
                    7402,
                    0,
                    12,
                    291,
                    100,
                    {u'0', u'0', u'3', u'1', u'4', u'1', u'5', u'9', u'2', u'6'},
                    20260311,
                    0};
}

}  // namespace quarlin::sim
