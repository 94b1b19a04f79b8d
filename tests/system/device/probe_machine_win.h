// SPDX-License-Identifier: Apache-2.0
// The devices and batteries of the machine under the test's hand.
#pragma once

#include <quarlin/device.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "probe/probe_state.h"
#include "support/last_error.h"
#include "support/machine_library_win.h"

namespace quarlin::test {

inline constexpr const char* kDeviceNotInitialized = "Device API has not been initialized.";
inline constexpr const char* kUnknownDevice = "The argument device is invalid. Unknown device.";
inline constexpr const wchar_t* kProbeLibrary = L"HwProbeLib.dll";

using sim::ProbeFunction;
using sim::ProbeState;

class ProbeMachine : public MachineLibrary<ProbeState> {
  public:
    // The calls since the last time: "GetDeviceInfo 3 20 1", a pointer as 1 when it was given and 0 when not. They are
    // forgotten.
    std::vector<std::string> Calls() {
        constexpr int kArguments[] = {0, 0, 3, 1, 3, 2};
        std::vector<std::string> texts;
        for (const sim::LoggedCall& call : TakeCalls()) {
            std::string text = std::string(sim::kProbeFunctionNames[call.function]).substr(8);
            for (int i = 0; i < kArguments[call.function]; ++i) {
                text += " " + std::to_string(call.arguments[i]);
            }
            texts.push_back(std::move(text));
        }
        return texts;
    }
};

// The family initialised; calls of the start are forgotten.
class DeviceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_SUCCESS(QLDEVICE_Initialize());
        machine_.Calls();
    }
    void TearDown() override {
        machine_.Answer(ProbeFunction::kUninitialize, 0);
        EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    }

    sim::ProbeDeviceState& Device(int number) { return machine_.Use()->devices[static_cast<std::size_t>(number) - 1]; }

    ProbeMachine machine_;
};

}  // namespace quarlin::test
