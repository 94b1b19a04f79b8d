// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/engine_share.h"

#include <cstdint>

namespace quarlin::bcr {

// The procedures of the Intermec engine library. Those without a parameter list here are looked for, because a library
// without them is not the one that is meant, and never called.
struct IntermecFunctions {
    using NeverCalled = void (*)();
    using Frame = EngineStatus (*)(const std::uint8_t* request, std::uint32_t requestLength, std::uint8_t* answer,
                                   std::uint32_t capacity, std::uint32_t* answerLength);

    EngineStatus (*configurationDialog)() = nullptr;
    EngineStatus (*connect)() = nullptr;
    Frame controlCommand = nullptr;
    NeverCalled controlRangeRead = nullptr;
    EngineStatus (*deinitialize)() = nullptr;
    EngineStatus (*deviceIoControl)(std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                                    std::uint32_t outLength) = nullptr;
    EngineStatus (*disconnect)() = nullptr;
    NeverCalled getBarcodeData = nullptr;
    EngineStatus (*getBarcodeDataEx)(std::uint8_t* buffer, std::uint32_t capacity, std::uint32_t* length) = nullptr;
    NeverCalled getDllVersion = nullptr;
    NeverCalled getEventNotification = nullptr;
    NeverCalled getImageData = nullptr;
    NeverCalled getLibraryVersion = nullptr;
    NeverCalled getRawData = nullptr;
    NeverCalled imageDataRead = nullptr;
    EngineStatus (*initialize)(const char* registryPath, std::uint32_t* value) = nullptr;
    EngineStatus (*messageIdentify)(void* window, std::uint32_t enable) = nullptr;
    NeverCalled setupRangeRead = nullptr;
    Frame setupRead = nullptr;
    Frame setupWrite = nullptr;
    Frame statusRead = nullptr;

    // Calls resolve(name, pointer) for each procedure, in the order in which they are looked for.
    template <typename Resolve>
    void ForEach(Resolve&& resolve) {
        resolve("ConfigurationDialog", configurationDialog);
        resolve("Connect", connect);
        resolve("ControlCommand", controlCommand);
        resolve("ControlRangeRead", controlRangeRead);
        resolve("Deinitialize", deinitialize);
        resolve("DeviceIOControl", deviceIoControl);
        resolve("Disconnect", disconnect);
        resolve("GetBarcodeData", getBarcodeData);
        resolve("GetBarcodeDataEx", getBarcodeDataEx);
        resolve("GetDllVersion", getDllVersion);
        resolve("GetEventNotification", getEventNotification);
        resolve("GetImageData", getImageData);
        resolve("GetLibraryVersion", getLibraryVersion);
        resolve("GetRawData", getRawData);
        resolve("ImageDataRead", imageDataRead);
        resolve("Initialize", initialize);
        resolve("MessageIdentify", messageIdentify);
        resolve("SetupRangeRead", setupRangeRead);
        resolve("SetupRead", setupRead);
        resolve("SetupWrite", setupWrite);
        resolve("StatusRead", statusRead);
    }
};

}  // namespace quarlin::bcr
