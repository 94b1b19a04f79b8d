// SPDX-License-Identifier: Apache-2.0
// The Honeywell scanner engine, and what the stand-in HEDC_RS.dll has been asked. The stand-in in each program, qlsim,
// the emulator and tests open the same record (shared/shared_section_win.h), under the name of their instance
// (QLSIM_INSTANCE).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "scanner/engine_record.h"

namespace quarlin::sim {

enum class HoneywellFunction : std::uint32_t {
    kBeepError,
    kBeepSuccess,
    kConnect,
    kDeinitialize,
    kDisconnect,
    kGetDeviceFromList,
    kGetFirmwareVersion,
    kGetImage,
    kGetImageEx,
    kGetLibraryVersion,
    kGetModelName,
    kGetNumberDevices,
    kGetSerialNumber,
    kInitialize,
    kRegisterCallback,
    kRegisterMessage,
    kSendMenuCommand,
    kSetPathName,
    kSnapshotConfiguration,
    kStartReadingSession,
    kStopReadingSession,
    kUpgradeFirmware,
    kWritePortSetup,
    kLimitToHoneywellDevices
};

inline constexpr std::size_t kHoneywellFunctionCount = 24;
inline constexpr const char* kHoneywellFunctionNames[kHoneywellFunctionCount] = {"HEDC_BeepError",
                                                                                 "HEDC_BeepSuccess",
                                                                                 "HEDC_Connect",
                                                                                 "HEDC_Deinitialize",
                                                                                 "HEDC_Disconnect",
                                                                                 "HEDC_GetDeviceFromList",
                                                                                 "HEDC_GetFirmwareVersion",
                                                                                 "HEDC_GetImage",
                                                                                 "HEDC_GetImageEx",
                                                                                 "HEDC_GetLibraryVersion",
                                                                                 "HEDC_GetModelName",
                                                                                 "HEDC_GetNumberDevices",
                                                                                 "HEDC_GetSerialNumber",
                                                                                 "HEDC_Initialize",
                                                                                 "HEDC_RegisterCallback",
                                                                                 "HEDC_RegisterMessage",
                                                                                 "HEDC_SendMenuCommand",
                                                                                 "HEDC_SetPathName",
                                                                                 "HEDC_SnapshotConfiguration",
                                                                                 "HEDC_StartReadingSession",
                                                                                 "HEDC_StopReadingSession",
                                                                                 "HEDC_UpgradeFirmware",
                                                                                 "HEDC_WritePortSetup",
                                                                                 "HEDC_LimitToHoneywellDevices"};

// What the engine answers by itself.
enum HoneywellStatus : std::uint16_t {
    kHoneywellGood = 0,
    kHoneywellNotInitialized = 0x0201,
    kHoneywellAlreadyInitialized = 0x0202,
    kHoneywellNotConnected = 0x0203,
    kHoneywellAlreadyConnected = 0x0204,
    kHoneywellBadArgument = 0x0205,
    kHoneywellNoDevice = 0x0206,  // no device of that number, or with the name of HEDC_SetPathName
    kHoneywellNoPath = 0x0207,    // HEDC_Connect: no HEDC_SetPathName since HEDC_Initialize
    kHoneywellHeld = 0x0208,      // HEDC_Connect: the emulator has the scanner
    kHoneywellTooSmall = 0x0209,  // no room for the answer
    kHoneywellNoRecord = 0x020A   // the stand-in's own memory is not to be had
};

// One device of the library's list.
struct HoneywellDevice {
    static constexpr std::size_t kRoom = 1024;

    char name[kRoom];  // without a zero in it: it fills the caller's buffer, and no terminator comes
    char text[kRoom];  // likewise
    std::uint32_t out;
    std::uint32_t out2;
    std::uint16_t status;   // what HEDC_GetDeviceFromList answers for it; other than 0: and writes nothing
    std::uint16_t foreign;  // it is not listed after HEDC_LimitToHoneywellDevices
    std::uint32_t reserved;

    void SetName(const char* words) {
        std::memset(name, 0, kRoom);
        for (std::size_t i = 0; i < kRoom && words[i] != 0; ++i) {
            name[i] = words[i];
        }
    }
};

struct HoneywellState : EngineRecord<kHoneywellFunctionCount> {
    static constexpr wchar_t kSection[] = L"Global\\QlsimHoneywell";
    static constexpr wchar_t kScanEvent[] = L"Global\\QlsimHoneywellScan";
    static constexpr wchar_t kFetchedEvent[] = L"Global\\QlsimHoneywellFetched";
    static constexpr wchar_t kHeldEvent[] = L"Global\\QlsimHoneywellHeld";
    static constexpr wchar_t kGoOnEvent[] = L"Global\\QlsimHoneywellGoOn";
    static constexpr std::uint32_t kScanType = 1;
    static constexpr std::size_t kDevices = 8;
    static constexpr std::uint32_t kHonest = 0xFFFFFFFF;
    static constexpr std::size_t kPathRoom = 1024;
    static constexpr std::size_t kRegistryPathRoom = 520;
    static constexpr std::size_t kVersionRoom = 4096;

    // The devices, and the engine in them. It keeps its settings while no program has it.
    std::uint32_t deviceCount;
    std::uint32_t claimedCount;  // what HEDC_GetNumberDevices says; kHonest: what is so
    HoneywellDevice devices[kDevices];
    std::uint32_t heldByEmulator;  // HEDC_Connect fails
    std::uint32_t reading;         // a reading session is on; a connection begins without
    std::uint64_t menuCommands;    // commands that were carried out; they are in the log
    std::uint32_t versionLength;
    char version[kVersionRoom];  // no terminator needed

    // What programs do with it; the library writes these.
    std::uint32_t initialized;  // the process that has initialised it, or 0
    std::uint32_t connected;    // the process that is connected, or 0
    std::uint32_t limited;      // by HEDC_LimitToHoneywellDevices, since HEDC_Initialize
    std::uint32_t pathLength;   // of HEDC_SetPathName, since HEDC_Initialize
    std::uint64_t callback;     // address of the registered one; 0: none
    char path[kPathRoom];
    char registryPath[kRegistryPathRoom];
    std::uint64_t callbacks;  // how often the callback was called, written without the lock

    // One device, free to connect. Not while a program has the library connected.
    void SetDefaults();

    void SetVersion(const void* text, std::size_t length) {
        versionLength = static_cast<std::uint32_t>(length < kVersionRoom ? length : kVersionRoom);
        std::memcpy(version, text, versionLength);
    }
};

inline void HoneywellState::SetDefaults() {
    // Too big for a copy on the stack.
    std::memset(static_cast<void*>(this), 0, sizeof(*this));
    hold.function = Hold::kNone;
    claimedCount = kHonest;
    deviceCount = 1;
    devices[0].SetName("N6603 on USB 1");
    std::memcpy(devices[0].text, "N6603", 6);
    devices[0].out = 1;
    devices[0].out2 = 1;
    constexpr char kVersion[] = "N6603 CE000064AAA";
    SetVersion(kVersion, sizeof(kVersion) - 1);
}

}  // namespace quarlin::sim
