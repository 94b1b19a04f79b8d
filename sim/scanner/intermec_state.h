// SPDX-License-Identifier: Apache-2.0
// The Intermec scanner engine, and what the stand-ins ISDC_RS.dll and ISDC_HID.dll have been asked: one record for
// both. The stand-in in each program, qlsim and tests open the same one (shared/shared_section_win.h), under the name
// of their instance (QLSIM_INSTANCE).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "scanner/engine_record.h"

namespace quarlin::sim {

enum class IntermecFunction : std::uint32_t {
    kConfigurationDialog,
    kConnect,
    kControlCommand,
    kControlRangeRead,
    kDeinitialize,
    kDeviceIOControl,
    kDisconnect,
    kGetBarcodeData,
    kGetBarcodeDataEx,
    kGetDllVersion,
    kGetEventNotification,
    kGetImageData,
    kGetLibraryVersion,
    kGetRawData,
    kImageDataRead,
    kInitialize,
    kMessageIdentify,
    kSetupRangeRead,
    kSetupRead,
    kSetupWrite,
    kStatusRead
};

inline constexpr std::size_t kIntermecFunctionCount = 21;
inline constexpr const char* kIntermecFunctionNames[kIntermecFunctionCount] = {"ConfigurationDialog",
                                                                               "Connect",
                                                                               "ControlCommand",
                                                                               "ControlRangeRead",
                                                                               "Deinitialize",
                                                                               "DeviceIOControl",
                                                                               "Disconnect",
                                                                               "GetBarcodeData",
                                                                               "GetBarcodeDataEx",
                                                                               "GetDllVersion",
                                                                               "GetEventNotification",
                                                                               "GetImageData",
                                                                               "GetLibraryVersion",
                                                                               "GetRawData",
                                                                               "ImageDataRead",
                                                                               "Initialize",
                                                                               "MessageIdentify",
                                                                               "SetupRangeRead",
                                                                               "SetupRead",
                                                                               "SetupWrite",
                                                                               "StatusRead"};

// EngineCall::library.
inline constexpr std::uint32_t kIntermecSerialLibrary = 0;  // ISDC_RS.dll
inline constexpr std::uint32_t kIntermecHidLibrary = 1;     // ISDC_HID.dll

// What the engine answers by itself.
enum IntermecStatus : std::uint16_t {
    kIntermecGood = 0,
    kIntermecNotInitialized = 0x0101,
    kIntermecAlreadyInitialized = 0x0102,
    kIntermecNotConnected = 0x0103,
    kIntermecAlreadyConnected = 0x0104,
    kIntermecBadArgument = 0x0105,
    kIntermecNoDevice = 0x0106,    // Connect: unplugged, or nobody has said where it is
    kIntermecBadFrame = 0x0107,    // not made of whole parameters
    kIntermecTooSmall = 0x0108,    // no room for the answer
    kIntermecNoRecord = 0x0109,    // the stand-in's own memory is not to be had
    kIntermecUnknownCode = 0x010A  // DeviceIOControl: neither 260 nor 525
};

// DeviceIOControl.
inline constexpr std::uint32_t kIntermecSetPath = 260;
inline constexpr std::uint32_t kIntermecSetPort = 525;

// Parameters, both identifier bytes in one number.
inline constexpr std::uint16_t kIntermecDataMode = 0x734E;
inline constexpr std::uint16_t kIntermecLink = 0x7340;
inline constexpr std::uint16_t kIntermecTriggerMode = 0x7040;
inline constexpr std::uint16_t kIntermecHardwareTrigger = 0x7041;

struct IntermecParameter {
    std::uint16_t id;
    std::uint8_t value;
    std::uint8_t reserved;
};

struct IntermecState : EngineRecord<kIntermecFunctionCount> {
    static constexpr wchar_t kSection[] = L"Global\\QlsimIntermec";
    static constexpr wchar_t kScanEvent[] = L"Global\\QlsimIntermecScan";
    static constexpr wchar_t kFetchedEvent[] = L"Global\\QlsimIntermecFetched";
    static constexpr wchar_t kHeldEvent[] = L"Global\\QlsimIntermecHeld";
    static constexpr wchar_t kGoOnEvent[] = L"Global\\QlsimIntermecGoOn";
    static constexpr std::uint32_t kScanType = 100;
    static constexpr std::size_t kParameters = 128;
    static constexpr std::size_t kPathRoom = 520;
    static constexpr std::size_t kVersionRoom = 4096;

    // The engine. It keeps its settings while no program has it.
    std::uint32_t plugged;                 // 0: Connect finds no device
    std::uint32_t unknownParameterStatus;  // of SetupRead for what was never written; 0: it reads as value 0
    std::uint32_t parameterCount;
    IntermecParameter parameters[kParameters];
    std::uint32_t decoding;         // ControlCommand 20 40 v
    std::uint32_t linkPrepared;     // how often ControlCommand 50 40 00 came
    std::uint32_t linkReset;        // ControlCommand 30 02
    std::uint8_t versionStatus[2];  // the two bytes before the version text
    std::uint8_t reserved[2];
    std::uint32_t versionLength;
    char version[kVersionRoom];  // no terminator needed

    // What programs do with it; the library writes these.
    std::uint32_t initialized;     // the process that has initialised it, or 0
    std::uint32_t connected;       // the process that is connected, or 0
    std::uint64_t window;          // of MessageIdentify, until Disconnect
    std::uint32_t dialogs;         // how often ConfigurationDialog was called
    std::uint32_t port;            // of DeviceIOControl; 0: none since Initialize
    char path[kPathRoom];          // likewise
    char registryPath[kPathRoom];  // of Initialize
    std::uint64_t waiting;         // scans in the program that GetBarcodeDataEx has not handed out; about right
    std::uint64_t handedOut;       // by GetBarcodeDataEx, written without the lock

    // An engine that is there, has data mode 1 and hardware trigger 1, and does not decode. Not while a program has a
    // library connected.
    void SetDefaults();

    // Null when it was never written.
    const IntermecParameter* Find(std::uint16_t id) const {
        for (std::size_t i = 0; i < parameterCount; ++i) {
            if (parameters[i].id == id) {
                return &parameters[i];
            }
        }
        return nullptr;
    }
    std::uint8_t Value(std::uint16_t id) const {
        const IntermecParameter* const known = Find(id);
        return known != nullptr ? known->value : std::uint8_t{0};
    }
    // False when there are too many.
    bool Set(std::uint16_t id, std::uint8_t value) {
        for (std::size_t i = 0; i < parameterCount; ++i) {
            if (parameters[i].id == id) {
                parameters[i].value = value;
                return true;
            }
        }
        if (parameterCount == kParameters) {
            return false;
        }
        parameters[parameterCount++] = {id, value, 0};
        return true;
    }
    void SetVersion(const void* text, std::size_t length) {
        versionLength = static_cast<std::uint32_t>(length < kVersionRoom ? length : kVersionRoom);
        std::memcpy(version, text, versionLength);
    }
};

inline void IntermecState::SetDefaults() {
    // Too big for a copy on the stack.
    std::memset(static_cast<void*>(this), 0, sizeof(*this));
    hold.function = Hold::kNone;
    plugged = 1;
    Set(kIntermecDataMode, 1);
    Set(kIntermecHardwareTrigger, 1);
    constexpr char kVersion[] = "EA30 3.21.007";
    SetVersion(kVersion, sizeof(kVersion) - 1);
}

}  // namespace quarlin::sim
