// SPDX-License-Identifier: Apache-2.0
// Engine libraries, an emulator and a system made of functions, for the engines' own tests. Every call is written down.
#pragma once

#include "machine_libraries.h"

#include "bcr/engine_share.h"
#include "bcr/honeywell_functions.h"
#include "bcr/intermec_functions.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::test {

inline std::string HexOf(const std::uint8_t* bytes, std::size_t count) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += {' ', kDigits[bytes[i] >> 4], kDigits[bytes[i] & 0xF]};
    }
    return text;
}

// What both libraries share: calls, statuses that are told in advance, an answer for every frame.
struct ScriptedLibrary {
    std::vector<std::string> calls;
    // By the name of the function: statuses of the next calls, oldest first; 0 when there are none left.
    std::map<std::string, std::deque<bcr::EngineStatus>> statuses;
    std::string answer;
    // The length that is told; that of the answer when nothing is set.
    std::optional<std::uint32_t> claimed;

    bcr::EngineStatus Call(const std::string& function, const std::string& arguments = {}) {
        calls.push_back(function + arguments);
        std::deque<bcr::EngineStatus>& told = statuses[function];
        if (told.empty()) {
            return bcr::kEngineOk;
        }
        const bcr::EngineStatus status = told.front();
        told.pop_front();
        return status;
    }
    void WriteAnswer(std::uint8_t* buffer, std::uint32_t capacity, std::uint32_t* length) const {
        std::memcpy(buffer, answer.data(), std::min<std::size_t>(answer.size(), capacity));
        *length = claimed.value_or(static_cast<std::uint32_t>(answer.size()));
    }
};
inline ScriptedLibrary engine;

template <typename Text>
bcr::EngineStatus AnswerFrame(const Text& function, const std::uint8_t* request, std::uint32_t requestLength,
                              std::uint8_t* buffer, std::uint32_t capacity, std::uint32_t* length) {
    const bcr::EngineStatus status = engine.Call(function, HexOf(request, requestLength));
    if (status == bcr::kEngineOk) {
        engine.WriteAnswer(buffer, capacity, length);
    }
    return status;
}

inline bcr::IntermecFunctions IntermecOfTheTest() {
    bcr::IntermecFunctions table;
    table.ForEach([](const char*, auto& function) {
        if constexpr (std::is_same_v<std::remove_reference_t<decltype(function)>,
                                     bcr::IntermecFunctions::NeverCalled>) {
            function = [] { engine.calls.emplace_back("a function that nobody calls"); };
        }
    });
    table.configurationDialog = [] { return engine.Call("ConfigurationDialog"); };
    table.connect = [] { return engine.Call("Connect"); };
    table.disconnect = [] { return engine.Call("Disconnect"); };
    table.initialize = [](const char* path, std::uint32_t* value) {
        return engine.Call("Initialize", std::string(" ") + path + " " + std::to_string(*value));
    };
    table.deinitialize = [] { return engine.Call("Deinitialize"); };
    table.deviceIoControl = [](std::uint32_t code, const void* in, std::uint32_t inLength, void*,
                               std::uint32_t outLength) {
        return engine.Call("DeviceIOControl", " " + std::to_string(code) +
                                                  HexOf(static_cast<const std::uint8_t*>(in), inLength) + " out " +
                                                  std::to_string(outLength));
    };
    table.messageIdentify = [](void*, std::uint32_t enable) {
        return engine.Call("MessageIdentify", " " + std::to_string(enable));
    };
    table.getBarcodeDataEx = [](std::uint8_t* buffer, std::uint32_t capacity, std::uint32_t* length) {
        const bcr::EngineStatus status = engine.Call("GetBarcodeDataEx", " " + std::to_string(*length));
        if (status == bcr::kEngineOk) {
            engine.WriteAnswer(buffer, capacity, length);
        }
        return status;
    };
    table.controlCommand = [](auto... frame) { return AnswerFrame("ControlCommand", frame...); };
    table.setupRead = [](auto... frame) { return AnswerFrame("SetupRead", frame...); };
    table.setupWrite = [](auto... frame) { return AnswerFrame("SetupWrite", frame...); };
    table.statusRead = [](auto... frame) { return AnswerFrame("StatusRead", frame...); };
    return table;
}

// The devices of the Honeywell library's list.
inline std::vector<std::string> listedDevices;

inline bcr::HoneywellFunctions HoneywellOfTheTest() {
    bcr::HoneywellFunctions table;
    table.ForEach([](const char*, auto& function) {
        if constexpr (std::is_same_v<std::remove_reference_t<decltype(function)>,
                                     bcr::HoneywellFunctions::NeverCalled>) {
            function = [] { engine.calls.emplace_back("a function that nobody calls"); };
        }
    });
    table.connect = [] { return engine.Call("Connect"); };
    table.deinitialize = [] { return engine.Call("Deinitialize"); };
    table.disconnect = [](std::uint32_t device) { return engine.Call("Disconnect", " " + std::to_string(device)); };
    table.initialize = [](const char* path, std::uint32_t* value, std::uint32_t last) {
        return engine.Call("Initialize",
                           std::string(" ") + path + " " + std::to_string(*value) + " " + std::to_string(last));
    };
    table.limitToHoneywellDevices = [](std::uint32_t limit, std::uint32_t last) {
        return engine.Call("Limit", " " + std::to_string(limit) + " " + std::to_string(last));
    };
    table.getNumberDevices = [](std::uint32_t* count) {
        *count = static_cast<std::uint32_t>(listedDevices.size());
        return engine.Call("GetNumberDevices");
    };
    table.getDeviceFromList = [](std::uint32_t device, char* name, std::uint32_t size, std::uint32_t*, char*,
                                 std::uint32_t textSize, std::uint32_t*) {
        const std::string& text = listedDevices.at(device);
        // Without a terminator when the name fills the room.
        std::memcpy(name, text.data(), std::min<std::size_t>(text.size(), size));
        return engine.Call("GetDeviceFromList",
                           " " + std::to_string(device) + " " + std::to_string(size) + " " + std::to_string(textSize));
    };
    table.registerCallback = [](std::uint32_t enable, bcr::HoneywellEventCallback) {
        return engine.Call("RegisterCallback", " " + std::to_string(enable));
    };
    table.setPathName = [](const char* name, std::uint32_t length) {
        return engine.Call("SetPathName", std::string(" ") + name + " " + std::to_string(length));
    };
    table.sendMenuCommand = [](const std::uint8_t* command, std::uint32_t length, std::uint8_t*, std::uint32_t,
                               std::uint32_t*, std::uint32_t milliseconds) {
        return engine.Call("Menu", " " + std::string(reinterpret_cast<const char*>(command), length) + " " +
                                       std::to_string(milliseconds));
    };
    table.getFirmwareVersion = [](std::uint8_t* buffer, std::uint32_t capacity, std::uint32_t* length) {
        const bcr::EngineStatus status = engine.Call("GetFirmwareVersion");
        engine.WriteAnswer(buffer, capacity, length);
        return status;
    };
    table.startReadingSession = [](std::uint32_t device, std::uint32_t flag) {
        return engine.Call("Start", " " + std::to_string(device) + " " + std::to_string(flag));
    };
    table.stopReadingSession = [](std::uint32_t device, std::uint32_t flag) {
        return engine.Call("Stop", " " + std::to_string(device) + " " + std::to_string(flag));
    };
    return table;
}

// Pauses are written down among the calls instead of waited for.
class ScriptedSystem final : public bcr::EngineSystem {
  public:
    void Pause(std::uint32_t milliseconds) override { engine.calls.push_back("pause " + std::to_string(milliseconds)); }
    void EnterEngine() override { ++held; }
    void LeaveEngine() override { --held; }
    bool IsReadable(const void* memory, std::uintptr_t size) override {
        const auto begin = reinterpret_cast<std::uintptr_t>(memory);
        return begin >= readableFrom && begin + size <= readableTo;
    }
    void MakeReadable(std::string_view memory) {
        readableFrom = reinterpret_cast<std::uintptr_t>(memory.data());
        readableTo = readableFrom + memory.size();
    }

    int held = 0;

  private:
    std::uintptr_t readableFrom = 0;
    std::uintptr_t readableTo = 0;
};

class ScriptedEmulator final : public bcr::EmulatorProgram {
  public:
    bool IsRunning() override { return running; }
    void* Window() override { return hasWindow ? this : nullptr; }
    std::optional<std::intptr_t> AskForScanner(void*) override {
        engine.calls.emplace_back("ask emulator");
        return answer;
    }
    std::optional<std::intptr_t> ConnectState(void*) override {
        engine.calls.emplace_back("poll emulator");
        if (states.empty()) {
            return std::nullopt;
        }
        const std::intptr_t state = states.front();
        states.pop_front();
        return state;
    }
    void Register(void*, void*) override { engine.calls.emplace_back("register with emulator"); }

    bool running = false;
    bool hasWindow = false;
    std::optional<std::intptr_t> answer = 0;
    std::deque<std::intptr_t> states;  // after the last one it does not answer any more
};

// What the last calls were; they are forgotten.
inline std::vector<std::string> TakeCalls() {
    return std::exchange(engine.calls, {});
}

}  // namespace quarlin::test
