// SPDX-License-Identifier: Apache-2.0
// The machine's camera light under the test's hand.
#pragma once

#include <quarlin/camera.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "camera_light/light_state.h"
#include "support/last_error.h"
#include "support/machine_library_win.h"

namespace quarlin::test {

inline constexpr const char* kLightNotInitialized = "Camera light API has not been initialized.";
inline constexpr const char* kLightUnsupported = "Camera light API is unsupported .";
inline constexpr const char* kLightNull = "Camera light parameter is null.";
inline constexpr const wchar_t* kLightLibrary = L"camlamp_x64.dll";

using sim::LightFunction;
using sim::LightState;

class LightMachine : public MachineLibrary<LightState> {
  public:
    // The calls since the last time: "TurnOff 1"; for a call that fills something, what was in it before. They are
    // forgotten.
    std::vector<std::string> Calls() {
        constexpr int kArguments[] = {1, 0, 1, 0, 0, 0, 1, 1, 1, 0, 2};
        std::vector<std::string> texts;
        for (const sim::LoggedCall& call : TakeCalls()) {
            std::string text = std::string(sim::kLightFunctionNames[call.function]).substr(12);
            for (int i = 0; i < kArguments[call.function]; ++i) {
                text += " " + std::to_string(call.arguments[i]);
            }
            texts.push_back(std::move(text));
        }
        return texts;
    }

    // What the light does, whatever the library under test says about it: 0 off, 255 kept on, else the seconds left.
    int Timer() { return Use()->Timer(GetTickCount64()); }
};

// The family initialised; calls of the start are forgotten.
class LightTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_SUCCESS(QLCAM_Initialize());
        machine_.Calls();
    }
    void TearDown() override { EXPECT_SUCCESS(QLCAM_Uninitialize()); }

    LightMachine machine_;
};

}  // namespace quarlin::test
