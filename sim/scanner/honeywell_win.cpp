// SPDX-License-Identifier: Apache-2.0
// HEDC_RS.dll of the simulated machine: lists scanners, connects to one, and hands over what is put into the shared
// record.
#include <windows.h>

#include "scanner/honeywell_engine_win.h"

namespace {

using namespace quarlin::sim;
using Function = HoneywellFunction;

// Opened by the first call and closed when the program lets this library go.
HoneywellDesk desk;
HoneywellEngine engine(desk.Shared());

template <typename Work>
std::uint32_t Answer(Function function, const Given& given, Work&& work) {
    return desk.Answer(function, given, kHoneywellNoRecord, work);
}

// What nobody calls has no more to do than to be seen when called.
std::uint32_t AnswerOnly(Function function) {
    return Answer(function, {}, [](const HoneywellState&, const EngineCall&) { return kHoneywellGood; });
}

// Bytes for the caller: those found, unless he is to be told others. `suffix` is put behind them.
std::uint16_t Tell(HoneywellState& state, EngineCall& call, Function function, const void* found, std::uint32_t length,
                   const char* suffix, std::uint8_t* answer, std::uint32_t capacity, std::uint32_t* answerLength) {
    if (answer == nullptr || answerLength == nullptr) {
        return kHoneywellBadArgument;
    }
    *answerLength = 0;
    if (!HoneywellDesk::TellInstead(state, function, answer, capacity, *answerLength)) {
        const std::uint32_t suffixLength = TextLength(suffix);
        if (length > capacity || suffixLength > capacity - length) {
            return kHoneywellTooSmall;
        }
        std::memcpy(answer, found, length);
        std::memcpy(answer + length, suffix, suffixLength);
        *answerLength = length + suffixLength;
    }
    call.answerLength = *answerLength;
    return kHoneywellGood;
}

constexpr ScanThread::Work kThreadWork{[] { return engine.IsConnected(); }, [] { engine.Look(); }};

// Cut to the caller's room; a text that fills it has no terminator.
void CopyOut(char* to, std::uint32_t room, const char* from) {
    for (std::uint32_t i = 0; i < room && i < HoneywellDevice::kRoom; ++i) {
        to[i] = from[i];
        if (from[i] == 0) {
            return;
        }
    }
}

std::uint16_t SetReading(HoneywellState& state, bool on) {
    const HoneywellStatus status = engine.Readiness();
    if (status == kHoneywellGood) {
        state.reading = on ? 1 : 0;
    }
    return status;
}

// A program that goes away without taking its leave is gone all the same.
void TakeLeave() {
    if (!engine.IsInitialized()) {
        return;
    }
    if (const SharedState<HoneywellState>::Access state(desk.Shared()); state) {
        engine.Deinitialize(*state);
    }
}

}  // namespace

extern "C" {

std::uint32_t HEDC_Initialize(const char* registryPath, std::uint32_t* out, std::uint32_t flags) {
    const Given given{{Address(out), flags}, registryPath, TextLength(registryPath)};
    return Answer(Function::kInitialize, given, [&](HoneywellState& state, const EngineCall&) -> std::uint16_t {
        if (registryPath == nullptr || out == nullptr) {
            return kHoneywellBadArgument;
        }
        const HoneywellStatus status = engine.Initialize(state);
        if (status == kHoneywellGood) {
            CopyText(&state.registryPath[0], HoneywellState::kRegistryPathRoom, registryPath);
            *out = 1;
        }
        return status;
    });
}

std::uint32_t HEDC_Deinitialize() {
    bool stopped = false;
    const std::uint32_t status =
        Answer(Function::kDeinitialize, {}, [&](HoneywellState& state, const EngineCall&) -> std::uint16_t {
            const HoneywellStatus found = engine.Deinitialize(state);
            stopped = found == kHoneywellGood;
            return found;
        });
    if (stopped) {
        engine.StopThread();
    }
    return status;
}

std::uint32_t HEDC_LimitToHoneywellDevices(std::uint32_t limited, std::uint32_t other) {
    return Answer(Function::kLimitToHoneywellDevices, {{limited, other}},
                  [&](HoneywellState& state, const EngineCall&) -> std::uint16_t {
                      if (!engine.IsInitialized()) {
                          return kHoneywellNotInitialized;
                      }
                      state.limited = limited;
                      return kHoneywellGood;
                  });
}

std::uint32_t HEDC_GetNumberDevices(std::uint32_t* count) {
    return Answer(Function::kGetNumberDevices, {{Address(count)}},
                  [&](HoneywellState& state, const EngineCall&) -> std::uint16_t {
                      if (!engine.IsInitialized()) {
                          return kHoneywellNotInitialized;
                      }
                      if (count == nullptr) {
                          return kHoneywellBadArgument;
                      }
                      *count =
                          state.claimedCount == HoneywellState::kHonest ? ListedDevices(state) : state.claimedCount;
                      return kHoneywellGood;
                  });
}

std::uint32_t HEDC_GetDeviceFromList(std::uint32_t number, char* name, std::uint32_t nameRoom, std::uint32_t* out,
                                     char* text, std::uint32_t textRoom, std::uint32_t* out2) {
    return Answer(Function::kGetDeviceFromList, {{number, nameRoom, textRoom}},
                  [&](HoneywellState& state, const EngineCall&) -> std::uint16_t {
                      if (!engine.IsInitialized()) {
                          return kHoneywellNotInitialized;
                      }
                      if (name == nullptr || out == nullptr || text == nullptr || out2 == nullptr) {
                          return kHoneywellBadArgument;
                      }
                      const HoneywellDevice* const device = ListedDevice(state, number);
                      if (device == nullptr) {
                          return kHoneywellNoDevice;
                      }
                      if (device->status == 0) {
                          CopyOut(name, nameRoom, &device->name[0]);
                          CopyOut(text, textRoom, &device->text[0]);
                          *out = device->out;
                          *out2 = device->out2;
                      }
                      return device->status;
                  });
}

std::uint32_t HEDC_RegisterCallback(std::uint32_t which, HoneywellCallback callback) {
    const Given given{{which, static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(callback))}};
    return Answer(Function::kRegisterCallback, given, [&](HoneywellState& state, const EngineCall&) -> std::uint16_t {
        return engine.SetCallback(state, callback);
    });
}

std::uint32_t HEDC_SetPathName(const char* name, std::uint32_t length) {
    return Answer(Function::kSetPathName, {{}, name, length},
                  [&](HoneywellState& state, const EngineCall&) -> std::uint16_t {
                      if (!engine.IsInitialized()) {
                          return kHoneywellNotInitialized;
                      }
                      if (name == nullptr || length == 0 || length > HoneywellState::kPathRoom) {
                          return kHoneywellBadArgument;
                      }
                      std::memset(&state.path[0], 0, HoneywellState::kPathRoom);
                      std::memcpy(&state.path[0], name, length);
                      state.pathLength = length;
                      return kHoneywellGood;
                  });
}

std::uint32_t HEDC_Connect() {
    return Answer(Function::kConnect, {}, [](HoneywellState& state, const EngineCall&) -> std::uint16_t {
        return engine.Connect(state, kThreadWork);
    });
}

std::uint32_t HEDC_Disconnect(std::uint32_t device) {
    return Answer(Function::kDisconnect, {{device}},
                  [](HoneywellState& state, const EngineCall&) -> std::uint16_t { return engine.Disconnect(state); });
}

std::uint32_t HEDC_StartReadingSession(std::uint32_t device, std::uint32_t flag) {
    return Answer(Function::kStartReadingSession, {{device, flag}},
                  [](HoneywellState& state, const EngineCall&) { return SetReading(state, true); });
}

std::uint32_t HEDC_StopReadingSession(std::uint32_t device, std::uint32_t flag) {
    return Answer(Function::kStopReadingSession, {{device, flag}},
                  [](HoneywellState& state, const EngineCall&) { return SetReading(state, false); });
}

// The engine takes every command, and says so with the command itself and a full stop.
std::uint32_t HEDC_SendMenuCommand(const std::uint8_t* command, std::uint32_t length, std::uint8_t* answer,
                                   std::uint32_t capacity, std::uint32_t* answerLength, std::uint32_t timeout) {
    const Given given{{capacity, Address(answer), Address(answerLength), timeout}, command, length};
    return Answer(Function::kSendMenuCommand, given, [&](HoneywellState& state, EngineCall& call) -> std::uint16_t {
        if (const HoneywellStatus readiness = engine.Readiness(); readiness != kHoneywellGood) {
            return readiness;
        }
        if (command == nullptr || length == 0) {
            return kHoneywellBadArgument;
        }
        ++state.menuCommands;
        return Tell(state, call, Function::kSendMenuCommand, command, length, ".", answer, capacity, answerLength);
    });
}

std::uint32_t HEDC_GetFirmwareVersion(std::uint8_t* answer, std::uint32_t capacity, std::uint32_t* answerLength) {
    const Given given{{Address(answer), capacity, Address(answerLength)}};
    return Answer(Function::kGetFirmwareVersion, given, [&](HoneywellState& state, EngineCall& call) -> std::uint16_t {
        if (const HoneywellStatus readiness = engine.Readiness(); readiness != kHoneywellGood) {
            return readiness;
        }
        const std::uint32_t length =
            state.versionLength < HoneywellState::kVersionRoom ? state.versionLength : HoneywellState::kVersionRoom;
        return Tell(state, call, Function::kGetFirmwareVersion, &state.version[0], length, "", answer, capacity,
                    answerLength);
    });
}

std::uint32_t HEDC_BeepError() {
    return AnswerOnly(Function::kBeepError);
}

std::uint32_t HEDC_BeepSuccess() {
    return AnswerOnly(Function::kBeepSuccess);
}

std::uint32_t HEDC_GetImage() {
    return AnswerOnly(Function::kGetImage);
}

std::uint32_t HEDC_GetImageEx() {
    return AnswerOnly(Function::kGetImageEx);
}

std::uint32_t HEDC_GetLibraryVersion() {
    return AnswerOnly(Function::kGetLibraryVersion);
}

std::uint32_t HEDC_GetModelName() {
    return AnswerOnly(Function::kGetModelName);
}

std::uint32_t HEDC_GetSerialNumber() {
    return AnswerOnly(Function::kGetSerialNumber);
}

std::uint32_t HEDC_RegisterMessage() {
    return AnswerOnly(Function::kRegisterMessage);
}

std::uint32_t HEDC_SnapshotConfiguration() {
    return AnswerOnly(Function::kSnapshotConfiguration);
}

std::uint32_t HEDC_UpgradeFirmware() {
    return AnswerOnly(Function::kUpgradeFirmware);
}

std::uint32_t HEDC_WritePortSetup() {
    return AnswerOnly(Function::kWritePortSetup);
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
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
