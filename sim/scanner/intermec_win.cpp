// SPDX-License-Identifier: Apache-2.0
// ISDC_RS.dll and ISDC_HID.dll of the simulated machine: a scanner engine that keeps its parameters, and hands over
// what is put into the shared record. They differ in how they are told where the engine is.
#include <windows.h>

#include "scanner/intermec_engine_win.h"
#include "scanner/intermec_frames.h"

namespace {

using namespace quarlin::sim;
using Function = IntermecFunction;

// Opened by the first call and closed when the program lets this library go.
IntermecDesk desk;
IntermecEngine engine(desk.Shared());
bool isHid = false;

template <typename Work>
std::uint32_t Answer(Function function, const Given& given, Work&& work) {
    return desk.Answer(function, given, kIntermecNoRecord, work);
}

// What nobody calls has no more to do than to be seen when called.
std::uint32_t AnswerOnly(Function function) {
    return Answer(function, {}, [](const IntermecState&, const EngineCall&) { return kIntermecGood; });
}

// What the caller's length was when it called.
std::uint32_t LengthBefore(const std::uint32_t* length) {
    return length != nullptr ? *length : 0;
}

template <typename Work>
std::uint32_t AnswerFrame(Function function, const std::uint8_t* request, std::uint32_t length, std::uint8_t* answer,
                          std::uint32_t capacity, std::uint32_t* answerLength, Work&& work) {
    const Given given{{capacity, Address(answer), Address(answerLength), LengthBefore(answerLength)}, request, length};
    return Answer(function, given, [&](IntermecState& state, EngineCall& call) -> std::uint16_t {
        if (const IntermecStatus readiness = engine.Readiness(); readiness != kIntermecGood) {
            return readiness;
        }
        if (request == nullptr || answer == nullptr || answerLength == nullptr) {
            return kIntermecBadArgument;
        }
        FrameAnswer own;
        *answerLength = 0;
        if (const IntermecStatus status = work(state, Frame{request, length}, own); status != kIntermecGood) {
            return status;
        }
        if (!IntermecDesk::TellInstead(state, function, answer, capacity, *answerLength)) {
            if (own.Length() > capacity || own.Length() > FrameAnswer::kRoom) {
                return kIntermecTooSmall;
            }
            std::memcpy(answer, own.Bytes(), own.Length());
            *answerLength = own.Length();
        }
        call.answerLength = *answerLength;
        return kIntermecGood;
    });
}

constexpr ScanThread::Work kThreadWork{[] { return engine.IsConnected(); }, [] { engine.Look(); }};

std::uint16_t SetPath(IntermecState& state, const char* path, std::uint32_t length) {
    if (path == nullptr || length < 2 || length > IntermecState::kPathRoom || path[length - 1] != 0) {
        return kIntermecBadArgument;
    }
    std::memcpy(&state.path[0], path, length);
    engine.SetAddressed();
    return kIntermecGood;
}

std::uint16_t SetPort(IntermecState& state, const void* in, std::uint32_t inLength, void* out,
                      std::uint32_t outLength) {
    if (in == nullptr || inLength != sizeof(state.port) || out == nullptr || outLength != sizeof(state.port)) {
        return kIntermecBadArgument;
    }
    std::memcpy(&state.port, in, sizeof(state.port));
    std::memcpy(out, in, sizeof(state.port));
    engine.SetAddressed();
    return kIntermecGood;
}

bool IsHidLibrary(HINSTANCE library) {
    constexpr wchar_t kName[] = L"ISDC_HID.dll";
    wchar_t path[MAX_PATH];
    const int length = static_cast<int>(GetModuleFileNameW(library, path, MAX_PATH));
    const int nameLength = lstrlenW(kName);
    return length > nameLength && lstrcmpiW(path + length - nameLength, kName) == 0;
}

// A program that goes away without taking its leave is gone all the same.
void TakeLeave() {
    if (!engine.IsInitialized()) {
        return;
    }
    if (const SharedState<IntermecState>::Access state(desk.Shared()); state) {
        engine.Deinitialize(*state);
    }
}

}  // namespace

extern "C" {

std::uint32_t Initialize(const char* registryPath, std::uint32_t* out) {
    const Given given{{Address(out)}, registryPath, TextLength(registryPath)};
    return Answer(Function::kInitialize, given, [&](IntermecState& state, const EngineCall&) -> std::uint16_t {
        if (registryPath == nullptr || out == nullptr) {
            return kIntermecBadArgument;
        }
        const IntermecStatus status = engine.Initialize(state);
        if (status == kIntermecGood) {
            CopyText(&state.registryPath[0], IntermecState::kPathRoom, registryPath);
            *out = 1;
        }
        return status;
    });
}

std::uint32_t Deinitialize() {
    bool stopped = false;
    const std::uint32_t status =
        Answer(Function::kDeinitialize, {}, [&](IntermecState& state, const EngineCall&) -> std::uint16_t {
            const IntermecStatus found = engine.Deinitialize(state);
            stopped = found == kIntermecGood;
            return found;
        });
    if (stopped) {
        engine.StopThread();
    }
    return status;
}

std::uint32_t Connect() {
    return Answer(Function::kConnect, {}, [](IntermecState& state, const EngineCall&) -> std::uint16_t {
        return engine.Connect(state, kThreadWork);
    });
}

std::uint32_t Disconnect() {
    return Answer(Function::kDisconnect, {},
                  [](IntermecState& state, const EngineCall&) -> std::uint16_t { return engine.Disconnect(state); });
}

std::uint32_t ConfigurationDialog() {
    return Answer(Function::kConfigurationDialog, {}, [](IntermecState& state, const EngineCall&) -> std::uint16_t {
        if (!engine.IsInitialized()) {
            return kIntermecNotInitialized;
        }
        ++state.dialogs;
        if (!isHid) {
            engine.SetAddressed();
        }
        return kIntermecGood;
    });
}

std::uint32_t MessageIdentify(HWND window, std::uint32_t on) {
    return Answer(Function::kMessageIdentify, {{Address(window), on}},
                  [&](IntermecState& state, const EngineCall&) -> std::uint16_t {
                      return engine.SetWindow(state, on != 0 ? window : nullptr);
                  });
}

std::uint32_t DeviceIOControl(std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                              std::uint32_t outLength) {
    const Given given{{code, Address(out), outLength}, in, inLength};
    return Answer(Function::kDeviceIOControl, given, [&](IntermecState& state, const EngineCall&) -> std::uint16_t {
        if (!engine.IsInitialized()) {
            return kIntermecNotInitialized;
        }
        // Each library knows only its own kind of device.
        if (code == kIntermecSetPath && isHid) {
            return SetPath(state, static_cast<const char*>(in), inLength);
        }
        if (code == kIntermecSetPort && !isHid) {
            return SetPort(state, in, inLength, out, outLength);
        }
        return kIntermecUnknownCode;
    });
}

std::uint32_t SetupWrite(const std::uint8_t* request, std::uint32_t length, std::uint8_t* answer,
                         std::uint32_t capacity, std::uint32_t* answerLength) {
    return AnswerFrame(Function::kSetupWrite, request, length, answer, capacity, answerLength, WriteSetup);
}

std::uint32_t SetupRead(const std::uint8_t* request, std::uint32_t length, std::uint8_t* answer, std::uint32_t capacity,
                        std::uint32_t* answerLength) {
    return AnswerFrame(Function::kSetupRead, request, length, answer, capacity, answerLength, ReadSetup);
}

std::uint32_t ControlCommand(const std::uint8_t* request, std::uint32_t length, std::uint8_t* answer,
                             std::uint32_t capacity, std::uint32_t* answerLength) {
    return AnswerFrame(Function::kControlCommand, request, length, answer, capacity, answerLength, Control);
}

std::uint32_t StatusRead(const std::uint8_t* request, std::uint32_t length, std::uint8_t* answer,
                         std::uint32_t capacity, std::uint32_t* answerLength) {
    return AnswerFrame(Function::kStatusRead, request, length, answer, capacity, answerLength, ReadStatus);
}

std::uint32_t GetBarcodeDataEx(std::uint8_t* buffer, std::uint32_t capacity, std::uint32_t* length) {
    const Given given{{Address(buffer), capacity, Address(length), LengthBefore(length)}, nullptr, 0};
    return desk.AnswerUnlocked(Function::kGetBarcodeDataEx, given, kIntermecNoRecord,
                               [&](IntermecState& record, EngineCall& call) -> std::uint16_t {
                                   if (const IntermecStatus status = engine.Readiness(); status != kIntermecGood) {
                                       return status;
                                   }
                                   if (buffer == nullptr || length == nullptr) {
                                       return kIntermecBadArgument;
                                   }
                                   engine.Take(record, buffer, capacity, *length);
                                   call.answerLength = *length;
                                   return kIntermecGood;
                               });
}

std::uint32_t ControlRangeRead() {
    return AnswerOnly(Function::kControlRangeRead);
}

std::uint32_t GetBarcodeData() {
    return AnswerOnly(Function::kGetBarcodeData);
}

std::uint32_t GetDllVersion() {
    return AnswerOnly(Function::kGetDllVersion);
}

std::uint32_t GetEventNotification() {
    return AnswerOnly(Function::kGetEventNotification);
}

std::uint32_t GetImageData() {
    return AnswerOnly(Function::kGetImageData);
}

std::uint32_t GetLibraryVersion() {
    return AnswerOnly(Function::kGetLibraryVersion);
}

std::uint32_t GetRawData() {
    return AnswerOnly(Function::kGetRawData);
}

std::uint32_t ImageDataRead() {
    return AnswerOnly(Function::kImageDataRead);
}

std::uint32_t SetupRangeRead() {
    return AnswerOnly(Function::kSetupRangeRead);
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
        isHid = IsHidLibrary(library);
        desk.SetLibrary(isHid ? kIntermecHidLibrary : kIntermecSerialLibrary);
        engine.Attach();
    } else if (reason == DLL_PROCESS_DETACH) {
        if (processEnds == nullptr) {
            TakeLeave();
            engine.Detach();
        }
        desk.Close();
    }
    return TRUE;
}

}  // extern "C"
