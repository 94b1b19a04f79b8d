// SPDX-License-Identifier: Apache-2.0
// The library looks for the machine's scanner. What it finds out once per process it finds out again when it is loaded
// again: these programs load it by name, for each test anew.
#pragma once

#include <quarlin/barcode.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "barcode_support/scanner_machine_win.h"
#include "support/loaded_library_win.h"

namespace quarlin::test {

inline constexpr int kRounds = 15;
inline constexpr std::uint64_t kBetweenRounds = 150;  // milliseconds
// The clock ticks every 16 ms, and on a busy machine it is late.
inline constexpr std::uint64_t kTick = 100;

// A record, with its name as a text.
struct Listed {
    std::int32_t index = 0;
    std::int32_t type = 1;
    std::string name;
    std::int32_t linkKind = 0;
    std::int32_t linkFlag = 0;
    bool isZeroBehind = true;

    bool operator==(const Listed&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Listed& device) {
    return out << device.index << ' ' << device.type << " \"" << device.name << "\" " << device.linkKind << ' '
               << device.linkFlag << (device.isZeroBehind ? "" : " and more");
}

inline Listed BuiltIn() {
    return {0, 1, "Intermec EA15/EA21", 2, 1, true};
}
inline Listed Engine(std::string name) {
    return {0, 1, std::move(name), 0, 0, true};
}
inline Listed External() {
    return {0, 0, "Barcode Reader", 0, 0, true};
}

// The library, loaded for this object alone.
class Discoverer {
  public:
    Discoverer() = default;
    Discoverer(const Discoverer&) = delete;
    Discoverer& operator=(const Discoverer&) = delete;
    ~Discoverer() {
        unsigned int enabled = 0;
        if (library.QLBCR_IsEnabled(&enabled) == QLERR_OK) {
            if (enabled != 0) {
                EXPECT_EQ(library.QLBCR_Disable(), QLERR_OK);
            }
            EXPECT_EQ(library.QLBCR_Uninitialize(), QLERR_OK);
        }
        library.Unload();
        // The last of the listener's thread keeps it for a moment.
        EXPECT_TRUE(WaitUntil([] { return GetModuleHandleW(L"qlsdk.dll") == nullptr; }));
    }

    // The devices that are listed; nothing and a failure when the call fails.
    std::vector<Listed> List() {
        QLBCR_DEVICE_INFO devices[3];
        std::memset(static_cast<void*>(devices), 0x55, sizeof devices);
        int count = 3;
        EXPECT_SUCCESS_IN(library, QLBCR_GetBarcodeDevices(devices, &count));
        std::vector<Listed> list;
        for (int i = 0; i < count && i < 3; ++i) {
            const QLBCR_DEVICE_INFO& device = devices[i];
            bool isZero = true;
            for (const std::uint8_t byte : device.reserved) {
                isZero = isZero && byte == 0;
            }
            list.push_back(
                {device.index, device.iDeviceType, device.deviceName, device.linkKind, device.linkFlag, isZero});
        }
        return list;
    }
    // Forgets the list.
    void Forget() {
        EXPECT_SUCCESS_IN(library, QLBCR_Initialize());
        EXPECT_SUCCESS_IN(library, QLBCR_Uninitialize());
    }

    LoadedLibrary library;
};

class DiscoveryTest : public ::testing::Test {
  protected:
    explicit DiscoveryTest(const ScannerSetup& setup) : machine_(setup) {}

    HoneywellEngine& Honeywell() { return machine_.Honeywell(); }
    IntermecEngine& Intermec() { return machine_.Intermec(); }

    // What the device-check library was asked since the last time: "Initialize", "GetDeviceInfo 15".
    Texts TakeProbeCalls() {
        const auto probe = machine_.Probe();
        Texts texts;
        for (std::uint64_t number = probe->log.First(); number < probe->log.count; ++number) {
            const sim::LoggedCall& call = probe->log.At(number);
            std::string text = std::string(sim::kProbeFunctionNames[call.function]).substr(8);
            if (call.function == static_cast<std::uint32_t>(sim::ProbeFunction::kGetDeviceInfo)) {
                text += " " + std::to_string(call.arguments[0]);
            }
            texts.push_back(std::move(text));
        }
        probe->log.Clear();
        return texts;
    }
    void Report(std::size_t device, bool isThere) { machine_.Probe()->devices[device - 1].available = isThere ? 1 : 0; }
    void ProbeAnswers(sim::ProbeFunction function, int status) {
        machine_.Probe()->answers[static_cast<std::size_t>(function)] = status;
    }

    ScannerMachine machine_;
};

}  // namespace quarlin::test
