// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/engine_share.h"

#include <cstdint>

namespace quarlin::bcr {

// Called by the Honeywell engine library, on a thread of its own, for each of its events.
using HoneywellEventCallback = std::int32_t (*)(std::uint32_t eventType, std::uint32_t, std::uint32_t, void* data,
                                                std::uint32_t length);

// The procedures of the Honeywell engine library. Those without a parameter list here are looked for, because a library
// without them is not the one that is meant, and never called.
struct HoneywellFunctions {
    using NeverCalled = void (*)();
    using Session = EngineStatus (*)(std::uint32_t device, std::uint32_t request);

    NeverCalled beepError = nullptr;
    NeverCalled beepSuccess = nullptr;
    EngineStatus (*connect)() = nullptr;
    EngineStatus (*deinitialize)() = nullptr;
    EngineStatus (*disconnect)(std::uint32_t device) = nullptr;
    EngineStatus (*getDeviceFromList)(std::uint32_t device, char* name, std::uint32_t nameSize, std::uint32_t* value,
                                      char* text, std::uint32_t textSize, std::uint32_t* textValue) = nullptr;
    EngineStatus (*getFirmwareVersion)(std::uint8_t* answer, std::uint32_t capacity,
                                       std::uint32_t* answerLength) = nullptr;
    NeverCalled getImage = nullptr;
    NeverCalled getImageEx = nullptr;
    NeverCalled getLibraryVersion = nullptr;
    NeverCalled getModelName = nullptr;
    EngineStatus (*getNumberDevices)(std::uint32_t* count) = nullptr;
    NeverCalled getSerialNumber = nullptr;
    EngineStatus (*initialize)(const char* registryPath, std::uint32_t* value, std::uint32_t) = nullptr;
    EngineStatus (*registerCallback)(std::uint32_t enable, HoneywellEventCallback callback) = nullptr;
    NeverCalled registerMessage = nullptr;
    EngineStatus (*sendMenuCommand)(const std::uint8_t* command, std::uint32_t length, std::uint8_t* answer,
                                    std::uint32_t capacity, std::uint32_t* answerLength,
                                    std::uint32_t milliseconds) = nullptr;
    EngineStatus (*setPathName)(const char* name, std::uint32_t length) = nullptr;
    NeverCalled snapshotConfiguration = nullptr;
    Session startReadingSession = nullptr;
    Session stopReadingSession = nullptr;
    NeverCalled upgradeFirmware = nullptr;
    NeverCalled writePortSetup = nullptr;
    EngineStatus (*limitToHoneywellDevices)(std::uint32_t limit, std::uint32_t) = nullptr;

    // Calls resolve(name, pointer) for each procedure, in the order in which they are looked for.
    template <typename Resolve>
    void ForEach(Resolve&& resolve) {
        resolve("HEDC_BeepError", beepError);
        resolve("HEDC_BeepSuccess", beepSuccess);
        resolve("HEDC_Connect", connect);
        resolve("HEDC_Deinitialize", deinitialize);
        resolve("HEDC_Disconnect", disconnect);
        resolve("HEDC_GetDeviceFromList", getDeviceFromList);
        resolve("HEDC_GetFirmwareVersion", getFirmwareVersion);
        resolve("HEDC_GetImage", getImage);
        resolve("HEDC_GetImageEx", getImageEx);
        resolve("HEDC_GetLibraryVersion", getLibraryVersion);
        resolve("HEDC_GetModelName", getModelName);
        resolve("HEDC_GetNumberDevices", getNumberDevices);
        resolve("HEDC_GetSerialNumber", getSerialNumber);
        resolve("HEDC_Initialize", initialize);
        resolve("HEDC_RegisterCallback", registerCallback);
        resolve("HEDC_RegisterMessage", registerMessage);
        resolve("HEDC_SendMenuCommand", sendMenuCommand);
        resolve("HEDC_SetPathName", setPathName);
        resolve("HEDC_SnapshotConfiguration", snapshotConfiguration);
        resolve("HEDC_StartReadingSession", startReadingSession);
        resolve("HEDC_StopReadingSession", stopReadingSession);
        resolve("HEDC_UpgradeFirmware", upgradeFirmware);
        resolve("HEDC_WritePortSetup", writePortSetup);
        resolve("HEDC_LimitToHoneywellDevices", limitToHoneywellDevices);
    }
};

}  // namespace quarlin::bcr
