// SPDX-License-Identifier: Apache-2.0
// A device-check library and a camera-light library made of functions, and a loader that knows them.
#pragma once

#include "core/loaded_library.h"
#include "device/camera_light.h"
#include "device/probe_functions.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quarlin::test {

// A loader with one library in it.
class MemoryLibraries final : public LibrarySource {
  public:
    void* Load(const wchar_t* name) override {
        asked.emplace_back(name);
        if (!present) {
            return nullptr;
        }
        ++loads;
        return this;
    }
    void Free(void*) override { ++frees; }
    void* Find(void*, const char* function) override {
        looked.emplace_back(function);
        return function == missing ? nullptr : functions[function];
    }

    template <typename Functions>
    void Offer(Functions table) {
        table.ForEach([&](const char* name, auto function) { functions[name] = reinterpret_cast<void*>(function); });
    }

    bool present = true;
    std::string missing;
    int loads = 0;
    int frees = 0;
    std::vector<std::wstring> asked;
    std::vector<std::string> looked;

  private:
    std::map<std::string, void*> functions;
};

// What the functions find, and which were called with what.
struct Probe {
    std::int32_t status = 0;
    std::int32_t devices = 3;
    std::uint32_t available = 0;
    std::uint32_t power = 0;
    std::uint32_t bios = 0;
    std::vector<std::string> calls;
    std::vector<device::ProbeDevice> given;  // records as they were when they were handed over
};
inline Probe probe;

inline device::ProbeFunctions ProbeOfTheTest() {
    probe = {};
    device::ProbeFunctions table;
    table.initialize = [] {
        probe.calls.emplace_back("Initialize");
        return probe.status;
    };
    table.uninitialize = [] {
        probe.calls.emplace_back("Uninitialize");
        return probe.status;
    };
    table.getDeviceInfo = [](std::int32_t number, std::uint32_t size, device::ProbeDevice* record) {
        probe.calls.push_back("GetDeviceInfo " + std::to_string(number) + " " + std::to_string(size));
        probe.given.push_back(*record);
        *record = {size, static_cast<std::uint32_t>(number), probe.available, probe.power, probe.bios};
        return probe.status;
    };
    table.getNumberOfDevices = [](std::int32_t* count) {
        probe.calls.emplace_back("GetNumberOfDevices");
        *count = probe.devices;
        return probe.status;
    };
    table.getDeviceList = [](std::uint32_t size, device::ProbeDevice** records, std::int32_t count) {
        probe.calls.push_back("GetDeviceList " + std::to_string(size) + " " + std::to_string(count));
        for (std::int32_t i = 0; i < count; ++i) {
            probe.given.push_back(*records[i]);
            const auto number = static_cast<std::uint32_t>(i) + 1;
            *records[i] = {size, number, 1, 10 + number, 20 + number};
        }
        return records != nullptr ? probe.status : -11;
    };
    table.getBatteryCurrentInfo = [](std::int32_t battery, BatteryInfo* record) {
        probe.calls.push_back("GetBatteryCurrentInfo " + std::to_string(battery));
        record->Voltage = 7400;
        return probe.status;
    };
    return table;
}

struct Lamp {
    std::int32_t initializeStatus = 0;
    std::int32_t versionStatus = 0;
    std::int32_t offStatus = 0;
    std::int32_t onStatus = 0;
    std::int32_t timerStatus = 0;
    int timer = 0;  // below 0: the value is left untouched
    std::vector<std::string> calls;
};
inline Lamp lamp;

inline device::CameraLightFunctions LampOfTheTest() {
    lamp = {};
    const auto neverCalled = [] { lamp.calls.emplace_back("one that is never called"); };
    device::CameraLightFunctions table;
    table.initialize = [](std::int32_t mode) {
        lamp.calls.push_back("Initialize " + std::to_string(mode));
        return lamp.initializeStatus;
    };
    table.turnOn = neverCalled;
    table.turnOff = [](std::uint8_t value) {
        lamp.calls.push_back("TurnOff " + std::to_string(value));
        return lamp.offStatus;
    };
    table.switchLight = neverCalled;
    table.setValueToKeepOnTime = neverCalled;
    table.getValueToKeepOnTime = neverCalled;
    table.turnOnForTime = [](std::uint8_t seconds) {
        lamp.calls.push_back("TurnOnForTime " + std::to_string(seconds));
        return lamp.onStatus;
    };
    table.getTimerStatus = [](std::uint8_t* value) {
        lamp.calls.push_back("GetTimerStatus " + std::to_string(*value));
        if (lamp.timer >= 0) {
            *value = static_cast<std::uint8_t>(lamp.timer);
        }
        return lamp.timerStatus;
    };
    table.turnOnToKeepOn = [](std::uint8_t value) {
        lamp.calls.push_back("TurnOnToKeepOn " + std::to_string(value));
        return lamp.onStatus;
    };
    table.setValueToKeepOn = neverCalled;
    table.getVersion = [](std::uint8_t* text, std::uint32_t* number) {
        bool zeroed = *number == 0;
        for (int i = 0; i < 18; ++i) {
            zeroed = zeroed && text[i] == 0;
        }
        std::memset(text, 'x', 18);
        lamp.calls.emplace_back(zeroed ? "GetVersion" : "GetVersion with something in it");
        return lamp.versionStatus;
    };
    return table;
}

}  // namespace quarlin::test
